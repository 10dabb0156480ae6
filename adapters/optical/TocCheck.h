// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "adapters/engine/DiscPlan.h"
#include "adapters/optical/GrabbedDrive.h"

namespace quarner {

/// Asks the drive anew what is on its disc, and compares the table of contents with the plan of the
/// one session that was written: empty when both agree, otherwise a text for the diagnostic log.
std::string differenceFromPlan(const GrabbedDrive& grabbed, const DiscPlan& plan);

} // namespace quarner
