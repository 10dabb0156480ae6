// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/runloop/RunLoopCenter.h"

#include <algorithm>
#include <utility>

namespace quarner {
namespace {

/// Sets a flag for the length of a scope, however that is left: a handler of a test may throw.
class Flagged {
public:
    explicit Flagged(bool& flag) : _flag(flag) { flag = true; }
    ~Flagged() { _flag = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

private:
    bool& _flag;
};

} // namespace

RunLoopCenter::RunLoopCenter(std::function<void()> wake) : _wake(std::move(wake)) {}

RunLoopCenter::~RunLoopCenter() = default;

void RunLoopCenter::addObserver(const void* observer, Handler handler, std::string_view name,
                                const DRObject* object) {
    auto registration = std::make_shared<const Registration>(
        Registration{observer, std::string(name), object, std::move(handler)});
    const std::lock_guard lock(_mutex);
    _registrations.push_back(std::move(registration));
}

void RunLoopCenter::removeObserver(const void* observer, std::string_view name,
                                   const DRObject* object) {
    std::vector<RegistrationRef> removed; // handlers are destroyed after the lock is released
    const std::lock_guard lock(_mutex);
    const auto stays = [&](const RegistrationRef& registration) {
        return registration->observer != observer || registration->name != name ||
               (object != nullptr && registration->object != object);
    };
    const auto firstRemoved =
        std::stable_partition(_registrations.begin(), _registrations.end(), stays);
    removed.assign(firstRemoved, _registrations.end());
    _registrations.erase(firstRemoved, _registrations.end());
}

void RunLoopCenter::post(DRNotification notification) {
    {
        const std::lock_guard lock(_mutex);
        _pending.push_back(std::move(notification));
    }
    _wake();
}

bool RunLoopCenter::deliverOne() {
    if (_isDelivering)
        return false;
    DRNotification notification;
    std::vector<RegistrationRef> receivers;
    {
        const std::lock_guard lock(_mutex);
        if (_pending.empty())
            return false;
        notification = std::move(_pending.front());
        _pending.pop_front();
        receivers = receiversOf(notification);
    }
    const Flagged delivering(_isDelivering);
    for (const RegistrationRef& receiver : receivers)
        if (isRegistered(receiver)) // an earlier receiver may have removed it
            receiver->handler(notification);
    return true;
}

bool RunLoopCenter::hasPending() const {
    const std::lock_guard lock(_mutex);
    return !_pending.empty();
}

std::vector<RunLoopCenter::RegistrationRef>
RunLoopCenter::receiversOf(const DRNotification& notification) const {
    std::vector<RegistrationRef> receivers;
    std::copy_if(_registrations.begin(), _registrations.end(), std::back_inserter(receivers),
                 [&](const RegistrationRef& registration) {
                     return registration->name == notification.name &&
                            (registration->object == nullptr ||
                             registration->object == notification.object.get());
                 });
    return receivers;
}

bool RunLoopCenter::isRegistered(const RegistrationRef& registration) const {
    const std::lock_guard lock(_mutex);
    return std::find(_registrations.begin(), _registrations.end(), registration) !=
           _registrations.end();
}

} // namespace quarner
