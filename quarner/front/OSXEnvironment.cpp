// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/OSXEnvironment.h"

namespace quarner {

OSXEnvironment::OSXEnvironment() = default;

} // namespace quarner
