// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

namespace quarner::cli {

/// With what the program ends. These numbers are part of its interface.
enum class ExitStatus {
    Success = 0,    ///< burnt and verified; or the question was answered
    Failed = 1,     ///< the burn, or what else was asked for, failed
    Usage = 2,      ///< the command line is wrong, or names a drive or an image that cannot be used
    Refused = 3,    ///< a named file was refused
    DoesNotFit = 4, ///< the compilation does not fit the disc
    Canceled = 130  ///< ended by Ctrl-C or a signal, as shells count it
};

} // namespace quarner::cli
