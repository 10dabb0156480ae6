// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/RefusalBar.h"

#include <glibmm/main.h>
#include <sigc++/adaptors/bind_return.h>
#include <sigc++/functors/mem_fun.h>

#include <algorithm>
#include <utility>

#include "quarner/display.h"
#include "tools/quarner-gtk/Accessible.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

constexpr int highestList = 96;
constexpr int space = 6;

} // namespace

RefusalBar::RefusalBar() {
    _scroller.set_policy(Gtk::PolicyType::NEVER, Gtk::PolicyType::AUTOMATIC);
    _scroller.set_max_content_height(highestList);
    // A text that scrolls asks for no height, and knows its own once it has a width.
    _scroller.get_vadjustment()->property_upper().signal_changed().connect([this] {
        if (!_fitting.connected())
            _fitting = Glib::signal_idle().connect(
                sigc::bind_return(sigc::mem_fun(*this, &RefusalBar::fitToText), false));
    });
    _texts.set_editable(false);
    _texts.set_cursor_visible(false);
    _texts.set_accepts_tab(false);
    _texts.set_wrap_mode(Gtk::WrapMode::WORD_CHAR);
    _texts.set_pixels_above_lines(space);
    setSpokenName(_texts, _("Files that were not added, and why"));
    _head.set_wrap(true);
    _head.set_wrap_mode(Pango::WrapMode::WORD_CHAR);
    _head.set_xalign(0);
    _scroller.set_child(_texts);
    _expander.set_label_widget(_head);
    _expander.set_child(_scroller);
    _expander.property_expanded().signal_changed().connect([this] { showReasons(); });
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
    _reasons += (_count == 0 ? "" : "\n") + safeText(text);
    ++_count;
    if (!_showing.connected())
        _showing = Glib::signal_idle().connect(
            sigc::bind_return(sigc::mem_fun(*this, &RefusalBar::showCount), false));
}

void RefusalBar::showCount() {
    const std::string head =
        words::counted("{count} file was not added", "{count} files were not added", _count);
    _head.set_text(head);
    setSpokenName(_expander, head);
    set_reveal_child(true);
    showReasons();
}

/// Not before they are wanted: to lay a line out takes longer than to refuse a file.
void RefusalBar::showReasons() {
    if (!_expander.get_expanded() || _reasons.empty())
        return;
    const auto buffer = _texts.get_buffer();
    buffer->insert(buffer->end(), std::exchange(_reasons, {}));
}

void RefusalBar::fitToText() {
    Gdk::Rectangle last;
    _texts.get_iter_location(_texts.get_buffer()->end(), last);
    _scroller.set_min_content_height(std::min(last.get_y() + last.get_height(), highestList));
}

void RefusalBar::clear() {
    _showing.disconnect();
    _reasons.clear();
    set_reveal_child(false);
    _expander.set_expanded(false);
    _count = 0;
    _texts.get_buffer()->set_text({});
}

} // namespace quarner::window
