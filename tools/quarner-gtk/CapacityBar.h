// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/box.h>
#include <gtkmm/label.h>
#include <gtkmm/levelbar.h>

#include "quarner/project/DiscCapacity.h"

namespace quarner::window {

/// What the compilation takes of the disc: a bar that turns to a warning, and the figures.
class CapacityBar : public Gtk::Box {
public:
    CapacityBar();

    void show(const DiscCapacity& capacity);

private:
    Gtk::LevelBar _bar;
    Gtk::Box _texts;
    Gtk::Label _used;
    Gtk::Label _rest;
};

} // namespace quarner::window
