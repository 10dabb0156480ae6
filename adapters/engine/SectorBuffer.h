// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <span>

namespace quarner {

/// What a buffer must be a multiple of, in place and size, to be read and written past the page
/// cache on any device that is in use.
inline constexpr std::size_t bufferAlignment = 4096;

/// A fixed piece of memory at an aligned address.
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
