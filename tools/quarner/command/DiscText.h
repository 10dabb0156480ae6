// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "tools/quarner/host/Host.h"
#include "tools/quarner/text/JsonLine.h"

namespace quarner::cli {

/// The kind of the disc, "CD-R"; empty when it is unknown.
std::string discKind(const QuarnerDevice& device);

/// The disc on one line: "CD-R, blank, 01:19:57 free", or "no disc".
std::string discSummary(const QuarnerDevice& device);

/// The disc on one line, or what keeps its drive from being used, by which there seems to be none.
std::string discOrProblem(const Host& host, const QuarnerDevice& device);

/// The disc on several lines, for people.
std::vector<std::string> discLines(const QuarnerDevice& device);

/// The same for programs.
JsonArguments discArguments(const QuarnerDevice& device);

} // namespace quarner::cli
