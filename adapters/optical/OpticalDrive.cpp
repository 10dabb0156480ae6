// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/OpticalDrive.h"

#include <utility>

#include "adapters/optical/AccessProblem.h"
#include "adapters/optical/DriveNode.h"
#include "adapters/optical/FailureCause.h"
#include "adapters/optical/GrabbedDrive.h"
#include "adapters/optical/OpticalWriter.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Platform.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

/// The timeout for a drive that another program has open. The system itself opens a drive for a
/// moment after each event.
constexpr std::chrono::milliseconds queryTimeout{500};
constexpr std::chrono::milliseconds burnTimeout{3000};

/// The time that a burn waits for a new disc to become ready.
constexpr std::chrono::seconds loadingTimeout{30};

DRMSF msf(std::uint64_t blocks) { return DRMSF::msfWithFrames(static_cast<std::uint32_t>(blocks)); }

/// Returns why this disc cannot take this plan; `std::nullopt` if it can.
std::optional<BurnFailure> refusal(const DiscFacts& disc, const DiscPlan& plan,
                                   const BurnSettings& settings) {
    using State = DiscFacts::State;
    if (disc.state == State::None)
        return BurnFailure(DRError::MediaNotPresent, text("no disc"));
    if (disc.state == State::NotReady)
        return BurnFailure(DRError::MediaNotPresent, text("the disc does not get ready"));
    if (disc.type == DRDeviceMediaTypeCDROM) // many drives also report a closed CD-R as CD-ROM
        return BurnFailure(DRError::MediaNotWritable, text("the disc cannot be recorded any more"));
    if (disc.type != DRDeviceMediaTypeCDR && disc.type != DRDeviceMediaTypeCDRW)
        return BurnFailure(DRError::WrongMedia,
                           text("the disc is no CD: {kind}", {{"kind", disc.type}}));
    if (disc.state != State::Blank && !(disc.isErasable && settings.overwrite))
        return BurnFailure(DRError::MediaNotWritable, text("the disc is not blank"));
    if (plan.sectors() > disc.freeBlocks)
        return discTooSmall(plan, disc.freeBlocks);
    return std::nullopt;
}

} // namespace

OpticalDrive::OpticalDrive(DriveRecord record, std::string displayName,
                           std::weak_ptr<RunLoops> runLoops, bool receivesEvents, Clock clock)
    : EngineDrive(std::move(displayName), std::move(runLoops)), _record(std::move(record)),
      _receivesEvents(receivesEvents), _clock(std::move(clock)) {}

void OpticalDrive::mediaChanged() {
    {
        const std::lock_guard lock(mutex());
        ++_changes;
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
    if (!_cached)
        return std::nullopt;
    const bool isKept = _receivesEvents && !_cached->isTransient;
    if (isKept || _clock() - _cached->since < keptFor)
        return _cached->disc;
    return std::nullopt;
}

DiscFacts OpticalDrive::disc() const {
    if (std::optional<DiscFacts> known = cachedDisc())
        return std::move(*known);
    const std::lock_guard asking(_querying);
    if (std::optional<DiscFacts> known = cachedDisc()) // another thread has just queried it
        return std::move(*known);
    return query();
}

DiscFacts OpticalDrive::query() const {
    const std::uint64_t changes = changeCount();
    DiscFacts disc;
    bool isTransient = true;
    try {
        const GrabbedDrive drive(_record, {queryTimeout, {}}, nullptr);
        disc = readDiscFacts(drive);
        isTransient = disc.state == DiscFacts::State::NotReady;
    } catch (const DiscIsLoading&) {
        disc.state = DiscFacts::State::NotReady;
    } catch (const std::exception& failure) {
        currentPlatform()->log->log(displayName() + ": " + failure.what());
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
    const std::lock_guard asking(_querying); // a query has it open too
    return mayQuery() ? quarner::accessProblem(_record.node).value_or("") : "";
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
        const std::lock_guard asking(_querying);
        isOut = mayQuery() && eject();
    }
    if (isOut)
        mediaChanged();
    return isOut;
}

bool OpticalDrive::mayQuery() const {
    const std::lock_guard lock(mutex());
    return isAttached() && !isBurning();
}

bool OpticalDrive::eject() {
    try {
        return DriveNode(_record.node, queryTimeout, nullptr).openTray();
    } catch (const std::exception& failure) {
        currentPlatform()->log->log(displayName() + ": " + failure.what());
        return false;
    }
}

std::unique_ptr<SectorWriter> OpticalDrive::claim(const DiscPlan& plan,
                                                  const BurnSettings& settings,
                                                  const std::shared_ptr<StopSignal>& stop) {
    reserve(stop);
    std::unique_ptr<SectorWriter> writer;
    try {
        const std::lock_guard asking(_querying); // waits for the end of a running query
        writer = open(plan, settings, stop);
    } catch (...) {
        const std::lock_guard lock(mutex());
        endBurn();
        _cached.reset(); // the disc may have been changed by the attempt
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
    auto drive = std::make_unique<GrabbedDrive>(_record, DriveTimeouts{burnTimeout, loadingTimeout},
                                                stop.get());
    const DiscFacts disc = readDiscFacts(*drive);
    updateCache(disc, false, changes);
    stop->throwIfRequested();
    if (const std::optional<BurnFailure> failure = refusal(disc, plan, settings))
        throw BurnFailure(causeBehind(failure->error(), *drive, _record, *stop),
                          displayName() + ": " + failure->info());
    _reload.emplace(_record, plan);
    return std::make_unique<OpticalWriter>(std::move(drive), _record, settings,
                                           disc.state != DiscFacts::State::Blank, stop);
}

void OpticalDrive::release(std::optional<std::uint64_t> writtenSectors) {
    if (writtenSectors)
        reload();
    {
        const std::lock_guard lock(mutex());
        endBurn();
        _cached.reset();
    }
    reportChange();
}

/// Still part of the burn, so that no query opens the drive, and so that a host that reacts to the
/// end of the burn finds the new disc.
void OpticalDrive::reload() {
    try {
        if (_reload->perform() == DiscReload::Result::NotSupported)
            logUnsupportedReload();
    } catch (const std::exception& failure) {
        currentPlatform()->log->log(displayName() +
                                    ": the written disc was not reloaded: " + failure.what());
    }
}

void OpticalDrive::logUnsupportedReload() {
    if (!_hasLoggedUnsupportedReload)
        currentPlatform()->log->log(displayName() +
                                    ": the drive cannot close its tray, so a written disc is not "
                                    "reloaded. The system may see its content only after the disc "
                                    "was taken out and inserted again.");
    _hasLoggedUnsupportedReload = true;
}

} // namespace quarner
