// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <span>

namespace quarner {

/// The alignment of a buffer's address and size that direct I/O (past the page cache) needs on all
/// common devices.
inline constexpr std::size_t bufferAlignment = 4096;

/// A fixed amount of memory at an aligned address.
class SectorBuffer {
public:
    explicit SectorBuffer(std::size_t size)
        : _bytes(static_cast<std::byte*>(::operator new[](size, alignment))), _size(size) {}

    std::span<std::byte> bytes() { return {_bytes.get(), _size}; }

private:
    static constexpr auto alignment = std::align_val_t(bufferAlignment);
    struct Deleter {
        void operator()(std::byte* bytes) const { ::operator delete[](bytes, alignment); }
    };

    std::unique_ptr<std::byte[], Deleter> _bytes;
    std::size_t _size;
};

} // namespace quarner
