// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <giomm/applaunchcontext.h>

namespace quarner::window {

/// Lets GTK draw with Cairo unless the user names a renderer in GSK_RENDERER: a list and a bar need
/// no graphics card, and a driver that compiles its programs takes 80 MB. To be called before GTK
/// starts.
void chooseRenderer();

/// The choice is this program's own: another one that it starts does not inherit it.
void forgetRenderer(Gio::AppLaunchContext& context);

} // namespace quarner::window
