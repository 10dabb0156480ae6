// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <umockdev.h>

#include <memory>

#include "tests/support/optical/SystemCallTarget.h"
#include "tests/support/optical/TaskThread.h"

namespace quarner {

/// Passes the system calls that all processes make on a node to a target, one after the other on a
/// thread of the node's own, while this object and the target exist. Otherwise they fail as those
/// on an unplugged drive.
class SystemCalls {
public:
    SystemCalls(UMockdevIoctlBase* calls, const std::shared_ptr<SystemCallTarget>& target);
    /// Returns when the target has returned from the calls so far.
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    // Called on the test bed's thread.
    void handle(UMockdevIoctlClient* client);
    void open();

private:
    UMockdevIoctlBase* const _calls;
    const std::weak_ptr<SystemCallTarget> _target;
    TaskThread _thread;
};

} // namespace quarner
