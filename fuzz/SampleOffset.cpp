// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/SampleOffset.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "fuzz/Input.h"
#include "fuzz/Target.h"

namespace quarner::fuzz {
namespace {

constexpr std::size_t samplesPerSector = 588;
constexpr std::int64_t mostSamples = SampleOffset::mostSamples;

using Sound = std::vector<std::uint32_t>;

/// Silence, a steady level, a tone of some period, or noise.
Sound soundFrom(Input& input) {
    const int kind = input.byte() % 4;
    Sound sound(input.number<std::uint16_t>() % (samplesPerSector * 24));
    std::uint32_t value = kind == 0 ? 0 : input.byte() + 1U;
    const std::uint32_t period = kind == 2 ? value * 8 : 1;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        if (kind == 3)
            value = value * 1664525 + 1013904223;
        sound[i] = kind == 2 ? std::uint32_t(i) % period : value;
    }
    return sound;
}

/// Some sectors of sounds one after the other, then silence.
Sound discFrom(Input& input) {
    Sound disc;
    const std::size_t sectors = 1 + input.byte() % 32;
    for (int parts = input.byte() % 5; parts > 0; --parts) {
        const Sound sound = soundFrom(input);
        disc.insert(disc.end(), sound.begin(), sound.end());
    }
    disc.resize(sectors * samplesPerSector);
    return disc;
}

/// A drive that gives back what was written shifted, and may fail or lie.
class Drive {
public:
    Drive(const Sound& disc, Input& input)
        : _disc(disc), _kind(input.byte() % 6),
          _shift(input.number<std::int16_t>() % (mostSamples + 1)), _spoilt(input.byte()) {}

    std::int64_t shift() const { return _shift; }

    /// Whether every sector can be read and is right.
    bool isPerfect() const { return _kind <= 1; }

    bool read(std::int64_t firstSector, std::span<std::byte> buffer) const {
        const std::int64_t sectors = std::int64_t(buffer.size() / (samplesPerSector * 4));
        const auto onDisc = std::int64_t(_disc.size() / samplesPerSector);
        require(sectors > 0 && buffer.size() % (samplesPerSector * 4) == 0, "whole sectors");
        require(firstSector >= -2 * mostSamples / std::int64_t(samplesPerSector) - 1,
                "only a little before the disc is read");
        require(firstSector + sectors <= onDisc, "nothing behind the disc is read");
        if (_kind == 1 && firstSector < 0)
            return false; // as many drives do
        if (_kind == 2 || (_kind == 3 && firstSector >= _spoilt))
            return false;
        fill(firstSector * std::int64_t(samplesPerSector), buffer);
        return true;
    }

private:
    void fill(std::int64_t place, std::span<std::byte> buffer) const {
        const auto end = std::int64_t(_disc.size());
        for (std::size_t at = 0; at < buffer.size(); at += 4, ++place) {
            const std::int64_t from = place + _shift;
            std::uint32_t sample = from >= 0 && from < end ? _disc[std::size_t(from)] : 0;
            if (_kind >= 4 && place % (_spoilt + 1) == 0)
                sample ^= 1;
            std::memcpy(&buffer[at], &sample, 4);
        }
    }

    const Sound& _disc;
    const int _kind;
    const std::int64_t _shift;
    const std::int64_t _spoilt;
};

SampleOffset noted(const Sound& disc, std::size_t sectorsAtOnce) {
    SampleOffset offset(disc.size() / samplesPerSector);
    const auto bytes = std::as_bytes(std::span(disc));
    const std::size_t step = sectorsAtOnce * samplesPerSector * 4;
    for (std::size_t at = 0; at < bytes.size(); at += step)
        offset.add(bytes.subspan(at, std::min(step, bytes.size() - at)));
    return offset;
}

/// What the disc reads as once the shift is undone; empty if it cannot be read.
Sound readBack(const SampleOffset& offset, std::int64_t shift, const Drive& drive,
               std::size_t samples, std::size_t sectorsAtOnce) {
    Sound sound(samples);
    const std::size_t step = sectorsAtOnce * samplesPerSector;
    for (std::size_t at = 0; at < samples; at += step) {
        const auto part = std::span(sound).subspan(at, std::min(step, samples - at));
        if (!offset.readAligned(
                at / samplesPerSector, std::as_writable_bytes(part), shift,
                [&](auto sector, auto buffer) { return drive.read(sector, buffer); }))
            return {};
    }
    return sound;
}

} // namespace
} // namespace quarner::fuzz

/// A disc, the sizes in which it is written and read, and the drive that reads it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner::fuzz;
    Input input(data, size);
    const Sound disc = discFrom(input);
    const std::size_t written = 1 + input.byte() % 16;
    const std::size_t read = 1 + input.byte() % 16;
    const Drive drive(disc, input);
    const quarner::SampleOffset offset = noted(disc, written);
    const auto found =
        offset.find([&](auto sector, auto buffer) { return drive.read(sector, buffer); });
    require(!found || std::abs(*found) <= mostSamples, "an offset is within the search");
    const Sound sound = readBack(offset, found.value_or(drive.shift()), drive, disc.size(), read);
    if (!drive.isPerfect())
        return 0;
    require(found && std::abs(*found) <= std::abs(drive.shift()), "the smallest offset is found");
    require(!sound.empty(), "what a drive can read is read");
    require(*found != drive.shift() || sound == disc, "the shift is undone");
    return 0;
}
