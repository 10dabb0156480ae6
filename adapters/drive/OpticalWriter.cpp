// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/OpticalWriter.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "adapters/drive/DiscReader.h"
#include "adapters/drive/FailureCause.h"
#include "adapters/drive/Libburn.h"
#include "adapters/engine/BurnFailure.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

constexpr std::chrono::milliseconds pollInterval{10};

/// The number of sectors that one call of the library reads. A call cannot be interrupted.
constexpr std::size_t sectorsPerReading = 64;

/// No message, and no second attempt block by block: the caller decides how to handle a failure.
constexpr int quietOnce = 2 | 4;

} // namespace

OpticalWriter::OpticalWriter(std::unique_ptr<GrabbedDrive> drive, DriveRecord record,
                             BurnSettings settings, bool needsBlanking,
                             std::shared_ptr<StopSignal> stop)
    : _drive(std::move(drive)), _record(std::move(record)), _settings(settings),
      _needsBlanking(needsBlanking), _stop(std::move(stop)) {}

OpticalWriter::~OpticalWriter() = default;

void OpticalWriter::openSession(const DiscPlan& plan) {
    _plan = plan;
    _jobStart = BurnLibrary::shared().now();
    for (auto track = plan.tracks.rbegin(); track != plan.tracks.rend(); ++track) {
        _left.push_back({false, std::uint64_t(track->length) * plan.sectorSize});
        _left.push_back({true, std::uint64_t(track->preGap) * plan.sectorSize});
    }
    if (isAudio())
        _sound.emplace(plan.sectors());
    if (_needsBlanking)
        if (const std::optional<DRError> error = blankDisc(*_drive))
            fail(*error, text("blanking the disc"));
    _stop->throwIfRequested();
    setSpeeds(*_drive, _settings.requestedSpeed);
    _job = std::make_unique<BurnJob>(*_drive, plan, _settings, _pipe);
    if (const std::optional<std::string> refusal = _job->refusal())
        fail(DRError::MediaNotWritable,
             text("libburn refuses to write: {reason}", {{"reason", *refusal}}));
}

void OpticalWriter::write(std::span<const std::byte> sectors) {
    if (_sound)
        _sound->add(sectors);
    while (!sectors.empty()) {
        bool isGap = false;
        const std::span<const std::byte> part = nextPart(sectors, isGap);
        if (!isGap)
            give(part);
        sectors = sectors.subspan(part.size());
    }
    BurnLibrary::shared().logMessages();
}

std::span<const std::byte> OpticalWriter::nextPart(std::span<const std::byte> sectors,
                                                   bool& isGap) {
    while (_left.back().bytes == 0)
        _left.pop_back();
    Part& next = _left.back();
    isGap = next.isGap;
    const auto part = std::size_t(std::min<std::uint64_t>(next.bytes, sectors.size()));
    next.bytes -= part;
    return sectors.first(part);
}

void OpticalWriter::give(std::span<const std::byte> sectors) {
    if (!_isStarted)
        _job->start();
    _isStarted = true;
    if (!_pipe.give(sectors, _stop->token(), [this] { return _job->isRunning(); }))
        fail(DRError::WriteFailed, text("writing"));
}

void OpticalWriter::closeSession() {
    while (_job->isWriting()) {
        _stop->throwIfRequested();
        BurnLibrary::shared().logMessages();
        std::this_thread::sleep_for(pollInterval);
    }
    if (!_job->isRunning() && !_job->wroteWell())
        fail(DRError::WriteFailed, text("writing"));
}

void OpticalWriter::finish() {
    while (_job->isRunning()) {
        BurnLibrary::shared().logMessages();
        std::this_thread::sleep_for(pollInterval);
    }
    if (!_job->wroteWell())
        fail(DRError::WriteFailed, text("closing the disc"));
}

void OpticalWriter::beginVerification() {
    const std::string difference = differenceFromPlan(*_drive, _plan);
    if (!difference.empty())
        fail(DRError::VerifyFailed, text("the table of contents of the disc has {difference}",
                                         {{"difference", difference}}));
    if (_sound)
        findOffset();
}

void OpticalWriter::findOffset() {
    bool isRead = true;
    const auto read = [&](std::int64_t firstSector, std::span<std::byte> buffer) {
        return isRead = readSectors(firstSector, buffer);
    };
    const std::optional<std::int64_t> offset = _sound->find(read);
    if (!isRead)
        fail(DRError::ReadBackFailed, text("reading back the first sound"));
    if (!offset)
        fail(DRError::VerifyFailed, text("the first sound was not found again on the disc"));
    _offset = *offset;
}

void OpticalWriter::readBack(std::uint64_t firstSector, std::span<std::byte> buffer) {
    const auto read = [this](std::int64_t first, std::span<std::byte> bytes) {
        return readSectors(first, bytes);
    };
    const bool isRead = _sound ? _sound->readAligned(firstSector, buffer, _offset, read)
                               : read(std::int64_t(firstSector), buffer);
    if (!isRead)
        fail(DRError::ReadBackFailed,
             text("reading back from sector {sector}", {{"sector", std::to_string(firstSector)}}),
             firstSector);
}

bool OpticalWriter::readSectors(std::int64_t firstSector, std::span<std::byte> buffer) {
    const std::size_t step = sectorsPerReading * _plan.sectorSize;
    while (!buffer.empty()) {
        _stop->throwIfRequested();
        const std::span<std::byte> part = buffer.first(std::min(step, buffer.size()));
        if (!readSome(firstSector, part))
            return false;
        firstSector += std::int64_t(part.size() / _plan.sectorSize);
        buffer = buffer.subspan(part.size());
    }
    return true;
}

bool OpticalWriter::readSome(std::int64_t firstSector, std::span<std::byte> buffer) {
    off_t count = 0;
    auto* const bytes = reinterpret_cast<char*>(buffer.data());
    const auto size = off_t(buffer.size());
    const int result =
        isAudio() ? burn::burn_read_audio(_drive->handle(), int(firstSector), bytes, size, &count,
                                          quietOnce)
                  : burn::burn_read_data(_drive->handle(), off_t(firstSector) * dataBlockSize,
                                         bytes, size, &count, quietOnce);
    return result == 1 && count == size;
}

void OpticalWriter::fail(DRError error, const std::string& attempt,
                         std::optional<std::uint64_t> sector) {
    _stop->throwIfRequested();
    const std::string reason = BurnLibrary::shared().failureSince(_jobStart);
    const std::string text = _record.node + ": " + attempt + (reason.empty() ? "" : ": " + reason);
    _job.reset();
    throw BurnFailure(causeBehind(error, *_drive, _record, *_stop), text, {}, sector);
}

} // namespace quarner
