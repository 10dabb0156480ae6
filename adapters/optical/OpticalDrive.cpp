// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/OpticalDrive.h"

#include <thread>
#include <utility>

#include "adapters/optical/DriveLog.h"
#include "adapters/optical/WorkerWriter.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

/// The time during which a burn tries to open a drive that gives no reason for its refusal.
constexpr std::chrono::milliseconds takingTimeout{3000};
constexpr std::chrono::milliseconds takingInterval{100};
/// The interval at which a wait for another query looks for a burn that has begun, or was stopped.
constexpr std::chrono::milliseconds checkInterval{20};

std::string hangingProblem() {
    return text("the drive does not respond; switch it off and on again");
}

/// Whether the drive has not responded.
bool isTimeout(const std::exception& failure) {
    const auto* const known = dynamic_cast<const BurnFailure*>(&failure);
    return known != nullptr && known->error() == DRError::DeviceHanging;
}

DRMSF msf(std::uint64_t blocks) { return DRMSF::msfWithFrames(static_cast<std::uint32_t>(blocks)); }

} // namespace

OpticalDrive::OpticalDrive(DriveRecord record, std::string displayName,
                           std::weak_ptr<RunLoops> runLoops, bool receivesEvents, Clock clock)
    : EngineDrive(std::move(displayName), std::move(runLoops)), _record(std::move(record)),
      _receivesEvents(receivesEvents), _clock(std::move(clock)) {}

void OpticalDrive::mediaChanged() {
    {
        const std::lock_guard lock(mutex());
        ++_changes;
        _hangsSince.reset();
        if (!isBurning())
            _cached.reset();
    }
    reportChange();
}

/// Returns what is known without querying the drive; `std::nullopt` if it must be queried.
std::optional<DiscFacts> OpticalDrive::cachedDisc() const {
    const std::lock_guard lock(mutex());
    if (!isAttached())
        return DiscFacts();
    if (isBurning())
        return _cached ? _cached->disc : DiscFacts();
    if (isHanging())
        return DiscFacts();
    if (!_cached)
        return std::nullopt;
    const bool isKept = _receivesEvents && !_cached->isTransient;
    if (isKept || _clock() - _cached->since < keptFor)
        return _cached->disc;
    return std::nullopt;
}

DiscFacts OpticalDrive::disc() const {
    std::optional<DiscFacts> known; // also once another thread has queried the drive, or burns
    const QueryLock asking = lockWhile([&] {
        known = cachedDisc();
        return !known;
    });
    return known ? std::move(*known) : query();
}

std::unique_ptr<DriveWorker> OpticalDrive::startWorker(DriveWorker::DiscHandler handleDisc) const {
    return std::make_unique<DriveWorker>(_record, displayName(), std::move(handleDisc),
                                         DriveWorker::startDriveProgram,
                                         [this] { return isGone(); });
}

bool OpticalDrive::isGone() const {
    const std::lock_guard lock(mutex());
    return !isAttached();
}

DiscFacts OpticalDrive::query() const {
    const std::uint64_t changes = changeCount();
    DiscFacts disc;
    bool isTransient = true;
    try {
        const Dictionary reply = startWorker()->ask(drive::facts, fieldsOf(_record), nullptr);
        disc = discFactsOf(dictionaryFor(reply, "disc"));
        isTransient = valueFor(reply, "isTransient").asBool();
    } catch (const std::exception& failure) {
        failed(failure);
    }
    updateCache(disc, isTransient, changes);
    return disc;
}

std::uint64_t OpticalDrive::changeCount() const {
    const std::lock_guard lock(mutex());
    return _changes;
}

/// Results read while the disc was changed are dropped.
void OpticalDrive::updateCache(const DiscFacts& disc, bool isTransient,
                               std::uint64_t changes) const {
    const std::lock_guard lock(mutex());
    if (changes == _changes)
        _cached = Cached{disc, _clock(), isTransient};
}

std::string OpticalDrive::accessProblem() const {
    const QueryLock asking = lockWhile([this] { return mayQuery(); });
    if (!asking.owns_lock())
        return {};
    if (const std::lock_guard lock(mutex()); isHanging())
        return hangingProblem();
    try {
        const Dictionary reply =
            startWorker()->ask(drive::accessProblem, fieldsOf(_record), nullptr);
        return textFor(reply, "problem");
    } catch (const std::exception& failure) {
        failed(failure);
        return isTimeout(failure) ? hangingProblem() : failure.what();
    }
}

/// Called with the mutex locked.
bool OpticalDrive::isHanging() const { return _hangsSince && _clock() - *_hangsSince < hangsFor; }

void OpticalDrive::failed(const std::exception& failure) const {
    logLine({displayName(), ": ", failure.what()});
    const std::lock_guard lock(mutex());
    if (isTimeout(failure))
        _hangsSince = _clock();
}

Dictionary OpticalDrive::info() const { return {{DRDeviceCanWriteCDKey, _record.canWriteCD}}; }

Dictionary OpticalDrive::status() const {
    const DiscFacts found = disc();
    Dictionary status;
    if (found.isPresent()) {
        Dictionary media = {{DRDeviceMediaTypeKey, found.type},
                            {DRDeviceMediaBlocksUsedKey, found.usedBlocks},
                            {DRDeviceMediaBlocksFreeKey, found.freeBlocks}};
        if (!found.speeds.empty())
            media.emplace(DRDeviceBurnSpeedsKey, Array(found.speeds.begin(), found.speeds.end()));
        status.emplace(DRDeviceMediaInfoKey, std::move(media));
    }
    const std::lock_guard lock(mutex());
    status.emplace(DRStatusCurrentSpeedKey, speed());
    return status;
}

bool OpticalDrive::mediaIsPresent() const { return disc().isPresent(); }

bool OpticalDrive::mediaIsTransitioning() const {
    return disc().state == DiscFacts::State::NotReady;
}

bool OpticalDrive::mediaIsBlank() const { return disc().state == DiscFacts::State::Blank; }

bool OpticalDrive::mediaIsAppendable() const {
    const DiscFacts::State state = disc().state;
    return state == DiscFacts::State::Blank || state == DiscFacts::State::Appendable;
}

bool OpticalDrive::mediaIsErasable() const { return disc().isErasable; }

bool OpticalDrive::mediaIsOverwritable() const { return disc().isOverwritable; }

std::optional<DRMSF> OpticalDrive::mediaSpaceUsed() const {
    const DiscFacts found = disc();
    return found.isPresent() ? std::optional(msf(found.usedBlocks)) : std::nullopt;
}

std::optional<DRMSF> OpticalDrive::mediaSpaceFree() const {
    const DiscFacts found = disc();
    return found.isPresent() ? std::optional(msf(found.freeBlocks)) : std::nullopt;
}

bool OpticalDrive::ejectMedia() {
    bool isOut = false;
    {
        const QueryLock asking = lockWhile([this] { return mayQuery(); });
        isOut = asking.owns_lock() && eject();
    }
    if (isOut)
        mediaChanged();
    return isOut;
}

/// Waits for the end of another query. Holds no lock if `mayGoOn` does not return true, which is
/// called before and after each wait.
OpticalDrive::QueryLock OpticalDrive::lockWhile(const std::function<bool()>& mayGoOn) const {
    QueryLock lock(_querying, std::defer_lock);
    while (mayGoOn()) {
        if (lock.owns_lock())
            return lock;
        static_cast<void>(lock.try_lock_for(checkInterval));
    }
    return {};
}

bool OpticalDrive::mayQuery() const {
    const std::lock_guard lock(mutex());
    return isAttached() && !isBurning();
}

bool OpticalDrive::eject() {
    try {
        const Dictionary reply = startWorker()->ask(drive::eject, fieldsOf(_record), nullptr);
        return valueFor(reply, "isOut").asBool();
    } catch (const std::exception& failure) {
        failed(failure);
        return false;
    }
}

std::unique_ptr<SectorWriter> OpticalDrive::claim(const DiscPlan& plan,
                                                  const BurnSettings& settings,
                                                  const std::shared_ptr<StopSignal>& stop) {
    reserve(stop);
    std::unique_ptr<SectorWriter> writer;
    try {
        const QueryLock asking = lockWhile([&] {
            stop->throwIfRequested();
            return true;
        });
        writer = open(plan, settings, stop);
    } catch (...) {
        endClaim(); // the disc may have been changed by the attempt
        throw;
    }
    reportChange();
    return writer;
}

void OpticalDrive::reserve(const std::shared_ptr<StopSignal>& stop) {
    const std::lock_guard lock(mutex());
    refuseUnlessFree();
    startBurn(stop);
}

std::unique_ptr<SectorWriter> OpticalDrive::open(const DiscPlan& plan, const BurnSettings& settings,
                                                 const std::shared_ptr<StopSignal>& stop) {
    const std::uint64_t changes = changeCount();
    const auto end = std::chrono::steady_clock::now() + takingTimeout;
    const Dictionary fields = {{"drive", fieldsOf(_record)},
                               {"name", displayName()},
                               {"plan", fieldsOf(plan)},
                               {"settings", fieldsOf(settings)}};
    while (true) {
        stop->throwIfRequested();
        try {
            _worker = startWorker(
                [this, changes](const DiscFacts& disc) { updateCache(disc, false, changes); });
            _worker->ask(drive::claim, fields, stop.get());
            return std::make_unique<WorkerWriter>(_worker, stop);
        } catch (const DriveNotTaken&) {
            if (std::chrono::steady_clock::now() >= end)
                throw;
        }
        std::this_thread::sleep_for(takingInterval);
    }
}

void OpticalDrive::release(std::optional<std::uint64_t> writtenSectors) {
    if (writtenSectors)
        reload();
    endClaim();
    reportChange();
}

/// A drive that hung in the burn is not asked by the host that reacts to its end.
void OpticalDrive::endClaim() {
    const bool hasHung = _worker && _worker->hasHung();
    _worker.reset();
    const std::lock_guard lock(mutex());
    endBurn();
    _cached.reset();
    if (hasHung)
        _hangsSince = _clock();
}

/// Still part of the burn, so that no query opens the drive, and so that a host that reacts to the
/// end of the burn finds the new disc.
void OpticalDrive::reload() {
    try {
        if (!valueFor(_worker->ask(drive::reload, nullptr), "isSupported").asBool())
            logUnsupportedReload();
    } catch (const std::exception& failure) {
        logLine({displayName(), ": the written disc was not reloaded: ", failure.what()});
    }
}

void OpticalDrive::logUnsupportedReload() {
    if (!_hasLoggedUnsupportedReload)
        logLine({displayName(), ": the drive cannot close its tray, so a written disc is not "
                                "reloaded. The system may see its content only after the disc "
                                "was taken out and inserted again."});
    _hasLoggedUnsupportedReload = true;
}

} // namespace quarner
