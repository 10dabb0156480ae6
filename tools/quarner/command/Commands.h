// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>

#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"
#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// `quarner audio` and `quarner data`: adds files, says what they take, and burns them. Runs the
/// main loop until it is over, and tells the view the end. Throws `UsageProblem` if there is no
/// drive to use, and if a question could not be seen.
ExitStatus burn(Host& host, const BurnOptions& options, const std::shared_ptr<View>& view);

/// Joins what is said of a failure, a line each; an empty text is left out.
std::string explained(const std::string& text, const std::string& detail,
                      const std::string& advice);

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
