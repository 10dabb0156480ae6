// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/OpticalBed.h"

namespace quarner {

OpticalBed::~OpticalBed() {
    for (const auto& recorder : _recorders) {
        recorder->unplug();
        recorder->resume();
    }
}

std::shared_ptr<EmulatedRecorder> OpticalBed::plug(const RecorderDescription& description) {
    const std::lock_guard lock(_mutex);
    const auto number = static_cast<unsigned>(_recorders.size());
    const auto recorder = std::make_shared<EmulatedRecorder>(_udev, number, description);
    _recorders.push_back(recorder);
    recorder->replug();
    return recorder;
}

} // namespace quarner
