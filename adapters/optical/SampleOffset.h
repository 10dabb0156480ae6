// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace quarner {

/// A drive gives back the sound of a disc shifted by a number of samples that is always the same
/// for the drive. This finds the number, from what is kept of the sound while it is written, and
/// undoes the shift.
///
/// The samples that the shift moves across the beginning or the end of the disc cannot be read:
/// they are as many as the offset, at the beginning when it is positive and at the end when it is
/// negative, at most `mostSamples` (34 ms). In their place stands what was sent, so they count as
/// right. Every other sample is what was read.
class SampleOffset {
public:
    /// Stereo samples of 16 bits, two times two bytes.
    static constexpr std::uint32_t bytesPerSample = 4;
    /// The search goes from -mostSamples to +mostSamples, 34 ms either way.
    static constexpr std::int64_t mostSamples = 1500;
    /// So much of the first sound is compared at each offset; and, where that is a steady tone in
    /// which nothing tells one period from the next, so much of the first change after it too.
    static constexpr std::int64_t soundSamples = std::int64_t(588) * 8;

    /// Reads so many sectors as fit the buffer, from a sector on, which may lie a little before the
    /// disc's sector 0. Answers whether that worked.
    using Read = std::function<bool(std::int64_t firstSector, std::span<std::byte> buffer)>;

    /// For a disc of so many sectors.
    explicit SampleOffset(std::uint64_t sectors);

    /// Takes note of the next whole sectors that are written: the disc from sector 0 on, without a
    /// hole.
    void add(std::span<const std::byte> sectors);

    /// Finds the offset: the sample that is read at place i is the one that was written at place
    /// i + offset. Of several that fit, the smallest. Nothing when none fits, or the disc cannot be
    /// read there; 0 for a silent disc.
    std::optional<std::int64_t> find(const Read& read) const;

    /// Fills the buffer with what was written from a sector on, as the drive gives it back. Answers
    /// whether it could be read.
    bool readAligned(std::uint64_t firstSector, std::span<std::byte> buffer, std::int64_t offset,
                     const Read& read) const;

private:
    using Sample = std::uint32_t;
    /// Samples of the disc from a place on.
    struct Stretch {
        std::int64_t first = 0;
        std::vector<Sample> samples;

        std::int64_t end() const { return first + std::int64_t(samples.size()); }
        std::optional<Sample> at(std::int64_t place) const;
        /// Fills the bytes with the samples from a place on, which are there.
        void copyTo(std::span<std::byte> bytes, std::int64_t place) const;
        /// Takes over what is the next of this stretch, up to an end, in bytes that lie at a place.
        void extend(std::int64_t limit, std::int64_t place, std::span<const std::byte> bytes);
    };

    std::optional<Stretch> readStretch(std::int64_t begin, std::int64_t end,
                                       const Read& read) const;
    std::optional<Stretch> readAround(std::int64_t begin, const Stretch& written,
                                      const Read& read) const;
    void seekChange(std::int64_t place, std::span<const std::byte> sectors);
    static bool isSteady(const Stretch& written);
    static bool fits(const Stretch& read, std::int64_t offset, std::int64_t begin,
                     const Stretch& written);

    const std::int64_t _total; ///< samples on the disc
    std::int64_t _added = 0;
    bool _isSilent = true;    ///< so far
    Stretch _start;           ///< the first samples of the disc
    Stretch _sound;           ///< from the first one that is not silent on
    Stretch _change;          ///< after a steady tone; empty when there was none at the start
    Stretch _end;             ///< the last ones
    bool _seeksChange = true; ///< until the start turns out not to be steady, or a change is found
};

} // namespace quarner
