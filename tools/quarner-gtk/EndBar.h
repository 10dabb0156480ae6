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
#include "quarner/project/DiscDrive.h"

namespace quarner::window {

/// Says how a burn ended, and offers what may come next.
class EndBar : public Gtk::Revealer {
public:
    /// What was burnt.
    struct Burnt {
        DiscDrive::Id drive = 0;
        std::string image; ///< its path; empty for a disc
    };
    struct Handlers {
        std::function<void(const Burnt&)> openFolder; ///< of an image
        std::function<void(const Burnt&)> burnAnother;
    };

    explicit EndBar(Handlers handlers);

    /// The handlers get `burnt`, whatever is chosen by then.
    void show(const DiscBurnEnd& end, Burnt burnt);
    void hideEnd() { set_reveal_child(false); }

private:
    const Handlers _handlers;
    Burnt _burnt;
    Gtk::Box _bar{Gtk::Orientation::VERTICAL, 6};
    Gtk::Box _head;
    Gtk::Label _text;
    Gtk::Button _close;
    Gtk::FlowBox _offers; ///< below one another in a narrow window
    Gtk::Button _openFolder;
    Gtk::Button _burnAnother;
};

} // namespace quarner::window
