// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "quarner/scripted/ServiceCall.h"

namespace quarner {

/// The faults, actions and call counts of a scripted platform. Any thread.
class Faults {
public:
    using Action = std::function<void(const std::string&)>;

    void add(ServiceCall call, const Fault& fault);
    void clear(ServiceCall call);
    void setAction(ServiceCall call, Action action);
    std::size_t calls(ServiceCall call) const;

    /// Counts a call, runs its action, and returns whether the call must fail.
    bool fails(ServiceCall call, const std::string& subject);

private:
    bool takesFault(ServiceCall call, const std::string& subject);

    mutable std::mutex _mutex;
    std::map<ServiceCall, std::vector<Fault>> _faults;
    std::map<ServiceCall, Action> _actions;
    std::map<ServiceCall, std::size_t> _calls;
};

} // namespace quarner
