// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "quarner/device/QuarnerDeviceDelegate.h"

namespace quarner::testing {

/// A drive delegate that records every call as a text, as in "deviceDidAppeared(Writer)".
class RecordingDeviceDelegate : public QuarnerDeviceDelegate {
public:
    void deviceStatusDidChanged() override { keep("deviceStatusDidChanged"); }
    void deviceDidAppeared(const std::string& deviceName) override {
        keep("deviceDidAppeared(" + deviceName + ")");
    }
    void deviceDidDisappeared(const std::string& deviceName) override {
        keep("deviceDidDisappeared(" + deviceName + ")");
    }

    std::vector<std::string> calls;
    /// Called after each call was recorded.
    std::function<void()> whenCalled;

private:
    void keep(const std::string& text) {
        calls.push_back(text);
        if (whenCalled)
            whenCalled();
    }
};

} // namespace quarner::testing
