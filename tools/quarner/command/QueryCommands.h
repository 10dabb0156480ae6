// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"

namespace quarner::cli {

/// The commands that ask a drive for something. Each prints the result, as lines for people or as
/// JSON, without the exit line. They throw `UsageProblem` if there is no drive to ask.
ExitStatus listDrives(Host& host, const Target& target, bool json);
ExitStatus showDisc(Host& host, const Target& target, bool json);
ExitStatus ejectDisc(Host& host, const Target& target, bool json);

/// `quarner watch`: prints drives that come and go and what changes in them, until it is
/// interrupted
/// (`ExitStatus::Canceled`) or nobody reads any more (`ExitStatus::Success`).
ExitStatus watchDrives(Host& host, const Target& target, bool json);

} // namespace quarner::cli
