// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/applicationcommandline.h>
#include <gtkmm/application.h>

#include <memory>
#include <optional>

#include "tools/quarner-gtk/ColorScheme.h"
#include "tools/quarner-gtk/Window.h"

namespace quarner::window {

/// The program: one window, which also takes the files of later calls of the program.
class Application : public Gtk::Application {
public:
    static Glib::RefPtr<Application> create();

protected:
    Application();

    void on_startup() override;
    void on_activate() override;
    int on_command_line(const Glib::RefPtr<Gio::ApplicationCommandLine>& call) override;

private:
    void addStyle();
    void showAbout();
    void openWindow(DiscProject::Kind kind);
    void retireWindow();

    std::optional<ColorScheme> _colorScheme; ///< empty until GTK is initialised
    std::unique_ptr<Window> _window;         ///< null once it was closed
    std::unique_ptr<Window> _closed;         ///< hidden; goes in the next turn of the main loop
};

} // namespace quarner::window
