// SPDX-License-Identifier: LGPL-2.1-or-later
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <mutex>
#include <utility>

#include "quarner/platform/DRFile.h"
#include "quarner/platform/DRFolder.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {

BurnItem::~BurnItem() = default;

std::string_view DRTrack::className() const { return drClassName; }

bool DRTrack::isKindOfClass(std::string_view name) const { return name == drClassName; }

struct DRTrack::LaterEstimate {
    std::uint64_t blocks() {
        std::call_once(once, [this] { made = std::exchange(make, nullptr)(); });
        return made;
    }

    std::function<std::uint64_t()> make;
    std::uint64_t most = 0;
    std::once_flag once;
    std::uint64_t made = 0;
};

void DRTrack::setEstimateLength(std::function<std::uint64_t()> estimate, std::uint64_t most) {
    _laterEstimate = std::make_shared<LaterEstimate>();
    _laterEstimate->make = std::move(estimate);
    _laterEstimate->most = most;
}

bool DRTrack::isEstimateBelow(std::uint64_t blocks) const {
    const bool isDecided = blocks == 0 || (_laterEstimate && _laterEstimate->most < blocks);
    return isDecided ? blocks > 0 : estimateLength() < blocks;
}

std::uint64_t DRTrack::estimateLength() const {
    if (_laterEstimate)
        return _laterEstimate->blocks();
    const std::uint64_t blocks = std::uint64_t(_length.totalFrames()) + _preGap.totalFrames();
    return _estimateLength.value_or(blocks);
}

std::string_view DRFile::className() const { return drClassName; }

bool DRFile::isKindOfClass(std::string_view name) const { return name == drClassName; }

std::string_view DRFolder::className() const { return drClassName; }

bool DRFolder::isKindOfClass(std::string_view name) const { return name == drClassName; }

std::uint32_t sectorsForSamples(std::uint64_t sampleCount) {
    const std::uint64_t whole = sampleCount / DRTrack::samplesPerSector;
    const std::uint64_t sectors = whole + (sampleCount % DRTrack::samplesPerSector != 0 ? 1 : 0);
    constexpr std::uint64_t least = DRTrack::minimumSectors;
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::clamp(sectors, least, most));
}

std::optional<FileStamp> stampOfFile(const std::string& path) {
    struct stat status = {};
    int outcome = 0;
    do
        outcome = stat(path.c_str(), &status);
    while (outcome != 0 && errno == EINTR);
    if (outcome != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileStamp{.size = static_cast<std::uint64_t>(status.st_size),
                     .modifiedSeconds = status.st_mtim.tv_sec,
                     .modifiedNanoseconds = status.st_mtim.tv_nsec,
                     .device = status.st_dev,
                     .inode = status.st_ino};
}

} // namespace quarner
