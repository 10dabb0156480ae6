// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include "tests/optical/LibburnSession.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {
namespace {

using testing::ElementsAre;

/// Bytes that differ from sector to sector and from seed to seed.
std::vector<std::byte> noise(std::size_t size, std::uint32_t seed) {
    std::vector<std::byte> bytes(size);
    std::uint32_t state = seed * 2654435761U + 1;
    for (std::byte& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::byte>(state >> 24);
    }
    return bytes;
}
std::vector<std::byte> sound(std::size_t sectors, std::uint32_t seed) {
    return noise(sectors * 2352, seed);
}
std::vector<std::byte> data(std::size_t sectors, std::uint32_t seed) {
    return noise(sectors * 2048, seed);
}

class EmulatedRecorderTest : public testing::Test {
protected:
    OpticalBed bed;
};

TEST_F(EmulatedRecorderTest, TellsLibburnWhatItIs) {
    const auto recorder = bed.plug({.vendor = "ACME", .product = "BURNER 3000"});
    LibburnSession session(recorder->node());
    ASSERT_TRUE(session.isGrabbed());
    EXPECT_EQ(session.vendor(), "ACME");
    EXPECT_EQ(session.product(), "BURNER 3000");
    EXPECT_EQ(session.profile(), 0x09);
    EXPECT_TRUE(session.isBlank());
    EXPECT_FALSE(session.isErasable());
    EXPECT_EQ(session.freeSectors(), 359'847);
    EXPECT_THAT(session.writeSpeeds(), ElementsAre(706, 1411, 2822, 4234));
    EXPECT_TRUE(session.trackStarts().empty());
}

TEST_F(EmulatedRecorderTest, TakesAnAudioSessionAtOnce) {
    const auto recorder = bed.plug();
    const auto first = sound(310, 1);
    const auto second = sound(400, 2);
    {
        LibburnSession session(recorder->node());
        ASSERT_TRUE(session.isGrabbed());
        EXPECT_TRUE(session.burn({{.content = first}, {.content = second, .preGap = 150}}, true));
    }
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    ASSERT_EQ(disc.tracks.size(), 2U);
    EXPECT_EQ(disc.tracks[0].start, 0);
    EXPECT_EQ(disc.tracks[0].preGap, 150U);
    EXPECT_EQ(disc.tracks[0].length, 310U);
    EXPECT_EQ(disc.tracks[1].start, 460);
    EXPECT_EQ(disc.tracks[1].preGap, 150U);
    EXPECT_EQ(disc.tracks[1].length, 400U);
    EXPECT_EQ(disc.contentOf(disc.tracks[0]), first);
    EXPECT_EQ(disc.contentOf(disc.tracks[1]), second);
    EXPECT_EQ(disc.sectors.size(), 150U + 310 + 150 + 400) << "each sector was sent";
    EXPECT_EQ(disc.bytes(310, 460, 2352), std::vector<std::byte>(150 * 2352)) << "silence";
}

TEST_F(EmulatedRecorderTest, TakesADataTrackAtOnce) {
    const auto recorder = bed.plug();
    const auto content = data(500, 3);
    {
        LibburnSession session(recorder->node());
        ASSERT_TRUE(session.isGrabbed());
        EXPECT_TRUE(session.burn({{.content = content, .isAudio = false}}, false));
    }
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    ASSERT_EQ(disc.tracks.size(), 1U);
    EXPECT_FALSE(disc.tracks[0].isAudio);
    EXPECT_EQ(disc.tracks[0].length, 502U) << "the drive ends it with two sectors of its own";
    EXPECT_EQ(disc.contentOf(disc.tracks[0]), content);
}

TEST_F(EmulatedRecorderTest, TakesADataSessionAtOnce) {
    const auto recorder = bed.plug();
    const auto content = data(500, 4);
    {
        LibburnSession session(recorder->node());
        ASSERT_TRUE(session.isGrabbed());
        EXPECT_TRUE(session.burn({{.content = content, .isAudio = false}}, true));
    }
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    ASSERT_EQ(disc.tracks.size(), 1U);
    EXPECT_FALSE(disc.tracks[0].isAudio);
    EXPECT_EQ(disc.tracks[0].length, 500U);
    EXPECT_EQ(disc.contentOf(disc.tracks[0]), content);
}

} // namespace
} // namespace quarner
