// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/entry.h>
#include <gtkmm/filechoosernative.h>
#include <gtkmm/headerbar.h>
#include <gtkmm/label.h>
#include <gtkmm/menubutton.h>
#include <gtkmm/progressbar.h>
#include <gtkmm/revealer.h>
#include <gtkmm/stack.h>
#include <gtkmm/togglebutton.h>

#include "tools/quarner-gtk/CapacityBar.h"
#include "tools/quarner-gtk/DriveChooser.h"
#include "tools/quarner-gtk/EndBar.h"
#include "tools/quarner-gtk/RefusalBar.h"

namespace quarner::window {

/// The widgets of the window and their places. What they do is the window's business.
struct WindowLayout {
    struct Handlers {
        DriveChooser::Handlers drives;
        EndBar::Handlers end;
    };

    explicit WindowLayout(Handlers handlers);

    /// Shows the list, or what to do if it is empty.
    void showList(bool isEmpty);
    /// Puts a list into the place of the one before.
    void setList(Gtk::Widget& list);
    void showWork(const std::string& text, double fraction, bool isAdding);

    Gtk::HeaderBar header;
    Gtk::ToggleButton audio;
    Gtk::ToggleButton data;
    Gtk::Box page{Gtk::Orientation::VERTICAL};
    RefusalBar refusals;
    EndBar end;
    Gtk::Stack content;
    CapacityBar capacity;
    Gtk::Label notice;
    Gtk::Revealer work; ///< what is under way
    Gtk::Label workText;
    Gtk::ProgressBar progress;
    Gtk::Button stopAdding;
    DriveChooser drives;
    Gtk::Entry title;
    Gtk::Button burn;

private:
    void layOutHeader();
    void layOutEmptyPage();
    void layOutWork();
    void layOutBottom();

    Gtk::Button _add;
    Gtk::Button _undo;
    Gtk::Box _kinds;
    Gtk::MenuButton _menu;
    Gtk::Box _empty{Gtk::Orientation::VERTICAL, 12};
    Gtk::Box _workRow{Gtk::Orientation::HORIZONTAL, 9};
    Gtk::Box _workColumn{Gtk::Orientation::VERTICAL, 3};
    Gtk::Box _bottom{Gtk::Orientation::VERTICAL, 9};
    Gtk::Box _lastRow{Gtk::Orientation::HORIZONTAL, 9};
    Gtk::Box _burnPlace;
};

} // namespace quarner::window
