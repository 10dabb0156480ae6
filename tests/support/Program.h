// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <vector>

namespace quarner::testing {

/// How a program ended: its exit status (128 and the signal's number after a signal, 127 when it
/// could not be started), and all that it wrote to both of its output streams.
struct ProgramResult {
    int status = 127;
    std::string output;
};

/// Runs a program, found on the search path, without a shell, and waits for it. Its standard
/// input is empty.
ProgramResult runProgram(const std::vector<std::string>& arguments);

} // namespace quarner::testing
