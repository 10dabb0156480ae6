// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnTarget.h"

namespace quarner {

BurnTarget::~BurnTarget() = default;

} // namespace quarner
