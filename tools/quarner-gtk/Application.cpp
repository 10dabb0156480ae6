// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/Application.h"

#include <gdkmm/display.h>
#include <giomm/file.h>
#include <glibmm/miscutils.h>
#include <gtkmm/aboutdialog.h>
#include <gtkmm/cssprovider.h>
#include <gtkmm/stylecontext.h>

#include <string>
#include <vector>

#include "tools/quarner-gtk/CommandLine.h"
#include "tools/quarner-gtk/Paths.h"
#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

constexpr char style[] = R"(
.track { padding: 3px 6px; border-top: 2px solid transparent; border-bottom: 2px solid transparent; }
.track.drop-above { border-top-color: @accent_bg_color; }
.track.drop-below { border-bottom-color: @accent_bg_color; }
levelbar.overfull block.filled { background-color: @error_color; border-color: @error_color; }
label.overfull { color: @error_color; font-weight: bold; }
headerbar .title { padding-left: 3px; padding-right: 3px; }
.numeric { font-feature-settings: "tnum"; }
.caption { font-size: smaller; }
.title-2 { font-size: larger; font-weight: bold; }
.message { padding: 9px 12px; }
.message textview, .message textview text { background: none; }
.message.warning { background-color: alpha(@warning_color, 0.2); }
.message.error { background-color: alpha(@error_color, 0.2); }
.message.success { background-color: alpha(@success_color, 0.2); }
)";

} // namespace

Glib::RefPtr<Application> Application::create() {
    return Glib::make_refptr_for_instance(new Application);
}

Application::Application()
    : Gtk::Application(QUARNER_APPLICATION_ID, Gio::Application::Flags::HANDLES_COMMAND_LINE) {
    g_application_add_main_option_entries(Gio::Application::gobj(), commandLineOptions());
}

void Application::on_startup() {
    Gtk::Application::on_startup();
    addStyle();
    _colorScheme.emplace();
    add_action("about", [this] { showAbout(); });
}

/// By the desktop, and by a click on a notification.
void Application::on_activate() {
    if (!_window)
        openWindow(DiscProject::Kind::Audio);
    _window->present();
}

int Application::on_command_line(const Glib::RefPtr<Gio::ApplicationCommandLine>& call) {
    const auto options = call->get_options_dict();
    const bool isData = options->contains("data");
    const auto kind = isData ? DiscProject::Kind::Data : DiscProject::Kind::Audio;
    if (!_window) {
        openWindow(kind);
    } else if (isData || options->contains("audio")) {
        _window->setKind(kind);
    }
    std::vector<std::string> paths;
    std::vector<std::string> words;
    options->lookup_value(G_OPTION_REMAINING, words);
    // What a desktop hands over for a blank disc.
    std::erase_if(words, [](const std::string& word) { return word.starts_with("burn:"); });
    for (const std::string& word : words)
        paths.push_back(pathOf(call->create_file_for_arg(word)));
    if (!paths.empty())
        _window->open(paths);
    _window->present();
    return 0;
}

void Application::openWindow(DiscProject::Kind kind) {
    _window = std::make_unique<Window>(kind);
    add_window(*_window);
    // A window that is closed is only hidden, and goes while GTK is still there. The program ends
    // with its last window.
    _window->set_hide_on_close(true);
    _window->signal_hide().connect([this] { retireWindow(); });
}

/// A call of the program that comes before the window has gone gets a new one.
void Application::retireWindow() {
    _closed = std::move(_window);
    Glib::signal_idle().connect_once([this] { _closed.reset(); });
}

void Application::addStyle() {
    const auto provider = Gtk::CssProvider::create();
    provider->load_from_data(style);
    Gtk::StyleContext::add_provider_for_display(Gdk::Display::get_default(), provider,
                                                GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

void Application::showAbout() {
    auto* const dialog = Gtk::make_managed<Gtk::AboutDialog>();
    dialog->set_program_name("Quarner");
    dialog->set_version(QUARNER_VERSION);
    dialog->set_comments(_("Burns music to an audio CD or a data CD, and verifies it."));
    dialog->set_logo_icon_name(QUARNER_APPLICATION_ID);
    dialog->set_license_type(Gtk::License::LGPL_2_1);
    dialog->set_transient_for(*_window);
    dialog->set_modal(true);
    dialog->present();
}

} // namespace quarner::window
