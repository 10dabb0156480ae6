// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/ImageDrive.h"

#include <algorithm>
#include <array>
#include <utility>

#include "adapters/image/CueWriter.h"
#include "adapters/image/ImageNames.h"
#include "adapters/image/IsoWriter.h"
#include "quarner/platform/DRKeys.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

/// Blocks per second of 4x, 8x, 16x, 24x, 32x, 40x, 48x and 52x. An image is written as fast as
/// possible, whatever speed is requested.
constexpr std::array speeds = {300, 600, 1200, 1800, 2400, 3000, 3600, 3900};

} // namespace

ImageDrive::ImageDrive(std::string displayName, std::string path, std::uint32_t capacity, Disc disc,
                       std::shared_ptr<FileSystem> files, std::weak_ptr<RunLoops> runLoops)
    : EngineDrive(std::move(displayName), std::move(runLoops)), _path(std::move(path)),
      _capacity(capacity), _files(std::move(files)), _disc(disc) {}

std::optional<ImageDrive::Disc> ImageDrive::disc() const {
    const std::lock_guard lock(mutex());
    return lockedDisc();
}

std::optional<ImageDrive::Disc> ImageDrive::lockedDisc() const {
    return isAttached() ? _disc : std::nullopt;
}

std::uint64_t ImageDrive::freeBlocks(const Disc& disc) const {
    return disc.isBlank ? _capacity : 0;
}

Dictionary ImageDrive::info() const { return {{DRDeviceCanWriteCDKey, true}}; }

Dictionary ImageDrive::status() const {
    Dictionary status;
    const std::lock_guard lock(mutex());
    status.emplace(DRStatusCurrentSpeedKey, speed());
    if (const std::optional<Disc> found = lockedDisc())
        status.emplace(DRDeviceMediaInfoKey,
                       Dictionary{{DRDeviceMediaTypeKey, DRDeviceMediaTypeCDR},
                                  {DRDeviceMediaBlocksUsedKey, found->usedBlocks},
                                  {DRDeviceMediaBlocksFreeKey, freeBlocks(*found)},
                                  {DRDeviceBurnSpeedsKey, Array(speeds.begin(), speeds.end())}});
    return status;
}

bool ImageDrive::mediaIsPresent() const { return disc().has_value(); }

bool ImageDrive::mediaIsBlank() const {
    const std::optional<Disc> found = disc();
    return found && found->isBlank;
}

std::optional<DRMSF> ImageDrive::mediaSpaceUsed() const {
    const std::optional<Disc> found = disc();
    if (!found)
        return std::nullopt;
    return DRMSF::msfWithFrames(static_cast<std::uint32_t>(found->usedBlocks));
}

std::optional<DRMSF> ImageDrive::mediaSpaceFree() const {
    const std::optional<Disc> found = disc();
    if (!found)
        return std::nullopt;
    return DRMSF::msfWithFrames(static_cast<std::uint32_t>(freeBlocks(*found)));
}

bool ImageDrive::ejectMedia() {
    {
        const std::lock_guard lock(mutex());
        if (!lockedDisc() || isBurning())
            return false;
        _disc.reset();
    }
    reportChange();
    return true;
}

bool ImageDrive::insertBlank() {
    {
        const std::lock_guard lock(mutex());
        if (_disc || !isAttached())
            return false;
        _disc = Disc{};
    }
    reportChange();
    return true;
}

std::unique_ptr<SectorWriter> ImageDrive::claim(const DiscPlan& plan, const BurnSettings&,
                                                const std::shared_ptr<StopSignal>& stop) {
    std::unique_ptr<SectorWriter> writer = writerFor(plan, stop);
    {
        const std::lock_guard lock(mutex());
        refuseUnlessReady(plan);
        startBurn(stop);
    }
    reportChange();
    return writer;
}

std::unique_ptr<SectorWriter> ImageDrive::writerFor(const DiscPlan& plan,
                                                    const std::shared_ptr<StopSignal>& stop) const {
    if (plan.sectorSize == dataBlockSize) {
        if (std::optional<IsoNames> names = isoNames(_path))
            return std::make_unique<IsoWriter>(_files, std::move(*names), stop);
        throw BurnFailure(DRError::WrongMedia,
                          text("{path}: a data disc needs the extension iso", {{"path", _path}}),
                          _path);
    }
    if (std::optional<CueNames> names = cueNames(_path))
        return std::make_unique<CueWriter>(_files, std::move(*names), stop);
    throw BurnFailure(DRError::WrongMedia,
                      text("{path}: an audio disc needs the extension cue", {{"path", _path}}),
                      _path);
}

void ImageDrive::refuseUnlessReady(const DiscPlan& plan) const {
    refuseUnlessFree();
    if (!_disc)
        throw BurnFailure(DRError::MediaNotPresent,
                          text("{drive}: no disc", {{"drive", displayName()}}));
    if (!_disc->isBlank)
        throw BurnFailure(DRError::MediaNotWritable,
                          text("{drive}: the disc is not blank", {{"drive", displayName()}}));
    if (plan.sectors() > _capacity)
        throw discTooSmall(plan, _capacity);
}

void ImageDrive::release(std::optional<std::uint64_t> writtenSectors) {
    {
        const std::lock_guard lock(mutex());
        endBurn();
        if (writtenSectors && _disc)
            _disc = Disc{.isBlank = false, .usedBlocks = *writtenSectors};
    }
    reportChange();
}

} // namespace quarner
