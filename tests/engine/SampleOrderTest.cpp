// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "adapters/engine/PCMTrackSource.h"

namespace quarner {
namespace {

using testing::ElementsAre;

/// The bytes as numbers, which is how a failing test prints them.
std::vector<int> numbersOf(std::span<const std::byte> bytes) {
    std::vector<int> numbers;
    for (const std::byte byte : bytes)
        numbers.push_back(std::to_integer<int>(byte));
    return numbers;
}

/// Plays the samples once.
class Samples : public PCMStream {
public:
    explicit Samples(std::vector<std::int16_t> samples) : _samples(std::move(samples)) {}
    std::optional<std::size_t> read(std::span<std::int16_t> out) override {
        const std::size_t count = std::min(out.size(), _samples.size());
        std::copy_n(_samples.begin(), count, out.begin());
        _samples.erase(_samples.begin(), _samples.begin() + std::ptrdiff_t(count));
        return count;
    }

private:
    std::vector<std::int16_t> _samples;
};

class OneFile : public PCMService {
public:
    std::optional<PCMLength> measure(const std::string&) override { return std::nullopt; }
    std::unique_ptr<PCMStream> open(const std::string&) override {
        return std::make_unique<Samples>(std::vector<std::int16_t>{0x1234, -2});
    }
};

TEST(SampleOrder, BigEndianSamplesAreSwapped) {
    std::array bytes = {std::byte{0x12}, std::byte{0x34}, std::byte{0xFF}, std::byte{0xFE}};
    makeLittleEndian(bytes, std::endian::big);
    EXPECT_THAT(numbersOf(bytes), ElementsAre(0x34, 0x12, 0xFE, 0xFF));
}

TEST(SampleOrder, LittleEndianSamplesStayAsTheyAre) {
    std::array bytes = {std::byte{0x34}, std::byte{0x12}, std::byte{0xFE}, std::byte{0xFF}};
    makeLittleEndian(bytes, std::endian::little);
    EXPECT_THAT(numbersOf(bytes), ElementsAre(0x34, 0x12, 0xFE, 0xFF));
}

TEST(SampleOrder, ATrackIsLittleEndianWhateverTheMachineIs) {
    const auto track = std::make_shared<DRTrack>();
    track->sampleCount = 1;
    PCMTrackSource source(std::make_shared<OneFile>(), track);
    // One pair of samples, and silence after it. The buffer is aligned as those of the engine are.
    std::vector<std::byte> bytes(8, std::byte{1});
    source.read(bytes);
    EXPECT_THAT(numbersOf(bytes), ElementsAre(0x34, 0x12, 0xFE, 0xFF, 0, 0, 0, 0));
}

} // namespace
} // namespace quarner
