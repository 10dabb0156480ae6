// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quarner/platform/DRDevice.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/DRNotificationCenter.h"

namespace quarner {

/// Records the notifications of this thread's centre as texts: "+ NAME" for a drive that appeared,
/// "- NAME" for one that disappeared, "~ NAME" for a status change.
class DeviceNotes {
public:
    explicit DeviceNotes(std::shared_ptr<DRNotificationCenter> center)
        : _center(std::move(center)) {
        note(DRDeviceAppearedNotification, "+ ");
        note(DRDeviceDisappearedNotification, "- ");
        note(DRDeviceStatusChangedNotification, "~ ");
    }
    ~DeviceNotes() {
        for (const char* const name :
             {DRDeviceAppearedNotification, DRDeviceDisappearedNotification,
              DRDeviceStatusChangedNotification})
            _center->removeObserver(this, name, nullptr);
    }
    DeviceNotes(const DeviceNotes&) = delete;
    DeviceNotes& operator=(const DeviceNotes&) = delete;

    const std::vector<std::string>& all() const { return _all; }

private:
    void note(const char* name, const char* sign) {
        _center->addObserver(
            this,
            [this, sign](const DRNotification& notification) {
                const auto drive = std::dynamic_pointer_cast<DRDevice>(notification.object);
                _all.push_back(sign + drive->displayName());
            },
            name, nullptr);
    }

    const std::shared_ptr<DRNotificationCenter> _center;
    std::vector<std::string> _all;
};

} // namespace quarner
