// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"

namespace quarner::cli {

/// Runs a command on the platform that is installed, the exit line of JSON included.
ExitStatus runCommand(Host& host, const Command& command);

/// Reports that the program ends with `ExitStatus::Canceled` without waiting for a drive or a file
/// that does not respond, the exit line of JSON included. Any thread.
void reportForcedEnd(Console& console, bool json);

/// With what the program ends that would end with this status: a success of which not everything
/// could be printed is a failure, and told so on the error stream. A reader who does not read to
/// the end has a reason for that, and changes nothing.
ExitStatus statusAfterOutput(Console& console, ExitStatus status);

/// Prints help, the version or what is wrong with a command line.
ExitStatus showMessage(Console& console, const Message& message);

} // namespace quarner::cli
