// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/SampleOffset.h"

#include <algorithm>
#include <cstring>

#include "adapters/engine/DiscPlan.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {
namespace {

constexpr std::int64_t samplesPerSector = DRTrack::samplesPerSector;

std::int64_t sectorOf(std::int64_t place) {
    return place >= 0 ? place / samplesPerSector : -((-place - 1) / samplesPerSector) - 1;
}

std::int64_t samplesIn(std::span<const std::byte> bytes) {
    return std::int64_t(bytes.size()) / SampleOffset::bytesPerSample;
}

} // namespace

std::optional<SampleOffset::Sample> SampleOffset::Stretch::at(std::int64_t place) const {
    if (place < first || place >= end())
        return std::nullopt;
    return samples[std::size_t(place - first)];
}

void SampleOffset::Stretch::extend(std::int64_t limit, std::int64_t place,
                                   std::span<const std::byte> bytes) {
    const std::int64_t begin = end();
    const std::int64_t stop = std::min(limit, place + samplesIn(bytes));
    if (begin < place || begin >= stop)
        return;
    samples.resize(std::size_t(stop - first));
    std::memcpy(&samples[std::size_t(begin - first)],
                bytes.data() + (begin - place) * bytesPerSample,
                std::size_t(stop - begin) * bytesPerSample);
}

void SampleOffset::Stretch::copyTo(std::span<std::byte> bytes, std::int64_t place) const {
    if (!bytes.empty())
        std::memcpy(bytes.data(), &samples.at(std::size_t(place - first)), bytes.size());
}

SampleOffset::SampleOffset(std::uint64_t sectors)
    : _total(std::int64_t(sectors) * samplesPerSector) {
    _end.first = std::max<std::int64_t>(0, _total - mostSamples);
}

void SampleOffset::add(std::span<const std::byte> sectors) {
    const std::int64_t place = _added;
    _added += samplesIn(sectors);
    _start.extend(mostSamples, place, sectors);
    _end.extend(_total, place, sectors);
    if (_isSilent) {
        const auto sound = std::find_if(sectors.begin(), sectors.end(),
                                        [](std::byte byte) { return byte != std::byte(0); });
        _isSilent = sound == sectors.end();
        _sound.first = place + (sound - sectors.begin()) / bytesPerSample;
    }
    if (!_isSilent)
        _sound.extend(_sound.first + soundSamples, place, sectors);
}

std::optional<std::int64_t> SampleOffset::find(const Read& read) const {
    if (_isSilent)
        return 0;
    const std::optional<Stretch> stretch = readAroundSound(read);
    if (!stretch)
        return std::nullopt;
    for (std::int64_t distance = 0; distance <= mostSamples; ++distance)
        for (const std::int64_t offset : {distance, -distance})
            if (fits(*stretch, offset))
                return offset;
    return std::nullopt;
}

/// With silence before the sound: in a steady tone nothing but its beginning tells one period from
/// the next.
std::optional<SampleOffset::Stretch> SampleOffset::readAroundSound(const Read& read) const {
    const std::int64_t begin = _sound.first - mostSamples;
    const std::int64_t end = std::min(_total, _sound.end() + mostSamples);
    std::optional<Stretch> stretch = readStretch(begin, end, read);
    if (!stretch && begin < 0) // not every drive reads before sector 0
        stretch = readStretch(0, end, read);
    return stretch;
}

std::optional<SampleOffset::Stretch> SampleOffset::readStretch(std::int64_t begin, std::int64_t end,
                                                               const Read& read) const {
    const std::int64_t firstSector = sectorOf(begin);
    const std::int64_t sectors = sectorOf(end - 1) + 1 - firstSector;
    Stretch stretch;
    stretch.first = firstSector * samplesPerSector;
    stretch.samples.resize(std::size_t(sectors * samplesPerSector));
    if (!read(firstSector, std::as_writable_bytes(std::span(stretch.samples))))
        return std::nullopt;
    return stretch;
}

bool SampleOffset::fits(const Stretch& read, std::int64_t offset) const {
    for (std::int64_t place = _sound.first - mostSamples; place < _sound.end(); ++place) {
        const std::optional<Sample> sample = read.at(place - offset);
        if (sample && *sample != written(place))
            return false;
    }
    return true;
}

/// Of what comes before the first sound, the silence before the disc's sector 0 included.
SampleOffset::Sample SampleOffset::written(std::int64_t place) const {
    return _sound.at(place).value_or(0);
}

bool SampleOffset::readAligned(std::uint64_t firstSector, std::span<std::byte> buffer,
                               std::int64_t offset, const Read& read) const {
    const std::int64_t begin = std::int64_t(firstSector) * samplesPerSector;
    const std::int64_t end = begin + samplesIn(buffer);
    // What lies between these can be read.
    const std::int64_t from = std::clamp(offset, begin, end);
    const std::int64_t to = std::clamp(_total + offset, from, end);
    const auto part = [&](std::int64_t first, std::int64_t last) {
        return buffer.subspan(std::size_t(first - begin) * bytesPerSample,
                              std::size_t(last - first) * bytesPerSample);
    };
    _start.copyTo(part(begin, from), begin);
    _end.copyTo(part(to, end), to);
    if (from == to)
        return true;
    const std::optional<Stretch> stretch = readStretch(from - offset, to - offset, read);
    if (stretch)
        stretch->copyTo(part(from, to), from - offset);
    return stretch.has_value();
}

} // namespace quarner
