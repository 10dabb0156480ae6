// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/optical/SystemCallTarget.h"

namespace quarner {

/// An emulated machine whose /dev and /sys contain only the block devices attached to it. Every
/// operation may be called on any thread; on the thread that handles system calls only `later`.
class UdevBed {
public:
    using Properties = std::vector<std::pair<std::string, std::string>>;

    UdevBed();
    ~UdevBed();
    UdevBed(const UdevBed&) = delete;
    UdevBed& operator=(const UdevBed&) = delete;

    /// Returns the path in /sys of the device with a name such as "sr0". Its node is /dev/sr0.
    static std::string sysPathOf(const std::string& name);

    /// Adds a device, its node and its properties, and sends an event. System calls on the node go
    /// to the target that was first given for this name.
    void attach(const std::string& name, unsigned minor, const Properties& properties,
                const std::shared_ptr<SystemCallTarget>& target);
    /// Removes a device and sends an event. Open descriptors stay open.
    void detach(const std::string& name);
    /// Changes the properties of a device and sends an event. `once` are only in the event.
    void change(const std::string& name, unsigned minor, const Properties& properties,
                const Properties& once);

    /// Calls functions one after the other on the bed's own thread.
    void later(std::function<void()> function);
    /// Returns after every function given to `later` has returned. Not on that thread.
    void finish();

private:
    class Bed;
    const std::unique_ptr<Bed> _bed;
};

} // namespace quarner
