// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/project/DiscBurn.h"
#include "quarner/project/DiscCapacity.h"

namespace quarner::window {

/// What stands in the way of a burn, and what can be done about it; with a detail, what it is
/// about.
std::string textFor(const DiscProblem& problem, const std::string& detail = {});

/// How a burn ended: what happened, to what, and what can be done.
std::string textFor(const DiscBurnEnd& end);

} // namespace quarner::window
