// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/Renderer.h"

#include <glibmm/miscutils.h>

namespace quarner::window {
namespace {

constexpr char variable[] = "GSK_RENDERER";
bool isChosenHere = false;

} // namespace

void chooseRenderer() {
    isChosenHere = Glib::getenv(variable).empty();
    if (isChosenHere)
        Glib::setenv(variable, "cairo");
}

void forgetRenderer(Gio::AppLaunchContext& context) {
    if (isChosenHere)
        context.unsetenv(variable);
}

} // namespace quarner::window
