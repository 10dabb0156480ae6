// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/desktop/DesktopFixture.h"

namespace quarner::testing {

/// A host with the desktop platform that burns on an emulated drive.
class OpticalDriveTest : public DesktopTest {
protected:
    static constexpr char name[] = "QUARNER DISC RECORDER";

    /// Plugs a recorder in and waits until the platform lists it.
    std::shared_ptr<EmulatedRecorder> plug(const RecorderDescription& description = {}) {
        auto recorder = machine.plug(description);
        waitForDrive();
        return recorder;
    }
    static void waitForDrive() {
        runUntil([] { return QuarnerDevice::devices() == std::vector<std::string>{name}; });
    }

    /// Burns the added files and returns the delegate's last call.
    std::string burn() {
        delegate.forget();
        burner->burnWithDevice(QuarnerDevice(name), "Mix");
        return end();
    }

    static bool isEnd(const std::string& call) {
        return call == "burnProgressDidDone" || call == "burnProgressDidCanceled" ||
               call.starts_with("burnProgressDidError");
    }
    std::string end() {
        runUntil([&] { return !delegate.calls().empty() && isEnd(delegate.calls().back()); });
        return delegate.calls().back();
    }
};

} // namespace quarner::testing
