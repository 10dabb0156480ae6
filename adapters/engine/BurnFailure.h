// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "quarner/platform/DRErrors.h"

namespace quarner {

/// The reason for which a burn fails. Thrown anywhere below the burn thread's main function, which
/// turns it into the Failed record; it never leaves the engine.
class BurnFailure : public std::exception {
public:
    /// `info` is a text for the status record and the diagnostic log. It names the file concerned.
    BurnFailure(DRError error, std::string info) : _error(error), _info(std::move(info)) {}

    DRError error() const { return _error; }
    const std::string& info() const { return _info; }
    const char* what() const noexcept override { return _info.c_str(); }

private:
    DRError _error;
    std::string _info;
};

/// Returns the failure of a system call that could not write. `errorNumber` is its `errno`,
/// `attempt` says what was attempted ("creating /tmp/mix.bin"); the text ends with the system's
/// reason.
BurnFailure writeFailure(int errorNumber, const std::string& attempt);

} // namespace quarner
