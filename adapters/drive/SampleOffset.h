// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace quarner {

/// A drive returns the audio of a disc shifted by a number of samples that is constant for the
/// drive. This class finds that offset by comparing the first audio with what was sent, and undoes
/// the shift.
///
/// Invariant: every sample is compared as it was read, except those that the shift moves past the
/// beginning (positive offset) or the end (negative offset) of the disc. They cannot be read and
/// are replaced by what was sent, so they count as correct. There are as many as the offset, at
/// most `mostSamples` (34 ms).
class SampleOffset {
public:
    /// Stereo samples of 16 bits, two times two bytes.
    static constexpr std::uint32_t bytesPerSample = 4;
    /// The search range is -mostSamples to +mostSamples, 34 ms either way.
    static constexpr std::int64_t mostSamples = 1500;
    /// The number of samples compared at each offset. If the first audio is a steady tone, in which
    /// all periods look alike, the same number of samples at the first change after it is compared
    /// too.
    static constexpr std::int64_t soundSamples = std::int64_t(588) * 8;

    /// Fills the buffer with sectors from `firstSector` on, which may be a little before sector 0
    /// of the disc. Returns whether that worked.
    using Read = std::function<bool(std::int64_t firstSector, std::span<std::byte> buffer)>;

    /// For a disc of `sectors` sectors.
    explicit SampleOffset(std::uint64_t sectors);

    /// Records the next whole sectors that are written. The calls together must pass the whole disc
    /// from sector 0 on.
    void add(std::span<const std::byte> sectors);

    /// Finds the offset: the sample read at position i was written at position i + offset. Returns
    /// the smallest matching offset, 0 for a silent disc, and `std::nullopt` if none matches or the
    /// disc cannot be read there.
    std::optional<std::int64_t> find(const Read& read) const;

    /// Fills the buffer with the sectors from `firstSector` on as they were written, according to
    /// the drive. Returns whether they could be read.
    bool readAligned(std::uint64_t firstSector, std::span<std::byte> buffer, std::int64_t offset,
                     const Read& read) const;

private:
    using Sample = std::uint32_t;
    /// Consecutive samples of the disc.
    struct Run {
        std::int64_t first = 0;
        std::vector<Sample> samples;

        std::int64_t end() const { return first + std::int64_t(samples.size()); }
        std::optional<Sample> at(std::int64_t place) const;
        /// Fills the bytes with the samples from a position on, which must be in this run.
        void copyTo(std::span<std::byte> bytes, std::int64_t place) const;
        /// Appends the samples that continue this run, up to `limit`, from bytes at a position.
        void extend(std::int64_t limit, std::int64_t place, std::span<const std::byte> bytes);
    };

    std::optional<Run> readRun(std::int64_t begin, std::int64_t end, const Read& read) const;
    std::optional<Run> readAround(std::int64_t begin, const Run& written, const Read& read) const;
    void seekChange(std::int64_t place, std::span<const std::byte> sectors);
    static bool isSteady(const Run& written);
    static bool fits(const Run& read, std::int64_t offset, std::int64_t begin, const Run& written);

    const std::int64_t _total; ///< samples on the disc
    std::int64_t _added = 0;
    bool _isSilent = true;    ///< so far
    Run _start;               ///< the first samples of the disc
    Run _sound;               ///< from the first sample that is not silent
    Run _change;              ///< after a steady tone; empty if there was none at the start
    Run _end;                 ///< the last ones
    bool _seeksChange = true; ///< until the start turns out not to be steady, or a change is found
};

} // namespace quarner
