// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <umockdev.h>

#include <memory>

#include "tests/support/optical/SystemCallTarget.h"

namespace quarner {

/// Hands the system calls on a node to a target for as long as that lives; afterwards they fail as
/// those of a drive that is gone.
void answerSystemCalls(UMockdevIoctlBase* calls, const std::shared_ptr<SystemCallTarget>& target);

} // namespace quarner
