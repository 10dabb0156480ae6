// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quarner/device/QuarnerDeviceDelegate.h"
#include "quarner/platform/DRDevice.h"
#include "quarner/platform/DRNotificationCenter.h"
#include "quarner/platform/Export.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// A host's handle on one optical drive and the disc in it. It is bound to a drive when it is
/// made, or to none, for good: a drive that comes back after it was unplugged needs a new handle.
/// Without a drive every query has the neutral answer that its comment states.
///
/// Make, use and destroy a handle on one thread, whose run loop must run for the delegate to hear
/// anything. Every query asks the drive afresh.
class QUARNER_EXPORT QuarnerDevice {
public:
    /// The display names of all drives, also of those that cannot write, in the service's order;
    /// a name twice where two drives share it.
    static std::vector<std::string> devices();

    /// `initWithDeviceName:` Binds to the drive of this display name, compared exactly; to the
    /// last of several; to none when there is none. Never fails.
    explicit QuarnerDevice(const std::string& deviceName);
    ~QuarnerDevice();
    QuarnerDevice(const QuarnerDevice&) = delete;
    QuarnerDevice& operator=(const QuarnerDevice&) = delete;

    /// The receiver of all reports, not owned; null for none.
    QuarnerDeviceDelegate* delegate() const { return _delegate; }
    void setDelegate(QuarnerDeviceDelegate* delegate) { _delegate = delegate; }

    /// The drive itself, or null.
    std::shared_ptr<DRDevice> device() const { return _device; }
    /// The drive's display name; nothing without a drive.
    std::optional<std::string> deviceName() const;
    /// The drive's dictionaries (keys in DRKeys.h); nothing without a drive.
    std::optional<Dictionary> info() const;
    std::optional<Dictionary> status() const;

    /// Whether the drive writes CDs; otherwise false.
    bool cdBurnEnabled() const;
    bool isDiscInDevice() const;
    /// A disc is being loaded or examined; otherwise false.
    bool isCheckingDisc() const;
    /// In the service's unit, blocks per second (1x CD = 75); 0 when unknown.
    float currentBurnSpeed() const;
    /// Puts the disc out. A drive that refuses does so silently.
    void eject();

    // --- DiscStatus: the disc in the drive ---

    bool isDiscBlank() const;
    bool isDiscAppendable() const;
    bool isDiscErasable() const;
    bool isDiscOverwritable() const;
    /// Whether the disc is a CD-ROM, CD-R or CD-RW.
    bool isCDDisc() const;

    /// Play time in whole seconds, truncated; 0 when unknown.
    std::uint64_t usedTimeOfDisc() const;
    std::uint64_t freeTimeOfDisc() const;
    /// The same as "00:12:34".
    std::string stringForUsedTimeOfDisc() const;
    std::string stringForFreeTimeOfDisc() const;

    /// Bytes: blocks of 2048; 0 when unknown. Not derived from the times, which have a source of
    /// their own.
    std::uint64_t usedSizeOfDisc() const;
    std::uint64_t freeSizeOfDisc() const;
    /// The same as "702.8 MB".
    std::string stringForUsedSizeOfDisc() const;
    std::string stringForFreeSizeOfDisc() const;

    /// The speeds at which the disc can be written, blocks per second, the fastest last; nothing
    /// without a drive or a disc.
    std::optional<Array> availableBurnSpeeds() const;

    // --- Called by the notification centre, never by a host ---

    void deviceStatusDidChanged(const DRNotification& notification);
    void deviceDidAppeared(const DRNotification& notification);
    void deviceDidDisappeared(const DRNotification& notification);

private:
    std::optional<Dictionary> mediaInfo() const;
    std::uint64_t bytesUnder(const char* blocksKey) const;
    void observe(const char* name, const DRObject* sender,
                 void (QuarnerDevice::*handler)(const DRNotification&));

    std::shared_ptr<DRDevice> _device;
    QuarnerDeviceDelegate* _delegate = nullptr;
    // The one of the thread that made this handle: see the rule above.
    std::shared_ptr<DRNotificationCenter> _center;
};

} // namespace quarner
