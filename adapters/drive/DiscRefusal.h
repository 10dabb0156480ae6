// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/DiscPlan.h"
#include "adapters/worker/DiscFacts.h"

namespace quarner {

/// Returns why this disc cannot take this plan; `std::nullopt` if it can.
std::optional<BurnFailure> refusalOf(const DiscFacts& disc, const DiscPlan& plan,
                                     const BurnSettings& settings);

} // namespace quarner
