// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/runloop/RunLoops.h"

namespace quarner {

RunLoops::~RunLoops() = default;

} // namespace quarner
