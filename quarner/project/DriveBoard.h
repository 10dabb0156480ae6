// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "quarner/platform/DRDevice.h"
#include "quarner/platform/DRNotificationCenter.h"
#include "quarner/project/DiscDrive.h"

namespace quarner {

/// The attached drives and what is known of them. A drive is asked in the background, once at a
/// time, and again after each change that it reports. Main thread only.
class DriveBoard : public std::enable_shared_from_this<DriveBoard> {
public:
    /// `didChange` is called after each change of `drives`, on the main loop.
    explicit DriveBoard(std::function<void()> didChange);
    ~DriveBoard();
    DriveBoard(const DriveBoard&) = delete;
    DriveBoard& operator=(const DriveBoard&) = delete;

    /// Begins to observe the drives. Call it once, before anything else.
    void start();

    std::vector<DiscDrive> drives() const;
    std::optional<DiscDrive> drive(DiscDrive::Id id) const;
    /// The drive itself; null if it is not attached any more.
    std::shared_ptr<DRDevice> device(DiscDrive::Id id) const;

    /// Examines a drive again. `done` is called once on the main loop, after `drives` contains the
    /// result, or when the drive is not attached.
    void examine(DiscDrive::Id id, std::function<void()> done);

private:
    struct Entry {
        DiscDrive facts;
        std::shared_ptr<DRDevice> device;
        bool isBeingAsked = false;
        bool isStale = false; // it reported a change while it was being asked
        std::uint64_t changeCount = 0;
        std::vector<std::function<void()>> waiting; // called once it was examined
    };

    void observe(const char* name, void (DriveBoard::*handler)(const std::shared_ptr<DRDevice>&));
    void rescan(const std::shared_ptr<DRDevice>& changed);
    void statusDidChange(const std::shared_ptr<DRDevice>& device);
    Entry* entryOf(const DRObject* device);
    const Entry* entryWith(DiscDrive::Id id) const;
    void ask(Entry& entry);
    void take(const std::shared_ptr<DRDevice>& device, const DiscDrive& facts);

    const std::function<void()> _didChange;
    const std::shared_ptr<DRNotificationCenter> _center;
    std::vector<Entry> _entries;
    DiscDrive::Id _lastId = 0;
};

} // namespace quarner
