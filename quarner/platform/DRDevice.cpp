// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRDevice.h"

namespace quarner {

std::string DRDevice::accessProblem() const { return {}; }

} // namespace quarner
