// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/RefusalBar.h"

#include "quarner/display.h"
#include "tools/quarner-gtk/Accessible.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

constexpr int lowestList = 96;
constexpr int highestList = 160;

} // namespace

RefusalBar::RefusalBar() {
    _scroller.set_policy(Gtk::PolicyType::NEVER, Gtk::PolicyType::AUTOMATIC);
    _scroller.set_propagate_natural_height(true);
    _scroller.set_min_content_height(lowestList);
    _scroller.set_max_content_height(highestList);
    _texts.set_margin_top(6);
    _scroller.set_child(_texts);
    _expander.set_child(_scroller);
    _expander.set_hexpand(true);
    _expander.set_valign(Gtk::Align::CENTER);
    _close.set_icon_name("window-close-symbolic");
    _close.set_valign(Gtk::Align::START);
    _close.set_has_frame(false);
    setSpokenName(_close, _("Close the list of files that were not added"));
    _close.signal_clicked().connect([this] { clear(); });
    _bar.add_css_class("message");
    _bar.add_css_class("warning");
    _bar.append(_expander);
    _bar.append(_close);
    set_child(_bar);
}

void RefusalBar::add(const std::string& text) {
    auto* const label = Gtk::make_managed<Gtk::Label>(safeText(text));
    label->set_xalign(0);
    label->set_wrap(true);
    label->set_wrap_mode(Pango::WrapMode::WORD_CHAR);
    label->set_selectable(true);
    _texts.append(*label);
    ++_count;
    const std::string head =
        words::counted("{count} file was not added", "{count} files were not added", _count);
    _expander.set_label(head);
    setSpokenName(_expander, head);
    set_reveal_child(true);
}

void RefusalBar::clear() {
    set_reveal_child(false);
    _expander.set_expanded(false);
    _count = 0;
    while (Gtk::Widget* const text = _texts.get_first_child())
        _texts.remove(*text);
}

} // namespace quarner::window
