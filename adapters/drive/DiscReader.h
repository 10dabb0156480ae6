// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "adapters/engine/DiscPlan.h"
#include "adapters/worker/DiscFacts.h"

namespace quarner {

class GrabbedDrive;

/// Queries an open drive. What the drive does not report stays 0 or empty.
DiscFacts readDiscFacts(const GrabbedDrive& grabbed);

/// Reads the disc's table of contents again and compares it with the plan of the one session that
/// was written. Returns an empty text if both are equal, otherwise a text for the diagnostic log.
std::string differenceFromPlan(const GrabbedDrive& grabbed, const DiscPlan& plan);

} // namespace quarner
