// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/CapacityBar.h"

#include <algorithm>
#include <string>

#include "tools/quarner-gtk/Accessible.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

std::string usedText(const DiscCapacity& capacity) {
    if (!capacity.isDiscKnown)
        return capacity.usedText;
    return _("{used} of {total}", {{"used", capacity.usedText}, {"total", capacity.totalText}});
}

double fractionOf(const DiscCapacity& capacity) {
    if (capacity.total == 0)
        return capacity.fits ? 0 : 1;
    const double used = static_cast<double>(capacity.used);
    return std::min(used / static_cast<double>(capacity.total), 1.0);
}

} // namespace

CapacityBar::CapacityBar() : Gtk::Box(Gtk::Orientation::VERTICAL, 3) {
    // The colours of a battery that runs empty say nothing here.
    for (const char* const level : {"low", "high", "full"})
        _bar.remove_offset_value(level);
    _used.set_hexpand(true);
    _used.set_xalign(0);
    _rest.set_xalign(1);
    for (Gtk::Label* const label : {&_used, &_rest}) {
        label->add_css_class("numeric");
        label->add_css_class("caption");
        label->set_wrap(true);
        label->set_wrap_mode(Pango::WrapMode::WORD_CHAR);
        _texts.append(*label);
    }
    _texts.set_spacing(12);
    append(_bar);
    append(_texts);
}

void CapacityBar::show(const DiscCapacity& capacity) {
    const std::string used = usedText(capacity);
    _bar.set_value(fractionOf(capacity));
    _used.set_text(used);
    _rest.set_text(capacity.verdict);
    for (Gtk::Widget* const part : std::initializer_list<Gtk::Widget*>{&_bar, &_rest}) {
        if (capacity.fits)
            part->remove_css_class("overfull");
        else
            part->add_css_class("overfull");
    }
    setSpokenName(_bar, capacity.verdict.empty() ? _("The files take {used}", {{"used", used}})
                                                 : _("The files take {used}, {rest}",
                                                     {{"used", used}, {"rest", capacity.verdict}}));
}

} // namespace quarner::window
