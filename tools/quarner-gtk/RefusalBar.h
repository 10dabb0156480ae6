// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/expander.h>
#include <gtkmm/label.h>
#include <gtkmm/revealer.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/textview.h>

#include <sigc++/connection.h>

#include <cstddef>
#include <string>

namespace quarner::window {

/// Says how many files were not added; when it is opened, which and why, in one text, however many
/// they are.
class RefusalBar : public Gtk::Revealer {
public:
    RefusalBar();

    /// Shown in the next turn of the loop, together with all that are added before it.
    void add(const std::string& text);
    void clear();

private:
    void showCount();
    void showReasons();
    void fitToText();

    sigc::connection _showing;
    sigc::connection _fitting;
    std::string _reasons; ///< those that are not in the text yet
    std::size_t _count = 0;
    Gtk::Box _bar;
    Gtk::Expander _expander;
    Gtk::Label _head;
    Gtk::ScrolledWindow _scroller;
    Gtk::TextView _texts;
    Gtk::Button _close;
};

} // namespace quarner::window
