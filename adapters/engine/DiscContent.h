// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "adapters/engine/DiscPlan.h"
#include "adapters/engine/TrackSource.h"

namespace quarner {

/// The content of a burn: the plan, and a source for each of its tracks.
struct DiscContent {
    DiscPlan plan;
    TrackSources sources;
};

} // namespace quarner
