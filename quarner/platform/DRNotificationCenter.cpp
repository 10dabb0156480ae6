// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRNotificationCenter.h"

namespace quarner {

DRNotificationCenter::~DRNotificationCenter() = default;

} // namespace quarner
