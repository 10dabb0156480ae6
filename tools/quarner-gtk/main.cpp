// SPDX-License-Identifier: LGPL-2.1-or-later
#include <libintl.h>

#include <clocale>
#include <exception>
#include <iostream>

#include "quarner/desktop.h"
#include "tools/quarner-gtk/Application.h"

int main(int count, char** arguments) {
    std::setlocale(LC_ALL, ""); // NOLINT(concurrency-mt-unsafe): no other thread is there yet
    textdomain("quarner");
    bind_textdomain_codeset("quarner", "UTF-8");
    int status = 1;
    try {
        const auto application = quarner::window::Application::create();
        quarner::installDesktopPlatform();
        status = application->run(count, arguments);
    } catch (const std::exception& failure) {
        std::cerr << "quarner-gtk: " << failure.what() << '\n';
    }
    quarner::uninstallDesktopPlatform(); // ends what a closed window has left
    return status;
}
