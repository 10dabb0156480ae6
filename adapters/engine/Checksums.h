// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace quarner {

/// The checksums of everything that was sent to a disc, one for each chunk of sectors, computed
/// while the bytes are written. They are 64-bit XXH3: a changed chunk goes unnoticed once in 2^64
/// cases. They detect accidents, not forgery.
class Checksums {
public:
    /// Sectors in a chunk. For both sector sizes a chunk is a multiple of 4096 bytes.
    static constexpr std::uint32_t sectorsPerChunk = 1024;

    explicit Checksums(std::uint32_t sectorSize);
    ~Checksums();

    /// Adds the next bytes.
    void add(std::span<const std::byte> bytes);
    /// Ends the last chunk. Nothing may be added afterwards.
    void finish();

    std::size_t chunks() const { return _sums.size(); }
    /// Returns whether `bytes` are the whole chunk as it was sent. Any thread, after `finish`.
    bool matches(std::size_t chunk, std::span<const std::byte> bytes) const;

private:
    class State;

    void endChunk();

    const std::size_t _chunkSize;
    std::unique_ptr<State> _state;
    std::size_t _bytesInChunk = 0;
    std::vector<std::uint64_t> _sums;
};

} // namespace quarner
