// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/Faults.h"

#include <utility>

namespace quarner {

void Faults::add(ServiceCall call, const Fault& fault) {
    const std::lock_guard lock(_mutex);
    _faults[call].push_back(fault);
}

void Faults::clear(ServiceCall call) {
    const std::lock_guard lock(_mutex);
    _faults.erase(call);
}

void Faults::setAction(ServiceCall call, Action action) {
    const std::lock_guard lock(_mutex);
    _actions[call].swap(action);
}

std::size_t Faults::calls(ServiceCall call) const {
    const std::lock_guard lock(_mutex);
    const auto found = _calls.find(call);
    return found == _calls.end() ? 0 : found->second;
}

bool Faults::fails(ServiceCall call, const std::string& subject) {
    Action action;
    {
        const std::lock_guard lock(_mutex);
        ++_calls[call];
        action = _actions[call];
    }
    if (action) // without the lock: the action may make calls itself
        action(subject);
    const std::lock_guard lock(_mutex);
    return takesFault(call, subject);
}

bool Faults::takesFault(ServiceCall call, const std::string& subject) {
    for (Fault& fault : _faults[call]) {
        if (fault.subject.value_or(subject) != subject || fault.times.value_or(1) <= 0)
            continue;
        if (fault.times)
            --*fault.times;
        return true;
    }
    return false;
}

} // namespace quarner
