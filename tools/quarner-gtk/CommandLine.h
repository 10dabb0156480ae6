// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>

#include <optional>

namespace quarner::window {

/// The options of the program, for GLib: they end with an empty entry, and live forever.
const GOptionEntry* commandLineOptions();

/// Deals with a command line that needs no window, so that it needs no display either: prints the
/// help, the version or what is wrong, and returns the exit status. Returns `std::nullopt` for any
/// other command line. After --help it does not return.
std::optional<int> statusWithoutWindow(int count, char** arguments);

} // namespace quarner::window
