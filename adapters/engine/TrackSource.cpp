// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/TrackSource.h"

namespace quarner {

TrackSource::~TrackSource() = default;

} // namespace quarner
