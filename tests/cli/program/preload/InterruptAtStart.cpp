// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Loaded before the program: presses Ctrl-C while it is still reading its locale, which is about
// the first thing that it does.
#include <unistd.h>

#include <csignal>

extern "C" [[gnu::visibility("default")]] char* setlocale(int, const char*) noexcept {
    kill(getpid(), SIGINT);
    return nullptr;
}
