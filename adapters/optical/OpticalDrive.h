// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "adapters/engine/EngineDrive.h"
#include "adapters/engine/ProgressMeter.h"
#include "adapters/optical/DriveWorker.h"
#include "adapters/optical/TimedMutex.h"
#include "adapters/worker/DiscFacts.h"
#include "adapters/worker/DriveRecord.h"

namespace quarner {

/// A real drive, opened by a process of its own for each question and each burn (`DriveWorker`).
/// Every operation may be called on any thread.
///
/// The disc's properties are read once and cached until `mediaChanged`. They are read again after
/// `keptFor` if the drive's changes are not reported, if the disc was being loaded, and if the
/// drive could not be opened. A query opens the drive, exclusively, only during the call.
/// While another program has the drive open, a query returns after half a second that there is no
/// disc; while a disc is being loaded, it returns at once that the disc is in transition. While a
/// burn runs, queries return what was known when it began.
///
/// After a successful burn the disc is reloaded if the kernel has not noticed its new content and
/// if the drive can close its tray. The burn ends afterwards, successfully also if that fails.
///
/// A drive that does not respond, in a query or in a burn, has no disc and is not asked again for
/// `hangsFor`, or until a change of its disc is reported. A query waits for another one, but not
/// for a burn. A burn waits for a query until it is stopped. Errors of the process and of the
/// host's log are not thrown by a query or by `release`.
///
/// A status change may be reported twice: once by its cause and once by udev.
///
/// The free space is what a burn can use: all of a rewritable disc, which the burn blanks.
class OpticalDrive : public EngineDrive {
public:
    static constexpr std::chrono::milliseconds keptFor{2000};
    static constexpr std::chrono::seconds hangsFor{60};

    /// `receivesEvents` says that `mediaChanged` will be called for every change of the disc.
    OpticalDrive(DriveRecord record, std::string displayName, std::weak_ptr<RunLoops> runLoops,
                 bool receivesEvents, Clock clock = std::chrono::steady_clock::now);

    const DriveRecord& record() const { return _record; }

    /// Called if the disc was changed, inserted or removed. Clears the cache and reports the change
    /// of status.
    void mediaChanged();

    /// See AccessProblem.h. Empty while a burn uses the drive.
    std::string accessProblem() const override;

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
    /// Ejects, whatever the disc. Returns false also if the tray is open already, if another
    /// program uses the drive (for example a mounted disc), and if the drive keeps its disc.
    bool ejectMedia() override;

    std::unique_ptr<SectorWriter> claim(const DiscPlan& plan, const BurnSettings& settings,
                                        const std::shared_ptr<StopSignal>& stop) override;
    void release(std::optional<std::uint64_t> writtenSectors) override;

private:
    using QueryLock = std::unique_lock<TimedMutex>;
    struct Cached {
        DiscFacts disc;
        std::chrono::steady_clock::time_point since;
        bool isTransient = false; ///< not cached: the drive was busy, or the disc being loaded
    };

    DiscFacts disc() const;
    std::optional<DiscFacts> cachedDisc() const;
    DiscFacts query() const;
    std::unique_ptr<DriveWorker> startWorker(DriveWorker::DiscHandler handleDisc = {}) const;
    bool isGone() const;
    QueryLock lockWhile(const std::function<bool()>& mayGoOn) const;
    bool mayQuery() const;
    bool eject();
    std::uint64_t changeCount() const;
    void updateCache(const DiscFacts& disc, bool isTransient, std::uint64_t changes) const;
    bool isHanging() const;
    void failed(const std::exception& failure) const;
    void reserve(const std::shared_ptr<StopSignal>& stop);
    void endClaim();
    void reload();
    void logUnsupportedReload();
    std::unique_ptr<SectorWriter> open(const DiscPlan& plan, const BurnSettings& settings,
                                       const std::shared_ptr<StopSignal>& stop);

    const DriveRecord _record;
    const bool _receivesEvents;
    const Clock _clock;

    /// Held while the drive is open for a query. Locked before `mutex()`.
    mutable TimedMutex _querying;
    mutable std::optional<Cached> _cached;
    mutable std::optional<std::chrono::steady_clock::time_point> _hangsSince;
    std::uint64_t _changes = 0; ///< the number of reported changes of the disc

    // Used by the thread of the running burn alone.
    std::shared_ptr<DriveWorker> _worker; ///< has the drive open
    bool _hasLoggedUnsupportedReload = false;
};

} // namespace quarner
