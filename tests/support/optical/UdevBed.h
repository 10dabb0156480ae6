// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/optical/SystemCallTarget.h"

namespace quarner {

/// A machine whose /dev and /sys hold nothing but block devices that are attached to it, for as
/// long as it lives. Every operation may be called on any thread; on the thread that answers system
/// calls only `later`.
class UdevBed {
public:
    using Properties = std::vector<std::pair<std::string, std::string>>;

    UdevBed();
    ~UdevBed();
    UdevBed(const UdevBed&) = delete;
    UdevBed& operator=(const UdevBed&) = delete;

    /// The path in /sys of the device of a name, such as "sr0". Its node is /dev/sr0.
    static std::string sysPathOf(const std::string& name);

    /// Adds a device, its node and its properties, and tells of it. System calls on the node go to
    /// the target that was given with its name first.
    void attach(const std::string& name, unsigned minor, const Properties& properties,
                const std::shared_ptr<SystemCallTarget>& target);
    /// Takes a device away and tells of it. What is open stays open.
    void detach(const std::string& name);
    /// Gives a device other properties and tells of the change; `once` is only told of.
    void change(const std::string& name, unsigned minor, const Properties& properties,
                const Properties& once);

    /// Calls a function on a thread of the bed's own, one after the other.
    void later(std::function<void()> function);
    /// Returns when every function that was given to `later` has returned. Not on that thread.
    void finish();

private:
    class Bed;
    const std::unique_ptr<Bed> _bed;
};

} // namespace quarner
