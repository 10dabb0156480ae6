// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/device/QuarnerDeviceDelegate.h"

namespace quarner {

QuarnerDeviceDelegate::~QuarnerDeviceDelegate() = default;

} // namespace quarner
