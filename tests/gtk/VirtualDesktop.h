// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {

/// A desktop for this process and those that it starts: a display that exists only in memory, a
/// window manager, and a message bus, on which the accessibility services start when they are
/// asked for. Everything ends with this object.
class VirtualDesktop {
public:
    VirtualDesktop();
    ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop&) = delete;
    VirtualDesktop& operator=(const VirtualDesktop&) = delete;

    /// The one of this process, made at the first call.
    static VirtualDesktop& shared();

    /// Its home, where programs keep their settings.
    std::string home() const { return _home.path().string(); }

private:
    void start(const std::vector<std::string>& command);
    /// Returns the first line that the program writes to the descriptor whose number it is given in
    /// place of "{descriptor}" in its last argument.
    std::string startAndRead(std::vector<std::string> command);

    TemporaryFolder _home;
    std::vector<pid_t> _processes;
};

} // namespace quarner::testing
