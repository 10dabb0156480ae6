// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "adapters/engine/BurnTarget.h"
#include "adapters/engine/Clock.h"
#include "adapters/optical/DiscFacts.h"
#include "adapters/optical/DriveRecord.h"
#include "adapters/runloop/RunLoopCenter.h"
#include "quarner/platform/DRDevice.h"

namespace quarner {

/// A real drive, opened through libburn. Every operation may be called on any thread. Must be held
/// by a shared pointer.
///
/// What the drive knows of its disc is asked of it once and kept until `mediaChanged`; a drive of
/// which no changes are heard is asked again after `keptFor`, and so is one that loads its disc or
/// could not be opened. For a question the drive is open, and closed to other programs, only for
/// the time of the call. One drive is asked at a time: libburn has one list of them. While another
/// program keeps it open the answer is, after half a second, that there is no disc; while a disc is
/// being loaded, at once, that it is in transition. While a burn is under way every question is
/// answered with what was known at its beginning.
///
/// A change of status may be told twice: by who made it, and by udev.
///
/// The free space is what a burn can use: of a rewritable disc all of it, since the burn blanks it.
class OpticalDrive : public DRDevice,
                     public BurnTarget,
                     public std::enable_shared_from_this<OpticalDrive> {
public:
    static constexpr std::chrono::milliseconds keptFor{2000};

    /// `hearsOfChanges`: `mediaChanged` will be called for every change of the disc.
    OpticalDrive(DriveRecord record, std::string displayName, std::weak_ptr<RunLoops> runLoops,
                 bool hearsOfChanges, Clock clock = std::chrono::steady_clock::now);

    const DriveRecord& record() const { return _record; }

    /// The disc was changed, put in or taken out: forgets what is known of it and tells of the
    /// change of status.
    void mediaChanged();

    /// The drive is unplugged for good: it has no disc from now on, and a burn under way fails with
    /// `DRError::DeviceVanished`. Tells nobody.
    void unplug();
    /// The same, but answers false, and does nothing, while a burn is under way.
    bool unplugUnlessBurning();

    /// What keeps the drive from being opened: see AccessProblem.h. Nothing while a burn has it.
    std::optional<std::string> accessProblem() const;

    std::string displayName() const override { return _displayName; }
    Dictionary info() const override;
    Dictionary status() const override;
    bool mediaIsPresent() const override;
    bool mediaIsTransitioning() const override;
    bool mediaIsBlank() const override;
    bool mediaIsAppendable() const override;
    bool mediaIsErasable() const override;
    bool mediaIsOverwritable() const override;
    std::optional<DRMSF> mediaSpaceUsed() const override;
    std::optional<DRMSF> mediaSpaceFree() const override;
    /// Opens the tray, whatever there is in it. False also when it is open already, when the drive
    /// is another program's (a disc that is mounted is), and when it keeps its disc.
    bool ejectMedia() override;

    std::unique_ptr<SectorWriter> claim(const DiscPlan& plan, const BurnSettings& settings,
                                        const std::shared_ptr<StopSignal>& stop) override;
    void speedChanged(double speed) override;
    void release(std::optional<std::uint64_t> writtenSectors) override;

private:
    struct Known {
        DiscFacts disc;
        std::chrono::steady_clock::time_point since;
        bool isMomentary = false; ///< true of this moment alone: the drive was busy, or the disc
    };

    DiscFacts disc() const;
    std::optional<DiscFacts> knownDisc() const;
    DiscFacts ask() const;
    bool mayAsk() const;
    bool putOut();
    std::uint64_t changeCount() const;
    void learn(const DiscFacts& disc, bool isMomentary, std::uint64_t changes) const;
    void reserve(const std::shared_ptr<StopSignal>& stop);
    std::unique_ptr<SectorWriter> open(const DiscPlan& plan, const BurnSettings& settings,
                                       const std::shared_ptr<StopSignal>& stop);
    void tellOfChange();

    const DriveRecord _record;
    const std::string _displayName;
    /// Not kept alive: a notification that waits in one of them keeps this drive.
    const std::weak_ptr<RunLoops> _runLoops;
    const bool _hearsOfChanges;
    const Clock _clock;

    /// Held while the drive is open for a question. Taken before `_mutex`.
    mutable std::mutex _asking;
    mutable std::mutex _mutex;
    mutable std::optional<Known> _known;
    std::uint64_t _changes = 0; ///< of the disc, heard of so far
    bool _isAttached = true;
    std::shared_ptr<StopSignal> _burning; ///< of the burn under way, otherwise null
    double _speed = 0.0;
};

} // namespace quarner
