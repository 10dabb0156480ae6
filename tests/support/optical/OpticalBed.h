// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/optical/EmulatedRecorder.h"
#include "tests/support/optical/UdevBed.h"

namespace quarner {

/// A machine of its own for this process: /sys, /dev and the events of udev show the recorders that
/// a test plugs in, and no other device. One at a time, and before whatever listens to udev. A
/// program that is started meanwhile sees the same when it runs under umockdev-wrapper. Who listens
/// to udev may be ten events behind; one more ends the program. Every operation may be called on
/// any thread.
class OpticalBed {
public:
    OpticalBed() = default;
    /// Unplugs what is still plugged in. Of the recorders only what they remember may be asked
    /// afterwards.
    ~OpticalBed();
    OpticalBed(const OpticalBed&) = delete;
    OpticalBed& operator=(const OpticalBed&) = delete;

    /// Makes a recorder and plugs it in. The first one is /dev/sr0, the next one /dev/sr1; a name
    /// is not used again.
    std::shared_ptr<EmulatedRecorder> plug(const RecorderDescription& description = {});

    /// Lets udev tell something else of a recorder than the recorder would; by its number.
    void retell(unsigned number, const UdevBed::Properties& properties) {
        _udev.change("sr" + std::to_string(number), number, properties, {});
    }

    /// Returns when every event was sent of what has happened to the recorders so far.
    void finishEvents() { _udev.finish(); }

private:
    UdevBed _udev;
    std::mutex _mutex;
    std::vector<std::shared_ptr<EmulatedRecorder>> _recorders;
};

} // namespace quarner
