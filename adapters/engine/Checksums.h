// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace quarner {

/// The checksums of everything that was sent to a disc, one for each block of sectors, made as
/// the bytes go by. They are 64-bit XXH3: faster than the memory that the bytes come from, and a
/// change goes unnoticed once in 2^64 blocks. The sums guard against accidents, not against
/// forgery.
class Checksums {
public:
    /// Sectors in a block. A block of either sector size is a multiple of 4096 bytes.
    static constexpr std::uint32_t sectorsPerBlock = 1024;

    explicit Checksums(std::uint32_t sectorSize);
    ~Checksums();

    /// Adds the next bytes.
    void add(std::span<const std::byte> bytes);
    /// Ends the last block. Nothing is added afterwards.
    void finish();

    std::size_t blocks() const { return _sums.size(); }
    /// Whether these bytes are a whole block as it was sent. Any thread, after `finish`.
    bool matches(std::size_t block, std::span<const std::byte> bytes) const;

private:
    class State;

    void endBlock();

    const std::size_t _blockSize;
    std::unique_ptr<State> _state;
    std::size_t _bytesInBlock = 0;
    std::vector<std::uint64_t> _sums;
};

} // namespace quarner
