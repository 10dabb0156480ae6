// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <umockdev.h>

#include <memory>

#include "tests/support/optical/SystemCallTarget.h"

namespace quarner {

/// Passes the system calls on a node to a target while the target exists; afterwards they fail as
/// those on an unplugged drive.
void handleSystemCalls(UMockdevIoctlBase* calls, const std::shared_ptr<SystemCallTarget>& target);

} // namespace quarner
