// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/EndBar.h"

#include <utility>

#include "tools/quarner-gtk/Accessible.h"
#include "tools/quarner-gtk/Sentences.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

EndBar::EndBar(Handlers handlers) : _handlers(std::move(handlers)) {
    _text.set_wrap(true);
    _text.set_wrap_mode(Pango::WrapMode::WORD_CHAR);
    _text.set_xalign(0);
    _text.set_hexpand(true);
    _text.set_selectable(true);
    _text.set_focusable(false);
    _close.set_icon_name("window-close-symbolic");
    _close.set_valign(Gtk::Align::START);
    _close.set_has_frame(false);
    setSpokenName(_close, _("Close the message about the burn"));
    _close.signal_clicked().connect([this] { hideEnd(); });
    _head.append(_text);
    _head.append(_close);
    _openFolder.set_label(_("Open Folder"));
    _openFolder.signal_clicked().connect([this] { _handlers.openFolder(_burnt); });
    _burnAnother.set_label(_("Burn Another Copy"));
    _burnAnother.signal_clicked().connect([this] {
        hideEnd();
        _handlers.burnAnother(_burnt);
    });
    _offers.set_selection_mode(Gtk::SelectionMode::NONE);
    for (Gtk::Button* const offer : {&_openFolder, &_burnAnother}) {
        auto* const place = Gtk::make_managed<Gtk::FlowBoxChild>();
        place->set_child(*offer);
        place->set_focusable(false);
        _offers.append(*place);
    }
    _bar.add_css_class("message");
    _bar.append(_head);
    _bar.append(_offers);
    set_child(_bar);
}

void EndBar::show(const DiscBurnEnd& end, Burnt burnt) {
    _burnt = std::move(burnt);
    const bool isDone = end.outcome == DiscBurnEnd::Outcome::Done;
    _text.set_text(textFor(end));
    _offers.set_visible(isDone);
    _openFolder.get_parent()->set_visible(!_burnt.image.empty());
    for (const char* const look : {"success", "error"})
        _bar.remove_css_class(look);
    if (end.outcome != DiscBurnEnd::Outcome::Canceled)
        _bar.add_css_class(isDone ? "success" : "error");
    set_reveal_child(true);
}

} // namespace quarner::window
