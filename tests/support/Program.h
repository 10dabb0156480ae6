// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <vector>

namespace quarner::testing {

/// The result of a program: its exit status (128 plus the signal's number after a signal, 127 if it
/// could not be started), and the text of both its output streams.
struct ProgramResult {
    int status = 127;
    std::string output;
};

/// Runs a program of the search path, without a shell, and waits for its end. Its standard input is
/// empty.
ProgramResult runProgram(const std::vector<std::string>& arguments);

} // namespace quarner::testing
