// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/SampleOffset.h"

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

std::optional<SampleOffset::Sample> SampleOffset::Run::at(std::int64_t place) const {
    if (place < first || place >= end())
        return std::nullopt;
    return samples[std::size_t(place - first)];
}

void SampleOffset::Run::extend(std::int64_t limit, std::int64_t place,
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

void SampleOffset::Run::copyTo(std::span<std::byte> bytes, std::int64_t place) const {
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
    const bool isWhole = std::int64_t(_sound.samples.size()) == soundSamples;
    if (_seeksChange && isWhole && _sound.first < mostSamples)
        seekChange(place, sectors);
}

/// Moves on in steps in which no change falls between two of them, until something has changed.
/// Each step is compared once: to compare again at every call would take minutes over a whole disc.
void SampleOffset::seekChange(std::int64_t place, std::span<const std::byte> sectors) {
    constexpr std::int64_t step = soundSamples / 2;
    if (_change.samples.empty()) {
        _seeksChange = isSteady(_sound);
        _change = _seeksChange ? _sound : Run();
    }
    while (_seeksChange) {
        _change.extend(_change.first + soundSamples, place, sectors);
        if (_added <= _change.end())
            return;
        _seeksChange = isSteady(_change);
        if (!_seeksChange)
            return;
        _change.samples.erase(_change.samples.begin(), _change.samples.begin() + step);
        _change.first += step;
    }
}

/// Returns whether the samples also match themselves at another offset.
bool SampleOffset::isSteady(const Run& written) {
    const std::vector<Sample>& samples = written.samples;
    for (std::ptrdiff_t shift = 1; shift <= 2 * mostSamples; ++shift)
        if (std::equal(samples.begin() + shift, samples.end(), samples.begin()))
            return true;
    return false;
}

std::optional<std::int64_t> SampleOffset::find(const Read& read) const {
    if (_isSilent)
        return 0;
    // The silence before the sound is compared too, including that before sector 0 of the disc.
    const std::int64_t begin = _sound.first - mostSamples;
    const std::optional<Run> sound = readAround(begin, _sound, read);
    const std::optional<Run> change = readAround(_change.first, _change, read);
    if (!sound || !change)
        return std::nullopt;
    for (std::int64_t distance = 0; distance <= mostSamples; ++distance)
        for (const std::int64_t offset : {distance, -distance})
            if (fits(*sound, offset, begin, _sound) &&
                fits(*change, offset, _change.first, _change))
                return offset;
    return std::nullopt;
}

/// Reads the samples around `begin`, as far as an offset can shift them.
std::optional<SampleOffset::Run> SampleOffset::readAround(std::int64_t begin, const Run& written,
                                                          const Read& read) const {
    if (written.samples.empty())
        return Run();
    const std::int64_t end = std::min(_total, written.end() + mostSamples);
    std::optional<Run> run = readRun(begin - mostSamples, end, read);
    if (!run && begin < mostSamples) // not every drive can read before sector 0
        run = readRun(0, end, read);
    return run;
}

std::optional<SampleOffset::Run> SampleOffset::readRun(std::int64_t begin, std::int64_t end,
                                                       const Read& read) const {
    const std::int64_t firstSector = sectorOf(begin);
    const std::int64_t sectors = sectorOf(end - 1) + 1 - firstSector;
    Run run;
    run.first = firstSector * samplesPerSector;
    run.samples.resize(std::size_t(sectors * samplesPerSector));
    if (!read(firstSector, std::as_writable_bytes(std::span(run.samples))))
        return std::nullopt;
    return run;
}

bool SampleOffset::fits(const Run& read, std::int64_t offset, std::int64_t begin,
                        const Run& written) {
    for (std::int64_t place = begin; place < written.end(); ++place) {
        const std::optional<Sample> sample = read.at(place - offset);
        if (sample && *sample != written.at(place).value_or(0))
            return false;
    }
    return true;
}

bool SampleOffset::readAligned(std::uint64_t firstSector, std::span<std::byte> buffer,
                               std::int64_t offset, const Read& read) const {
    const std::int64_t begin = std::int64_t(firstSector) * samplesPerSector;
    const std::int64_t end = begin + samplesIn(buffer);
    // Samples between these two can be read.
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
    const std::optional<Run> run = readRun(from - offset, to - offset, read);
    if (run)
        run->copyTo(part(from, to), from - offset);
    return run.has_value();
}

} // namespace quarner
