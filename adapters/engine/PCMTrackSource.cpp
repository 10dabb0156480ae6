// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/PCMTrackSource.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/posix/FileStamps.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

constexpr std::size_t bytesPerPair = 4; // left and right, 16 bits each

/// Returns the buffer as samples. The engine's buffers come from operator new, so they are aligned
/// and may hold objects of any trivial type.
std::span<std::int16_t> asSamples(std::span<std::byte> bytes) {
    return {reinterpret_cast<std::int16_t*>(bytes.data()), bytes.size() / sizeof(std::int16_t)};
}

} // namespace

void makeLittleEndian(std::span<std::byte> samples, std::endian order) {
    if (order == std::endian::big)
        for (std::size_t i = 0; i + 1 < samples.size(); i += 2)
            std::swap(samples[i], samples[i + 1]);
}

PCMTrackSource::PCMTrackSource(std::shared_ptr<PCMService> service,
                               std::shared_ptr<const DRTrack> track)
    : _service(std::move(service)), _track(std::move(track)),
      _bytesOfSoundLeft(_track->sampleCount * bytesPerPair) {}

void PCMTrackSource::check() {
    const std::optional<FileStamp> now = stampOfFile(_track->path);
    if (!now || !mayBeRead(_track->path))
        throw BurnFailure(DRError::SourceMissing,
                          text("{path}: gone or not readable", {{"path", _track->path}}),
                          _track->path);
    if (*now != _track->stamp)
        throw BurnFailure(DRError::SourceChanged,
                          text("{path}: changed since it was added", {{"path", _track->path}}),
                          _track->path);
}

void PCMTrackSource::fail(const std::string& problem) const {
    throw BurnFailure(DRError::SourceUnreadable,
                      problem.empty() ? _track->path : _track->path + ": " + problem, _track->path);
}

void PCMTrackSource::open() {
    _stream = _service->open(_track->path);
    if (_stream)
        return;
    check();
    fail(_service->problemWith(_track->path));
}

void PCMTrackSource::read(std::span<std::byte> buffer) {
    const std::uint64_t sound = std::min<std::uint64_t>(buffer.size(), _bytesOfSoundLeft);
    const auto [samples, silence] =
        std::pair(buffer.first(std::size_t(sound)), buffer.subspan(std::size_t(sound)));
    if (!samples.empty())
        readSamples(samples);
    if (!silence.empty())
        std::memset(silence.data(), 0, silence.size());
}

void PCMTrackSource::readSamples(std::span<std::byte> buffer) {
    if (!_stream)
        open();
    const std::span<std::int16_t> samples = asSamples(buffer);
    const std::optional<std::size_t> count = _stream->read(samples);
    if (count != samples.size()) {
        check(); // reports a file that was changed during the burn as such
        fail(count ? text("plays shorter than measured") : _stream->problem());
    }
    makeLittleEndian(buffer);
    _bytesOfSoundLeft -= buffer.size();
    if (_bytesOfSoundLeft == 0)
        expectEnd();
}

void PCMTrackSource::expectEnd() {
    std::array<std::int16_t, 2> beyond = {};
    if (_stream->read(beyond).value_or(0) == 0)
        return;
    check(); // only a file with another stamp has changed
    fail(text("plays longer than measured"));
}

TrackSources audioSources(const DRLayout& layout, const std::shared_ptr<PCMService>& service) {
    TrackSources sources;
    for (const auto& track : layout)
        sources.push_back(std::make_unique<PCMTrackSource>(service, track));
    return sources;
}

} // namespace quarner
