// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtkmm/window.h>

#include <functional>
#include <string>

namespace quarner::window {

struct Question {
    std::string text;
    std::string detail;
    std::string yes; ///< what the button that goes on says
};

/// Asks over a window. Calls `yes` in a later turn of the main loop if that was pressed, and `no`,
/// if there is one, for any other reply.
void ask(Gtk::Window& parent, const Question& question, std::function<void()> yes,
         std::function<void()> no = {});

} // namespace quarner::window
