// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/mount.h>
#include <gtkmm/window.h>

#include <functional>
#include <string>

namespace quarner::window {

/// The mounted disc in the drive with this device node, "/dev/sr0"; null if none is mounted.
Glib::RefPtr<Gio::Mount> mountOf(const std::string& node);

/// Unmounts a disc; the system may ask the user over the window. Calls `done` in a later turn of
/// the main loop: with an empty text if it was unmounted, otherwise with what the system says.
void unmount(const Glib::RefPtr<Gio::Mount>& mount, Gtk::Window& window,
             std::function<void(const std::string& problem)> done);

} // namespace quarner::window
