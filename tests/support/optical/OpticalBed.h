// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/optical/EmulatedRecorder.h"
#include "tests/support/optical/UdevBed.h"

namespace quarner {

/// An emulated machine for this process: /sys, /dev and the events of udev show the recorders that
/// a test plugs in, and no other device. One at a time, created before anything that listens to
/// udev. A program started while it exists sees the same if it is linked with quarner_node_access,
/// or runs under umockdev-wrapper, where opening exclusively takes no effect. A listener to udev
/// may be ten events behind; one more ends the program. Every operation may be called on any
/// thread.
class OpticalBed {
public:
    OpticalBed() = default;
    /// Unplugs all recorders. Afterwards only the data that the recorders keep may be queried.
    ~OpticalBed();
    OpticalBed(const OpticalBed&) = delete;
    OpticalBed& operator=(const OpticalBed&) = delete;

    /// Makes a recorder and plugs it in. The first one is /dev/sr0, the next one /dev/sr1; a name
    /// is not reused.
    std::shared_ptr<EmulatedRecorder> plug(const RecorderDescription& description = {});

    /// Makes udev report properties for a recorder, by its number, that differ from its own.
    void overrideProperties(unsigned number, const UdevBed::Properties& properties) {
        _udev.change(UdevBed::sysPathOf("sr" + std::to_string(number)), properties);
    }

    /// Returns after the events of all changes so far were sent.
    void finishEvents() { _udev.finish(); }

private:
    UdevBed _udev;
    std::mutex _mutex;
    std::vector<std::shared_ptr<EmulatedRecorder>> _recorders;
};

} // namespace quarner
