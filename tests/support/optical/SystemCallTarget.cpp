// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/SystemCallTarget.h"

namespace quarner {

SystemCallTarget::~SystemCallTarget() = default;

} // namespace quarner
