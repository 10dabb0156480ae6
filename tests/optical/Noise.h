// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "quarner/platform/DiscFormat.h"

namespace quarner {

/// Bytes that differ from sector to sector and from seed to seed.
inline std::vector<std::byte> noise(std::size_t size, std::uint32_t seed) {
    std::vector<std::byte> bytes(size);
    std::uint32_t state = seed * 2654435761U + 1;
    for (std::byte& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::byte>(state >> 24);
    }
    return bytes;
}

inline std::vector<std::byte> noiseOfSound(std::size_t sectors, std::uint32_t seed) {
    return noise(sectors * audioSectorSize, seed);
}

inline std::vector<std::byte> noiseOfData(std::size_t sectors, std::uint32_t seed) {
    return noise(sectors * dataBlockSize, seed);
}

} // namespace quarner
