// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/SampleOffset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "quarner/platform/DiscFormat.h"

namespace quarner {
namespace {

using Samples = std::vector<std::uint32_t>;
constexpr std::int64_t perSector = 588;

std::span<const std::byte> bytesOf(const Samples& samples) {
    return std::as_bytes(std::span(samples));
}

Samples silence(std::int64_t count) { return Samples(std::size_t(count)); }

Samples noise(std::int64_t count, std::uint32_t state = 1) {
    Samples samples = silence(count);
    for (std::uint32_t& sample : samples)
        sample = state = state * 1664525U + 1013904223U;
    return samples;
}

/// A tone with a period of 100 samples that begins at zero.
Samples tone(std::int64_t count) {
    Samples samples;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto value = std::lround(8000.0 * std::sin(2.0 * M_PI * double(i % 100) / 100.0));
        samples.push_back(std::uint32_t(std::uint16_t(value)) * 0x10001U);
    }
    return samples;
}

Samples operator+(Samples left, const Samples& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// A disc in a drive with a sample offset.
class ShiftingDrive {
public:
    ShiftingDrive(Samples written, std::int64_t offset)
        : disc(std::move(written)), _offset(offset) {}

    SampleOffset::Read reader() {
        return [this](std::int64_t sector, std::span<std::byte> buffer) {
            return read(sector, buffer);
        };
    }
    std::int64_t sectors() const { return std::int64_t(disc.size()) / perSector; }
    SampleOffset offsetOfWritten() const {
        SampleOffset sound(static_cast<std::uint64_t>(sectors()));
        const std::span<const std::byte> bytes = bytesOf(disc);
        const std::size_t half = bytes.size() / 2 / audioSectorSize * audioSectorSize;
        sound.add(bytes.first(half));
        sound.add(bytes.subspan(half));
        return sound;
    }

    Samples disc;
    bool readsBeforeTheDisc = false;

private:
    bool read(std::int64_t sector, std::span<std::byte> buffer) const {
        const std::int64_t last = sector + std::int64_t(buffer.size()) / audioSectorSize;
        if (last > sectors() || (sector < 0 && !readsBeforeTheDisc))
            return false;
        for (std::int64_t i = 0; i < std::int64_t(buffer.size()) / 4; ++i) {
            const std::int64_t place = sector * perSector + i + _offset;
            const bool isOn = place >= 0 && place < std::int64_t(disc.size());
            const std::uint32_t sample = isOn ? disc[std::size_t(place)] : 0;
            std::memcpy(buffer.data() + i * 4, &sample, 4);
        }
        return true;
    }

    const std::int64_t _offset;
};

class SampleOffsets : public testing::TestWithParam<int> {};

TEST_P(SampleOffsets, AreFoundAtTheFirstSoundAndUndoneOverTheWholeDisc) {
    for (const std::int64_t quiet : {0, 1, 700, 5000}) {
        SCOPED_TRACE(quiet);
        const std::int64_t total = 300 * perSector;
        ShiftingDrive drive(silence(quiet) + noise(total - quiet), GetParam());
        const SampleOffset sound = drive.offsetOfWritten();
        ASSERT_EQ(sound.find(drive.reader()), GetParam());
        Samples back(std::size_t(total), 1);
        const auto bytes = std::as_writable_bytes(std::span(back));
        ASSERT_TRUE(
            sound.readAligned(0, bytes.first(256 * audioSectorSize), GetParam(), drive.reader()));
        ASSERT_TRUE(sound.readAligned(256, bytes.subspan(256 * audioSectorSize), GetParam(),
                                      drive.reader()));
        EXPECT_TRUE(back == drive.disc);
    }
}

TEST_P(SampleOffsets, OfASteadyToneAreNotTakenForThoseOfAnotherPeriod) {
    for (const std::int64_t quiet : {3000, 60'000}) {
        ShiftingDrive drive(silence(quiet) + tone(300 * perSector - quiet), GetParam());
        EXPECT_EQ(drive.offsetOfWritten().find(drive.reader()), GetParam()) << quiet;
    }
}

TEST_P(SampleOffsets, OfAToneFromTheStartAreFoundWhereTheDriveReadsBeforeTheDisc) {
    ShiftingDrive drive(tone(300 * perSector), GetParam());
    drive.readsBeforeTheDisc = true;
    EXPECT_EQ(drive.offsetOfWritten().find(drive.reader()), GetParam());
}

TEST_P(SampleOffsets, OfAToneFromTheStartAreFoundWhereItChanges) {
    const std::int64_t total = 300 * perSector;
    // Inside a sector, between two, and near the end.
    for (const std::int64_t change :
         {std::int64_t(5000), 16 * perSector, 20 * perSector, std::int64_t(99'999), total - 700}) {
        ShiftingDrive silent(tone(change) + silence(total - change), GetParam());
        EXPECT_EQ(silent.offsetOfWritten().find(silent.reader()), GetParam()) << change;
        ShiftingDrive loud(tone(change) + noise(total - change), GetParam());
        EXPECT_EQ(loud.offsetOfWritten().find(loud.reader()), GetParam()) << change;
    }
    ShiftingDrive unchanged(tone(total), GetParam());
    EXPECT_EQ(unchanged.offsetOfWritten().find(unchanged.reader()), GetParam());
}

TEST_P(SampleOffsets, HideNoWrongSampleButThoseAtOneEdge) {
    const std::int64_t total = 300 * perSector;
    const std::int64_t offset = GetParam();
    ShiftingDrive drive(noise(total), offset);
    const SampleOffset sound = drive.offsetOfWritten();
    const auto isNoticed = [&](std::int64_t place) {
        Samples& disc = drive.disc;
        const Samples written = disc;
        disc[std::size_t(place)] ^= 1;
        Samples back(disc.size());
        EXPECT_TRUE(
            sound.readAligned(0, std::as_writable_bytes(std::span(back)), offset, drive.reader()));
        disc = written;
        return back != written;
    };
    const std::int64_t first = std::max<std::int64_t>(0, offset);
    const std::int64_t last = std::min(total, total + offset) - 1;
    EXPECT_TRUE(isNoticed(first));
    EXPECT_TRUE(isNoticed(total / 2));
    EXPECT_TRUE(isNoticed(last));
    EXPECT_TRUE(first == 0 || !isNoticed(first - 1));
    EXPECT_TRUE(last == total - 1 || !isNoticed(last + 1));
}

INSTANTIATE_TEST_SUITE_P(, SampleOffsets, testing::Values(0, 1, -1, 667, -588, 1500, -1500),
                         [](const auto& tested) {
                             return (tested.param < 0 ? "minus" : "plus") +
                                    std::to_string(std::abs(tested.param));
                         });

TEST(SampleOffset, BeyondTheSearchIsNotFound) {
    ShiftingDrive drive(silence(6000) + noise(300 * perSector - 6000), 1501);
    EXPECT_EQ(drive.offsetOfWritten().find(drive.reader()), std::nullopt);
}

TEST(SampleOffset, OfAnotherDiscIsNotFound) {
    ShiftingDrive drive(noise(300 * perSector), 0);
    const SampleOffset sound = drive.offsetOfWritten();
    drive.disc = noise(300 * perSector, 2);
    EXPECT_EQ(sound.find(drive.reader()), std::nullopt);
}

TEST(SampleOffset, OfADiscThatCannotBeReadIsNotFound) {
    const ShiftingDrive drive(noise(300 * perSector), 0);
    const auto fails = [](std::int64_t, std::span<std::byte>) { return false; };
    EXPECT_EQ(drive.offsetOfWritten().find(fails), std::nullopt);
    std::vector<std::byte> buffer(audioSectorSize);
    EXPECT_FALSE(drive.offsetOfWritten().readAligned(0, buffer, 0, fails));
}

TEST(SampleOffset, OfASilentDiscIsZeroWithoutReading) {
    const ShiftingDrive drive(silence(300 * perSector), 30);
    const auto fails = [](std::int64_t, std::span<std::byte>) { return false; };
    EXPECT_EQ(drive.offsetOfWritten().find(fails), 0);
}

TEST(SampleOffset, IsFoundForASoundAtTheVeryEnd) {
    for (const std::int64_t offset : {-30, 0, 30}) {
        const std::int64_t total = 300 * perSector;
        ShiftingDrive drive(silence(total - 50) + noise(50), offset);
        EXPECT_EQ(drive.offsetOfWritten().find(drive.reader()), offset);
    }
}

TEST(SampleOffset, IsUndoneInALastBlockThatIsShorterThanTheOffset) {
    for (const std::int64_t offset : {-1500, 1500}) {
        ShiftingDrive drive(noise(301 * perSector), offset);
        const SampleOffset sound = drive.offsetOfWritten();
        Samples back(std::size_t(perSector), 1);
        ASSERT_TRUE(sound.readAligned(300, std::as_writable_bytes(std::span(back)), offset,
                                      drive.reader()));
        EXPECT_TRUE(std::equal(back.begin(), back.end(), drive.disc.end() - perSector));
    }
}

} // namespace
} // namespace quarner
