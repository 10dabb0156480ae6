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

/// A host's handle on one optical drive and the disc in it. It is bound to a drive, or to none,
/// when it is made, and never rebound: a drive that comes back after it was unplugged needs a new
/// handle. Without a drive every query returns the neutral value that its comment names.
///
/// Make, use and destroy a handle on one thread. The delegate is called from that thread's run
/// loop, which must run. Every query asks the drive again.
class QUARNER_EXPORT QuarnerDevice {
public:
    /// Returns the display names of all drives in the service's order, including drives that cannot
    /// write. Two drives with the same name give two entries.
    static std::vector<std::string> devices();

    /// `initWithDeviceName:` Binds to the drive with this display name, compared exactly. If
    /// several have it, binds to the last; if none has it, binds to no drive. Never fails.
    explicit QuarnerDevice(const std::string& deviceName);
    /// Binds to a drive, or to none if it is null.
    explicit QuarnerDevice(const std::shared_ptr<DRDevice>& drive);
    ~QuarnerDevice();
    QuarnerDevice(const QuarnerDevice&) = delete;
    QuarnerDevice& operator=(const QuarnerDevice&) = delete;

    /// Receives all reports. Not owned; may be null.
    QuarnerDeviceDelegate* delegate() const { return _delegate; }
    /// Sets the delegate, or none for null. The delegate must outlive the handle, or be replaced
    /// before it is destroyed.
    void setDelegate(QuarnerDeviceDelegate* delegate) { _delegate = delegate; }

    /// The drive itself, or null.
    std::shared_ptr<DRDevice> device() const { return _device; }
    /// The drive's display name; `std::nullopt` without a drive.
    std::optional<std::string> deviceName() const;
    /// `DRDevice::info` (keys in DRKeys.h); `std::nullopt` without a drive.
    std::optional<Dictionary> info() const;
    /// `DRDevice::status` (keys in DRKeys.h); `std::nullopt` without a drive.
    std::optional<Dictionary> status() const;

    /// Whether the drive writes CDs; false without a drive.
    bool cdBurnEnabled() const;
    /// Whether there is a disc in the drive; false without a drive.
    bool isDiscInDevice() const;
    /// Whether a disc is being loaded or examined; false without a drive.
    bool isCheckingDisc() const;
    /// The speed in blocks per second (1x CD = 75); 0 if unknown.
    float currentBurnSpeed() const;
    /// Ejects the disc. A failure is not reported.
    void eject();

    // --- DiscStatus: the disc in the drive ---

    /// Whether nothing is recorded on the disc; false without a disc, as in the next four.
    bool isDiscBlank() const;
    /// Whether a session can be written to the disc: it is blank, or was left open.
    bool isDiscAppendable() const;
    /// Whether the disc can be blanked, as a CD-RW can.
    bool isDiscErasable() const;
    /// Whether the disc can be written again without being blanked. No CD can.
    bool isDiscOverwritable() const;
    /// Whether the disc is a CD-ROM, CD-R or CD-RW.
    bool isCDDisc() const;

    /// The recorded play time in whole seconds, truncated; 0 if unknown.
    std::uint64_t usedTimeOfDisc() const;
    /// The free play time in whole seconds, truncated; 0 if unknown.
    std::uint64_t freeTimeOfDisc() const;
    /// `usedTimeOfDisc` as "00:12:34".
    std::string stringForUsedTimeOfDisc() const;
    /// `freeTimeOfDisc` as "00:12:34".
    std::string stringForFreeTimeOfDisc() const;

    /// The recorded size in bytes, as blocks of 2048; 0 if unknown. The drive reports it separately
    /// from the times above.
    std::uint64_t usedSizeOfDisc() const;
    /// The free size in bytes, likewise.
    std::uint64_t freeSizeOfDisc() const;
    /// `usedSizeOfDisc` as "702.8 MB".
    std::string stringForUsedSizeOfDisc() const;
    /// `freeSizeOfDisc` as "702.8 MB".
    std::string stringForFreeSizeOfDisc() const;

    /// The write speeds of the disc in blocks per second, the fastest last; `std::nullopt` without
    /// a drive or a disc.
    std::optional<Array> availableBurnSpeeds() const;

    // --- Called by the notification centre, never by a host ---

    /// Forwards `DRDeviceStatusChangedNotification` of this drive to the delegate.
    void deviceStatusDidChanged(const DRNotification& notification);
    /// Forwards `DRDeviceAppearedNotification` of any drive to the delegate.
    void deviceDidAppeared(const DRNotification& notification);
    /// Forwards `DRDeviceDisappearedNotification` to the delegate.
    void deviceDidDisappeared(const DRNotification& notification);

private:
    void bind(const std::shared_ptr<DRDevice>& drive);
    void observeAllDrives();
    void observe(const char* name, const DRObject* sender,
                 void (QuarnerDevice::*handler)(const DRNotification&));

    std::shared_ptr<DRDevice> _device;
    QuarnerDeviceDelegate* _delegate = nullptr;
    // The centre of the run loop of the thread that made this handle.
    std::shared_ptr<DRNotificationCenter> _center;
};

} // namespace quarner
