// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/flowbox.h>
#include <gtkmm/label.h>
#include <gtkmm/revealer.h>

#include <functional>
#include <string>

#include "quarner/project/DiscBurn.h"

namespace quarner::window {

/// Says how a burn ended, and offers what may come next.
class EndBar : public Gtk::Revealer {
public:
    struct Handlers {
        std::function<void()> openFolder;
        std::function<void()> burnAnother;
    };

    explicit EndBar(Handlers handlers);

    /// `isImage`: its folder can be opened.
    void show(const DiscBurnEnd& end, bool isImage);
    void hideEnd() { set_reveal_child(false); }

private:
    const Handlers _handlers;
    Gtk::Box _bar{Gtk::Orientation::VERTICAL, 6};
    Gtk::Box _head;
    Gtk::Label _text;
    Gtk::Button _close;
    Gtk::FlowBox _offers; ///< below one another in a narrow window
    Gtk::Button _openFolder;
    Gtk::Button _burnAnother;
};

} // namespace quarner::window
