// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

#include "adapters/engine/Checksums.h"

namespace quarner {
namespace {

constexpr std::uint32_t sectorSize = 16;
constexpr std::size_t chunkSize = std::size_t(Checksums::sectorsPerChunk) * sectorSize;

TEST(Checksums, AreTheSameHoweverTheBytesCome) {
    std::vector<std::byte> bytes(chunkSize * 2 + 48);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = std::byte(i * 7 % 251);
    Checksums checksums(sectorSize);
    for (std::size_t i = 0, part = 1; i < bytes.size(); i += part, part = part * 3 % 1000 + 1)
        checksums.add(std::span(bytes).subspan(i, std::min(part, bytes.size() - i)));
    checksums.finish();
    ASSERT_EQ(checksums.chunks(), 3U);
    const std::span<const std::byte> all(bytes);
    EXPECT_TRUE(checksums.matches(0, all.first(chunkSize)));
    EXPECT_TRUE(checksums.matches(1, all.subspan(chunkSize, chunkSize)));
    EXPECT_TRUE(checksums.matches(2, all.subspan(2 * chunkSize)));
    EXPECT_FALSE(checksums.matches(2, all.subspan(2 * chunkSize).first(47)));
    for (const std::size_t flipped : {std::size_t(0), chunkSize / 2, chunkSize - 1}) {
        bytes[flipped] ^= std::byte(0x80);
        EXPECT_FALSE(checksums.matches(0, all.first(chunkSize))) << flipped;
        bytes[flipped] ^= std::byte(0x80);
    }
}

TEST(Checksums, AWholeNumberOfChunksHasNoFurtherOne) {
    const std::vector<std::byte> bytes(chunkSize);
    Checksums checksums(sectorSize);
    checksums.add(bytes);
    checksums.finish();
    EXPECT_EQ(checksums.chunks(), 1U);
    EXPECT_THROW(static_cast<void>(checksums.matches(1, bytes)), std::out_of_range);
}

TEST(Checksums, ASingleByteIsAChunk) {
    const std::vector<std::byte> bytes(1);
    Checksums checksums(sectorSize);
    checksums.add(bytes);
    EXPECT_EQ(checksums.chunks(), 0U) << "before the end";
    checksums.finish();
    EXPECT_EQ(checksums.chunks(), 1U);
    EXPECT_TRUE(checksums.matches(0, bytes));
}

} // namespace
} // namespace quarner
