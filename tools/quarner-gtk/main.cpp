// SPDX-License-Identifier: LGPL-2.1-or-later
#include <exception>
#include <iostream>

#include "quarner/desktop.h"
#include "tools/quarner-gtk/Application.h"
#include "tools/quarner-gtk/CommandLine.h"
#include "tools/quarner-gtk/Renderer.h"
#include "tools/words/Words.h"

int main(int count, char** arguments) {
    quarner::words::useLanguageOfUser();
    if (const auto status = quarner::window::statusWithoutWindow(count, arguments))
        return *status;
    quarner::window::chooseRenderer();
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
