// SPDX-License-Identifier: LGPL-2.1-or-later
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>

#include "quarner/platform/DiscFormat.h"
#include "tests/optical/LibburnSession.h"
#include "tests/optical/Noise.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {
namespace {

using testing::ElementsAre;

constexpr bool atOnce = true;
constexpr bool trackByTrack = false;

class EmulatedRecorderTest : public testing::Test {
protected:
    /// Writes one track in a session of its own.
    static bool burn(const EmulatedRecorder& recorder, std::vector<std::byte> content, bool isAudio,
                     bool isAtOnce, bool isMultiSession = false) {
        LibburnSession session(recorder.node());
        return session.isGrabbed() &&
               session.burn({{.content = std::move(content), .isAudio = isAudio}}, isAtOnce,
                            isMultiSession);
    }

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

TEST_F(EmulatedRecorderTest, TellsOfEveryKindOfDisc) {
    const auto profileOf = [&](std::optional<Medium> medium) {
        const auto recorder = bed.plug({.medium = std::move(medium)});
        return LibburnSession(recorder->node()).profile();
    };
    EXPECT_EQ(profileOf(std::nullopt), 0);
    EXPECT_EQ(profileOf(Medium::blankCDR()), 0x09);
    EXPECT_EQ(profileOf(Medium::blankCDRW()), 0x0A);
    EXPECT_EQ(profileOf(Medium::blankDVD()), 0x11);
}

TEST_F(EmulatedRecorderTest, TakesAnAudioSessionAtOnce) {
    const auto recorder = bed.plug();
    const auto first = noiseOfSound(310, 1);
    const auto second = noiseOfSound(400, 2);
    {
        LibburnSession session(recorder->node());
        ASSERT_TRUE(session.isGrabbed());
        EXPECT_TRUE(session.burn({{.content = first}, {.content = second, .preGap = 150}}, atOnce));
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
    EXPECT_EQ(disc.bytes(310, 460, audioSectorSize), std::vector<std::byte>(150 * audioSectorSize))
        << "silence";
}

TEST_F(EmulatedRecorderTest, TakesADataTrackAtOnce) {
    const auto recorder = bed.plug();
    const auto content = noiseOfData(500, 3);
    EXPECT_TRUE(burn(*recorder, content, false, trackByTrack));
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    ASSERT_EQ(disc.tracks.size(), 1U);
    EXPECT_FALSE(disc.tracks[0].isAudio);
    EXPECT_EQ(disc.tracks[0].length, 502U) << "the drive ends it with two sectors of its own";
    EXPECT_EQ(disc.contentOf(disc.tracks[0]), content);
    LibburnSession session(recorder->node());
    EXPECT_EQ(session.readData(0, 500), content);
    EXPECT_EQ(session.readData(500, 2), std::nullopt);
}

TEST_F(EmulatedRecorderTest, TakesADataSessionAtOnce) {
    const auto recorder = bed.plug();
    const auto content = noiseOfData(500, 4);
    EXPECT_TRUE(burn(*recorder, content, false, atOnce));
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    ASSERT_EQ(disc.tracks.size(), 1U);
    EXPECT_FALSE(disc.tracks[0].isAudio);
    EXPECT_EQ(disc.tracks[0].length, 500U);
    EXPECT_EQ(disc.contentOf(disc.tracks[0]), content);
    LibburnSession session(recorder->node());
    EXPECT_TRUE(session.isFull());
    EXPECT_THAT(session.trackStarts(), ElementsAre(0, 500));
    EXPECT_EQ(session.readData(0, 500), content);
}

TEST_F(EmulatedRecorderTest, TakesFurtherSessionsUntilTheDiscIsClosed) {
    const auto recorder = bed.plug();
    EXPECT_TRUE(burn(*recorder, noiseOfData(300, 1), false, trackByTrack, true));
    {
        LibburnSession session(recorder->node());
        EXPECT_TRUE(session.isAppendable());
        EXPECT_EQ(session.freeSectors(), 359'847 - (302 + 11'250 + 150));
    }
    const auto second = noiseOfData(400, 2);
    EXPECT_TRUE(burn(*recorder, second, false, trackByTrack));
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    EXPECT_EQ(disc.sessions, 2U);
    ASSERT_EQ(disc.tracks.size(), 2U);
    EXPECT_EQ(disc.tracks[1].start, 302 + 11'250 + 150);
    EXPECT_EQ(disc.contentOf(disc.tracks[1]), second);
    EXPECT_FALSE(burn(*recorder, second, false, trackByTrack)) << "the disc is closed";
}

TEST_F(EmulatedRecorderTest, IsBlankedAndWrittenAgain) {
    const auto recorder = bed.plug({.medium = Medium::blankCDRW()});
    EXPECT_TRUE(burn(*recorder, noiseOfSound(300, 1), true, atOnce));
    const auto second = noiseOfSound(350, 2);
    EXPECT_FALSE(burn(*recorder, second, true, atOnce)) << "not blank";
    {
        LibburnSession session(recorder->node());
        EXPECT_TRUE(session.isErasable());
        EXPECT_TRUE(session.blank());
    }
    EXPECT_EQ(recorder->writtenDisc()->state, Medium::State::Blank);
    EXPECT_TRUE(burn(*recorder, second, true, atOnce));
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.contentOf(disc.tracks.at(0)), second);
}

TEST_F(EmulatedRecorderTest, ReadsSoundWithItsOffset) {
    const auto recorder = bed.plug();
    const auto content = noiseOfSound(320, 5);
    EXPECT_TRUE(burn(*recorder, content, true, atOnce));
    const auto moved = [&](int samples) {
        recorder->setReadOffset(samples);
        LibburnSession session(recorder->node());
        return session.readAudio(10, 20);
    };
    const auto expected = [&](int samples) {
        const auto first = content.begin() + 10 * audioSectorSize + samples * 4;
        return std::vector<std::byte>(first, first + 20 * audioSectorSize);
    };
    for (const int samples : {0, 30, 587, 588, 1200, -1, -588, -1200})
        EXPECT_EQ(moved(samples), expected(samples)) << samples;
}

TEST_F(EmulatedRecorderTest, LocksTheTrayWhileItIsInUse) {
    const auto recorder = bed.plug();
    {
        LibburnSession session(recorder->node());
        EXPECT_TRUE(recorder->isTrayLocked());
        EXPECT_EQ(recorder->openCount(), 1);
        recorder->pressEject();
        EXPECT_FALSE(recorder->isTrayOpen());
        EXPECT_TRUE(session.isBlank());
    }
    EXPECT_TRUE(recorder->isReleased());
    recorder->pressEject();
    EXPECT_TRUE(recorder->isTrayOpen());
    EXPECT_EQ(LibburnSession(recorder->node()).profile(), 0) << "the disc is out";
    recorder->insert(Medium::blankCDRW());
    EXPECT_FALSE(recorder->isTrayOpen());
    LibburnSession session(recorder->node());
    EXPECT_EQ(session.profile(), 0x0A);
    session.eject();
    EXPECT_TRUE(recorder->isTrayOpen());
}

TEST_F(EmulatedRecorderTest, FailsWhereItIsToldTo) {
    const auto recorder = bed.plug({.faults = {.writeErrorAt = 100}});
    EXPECT_FALSE(burn(*recorder, noiseOfSound(400, 6), true, atOnce));
    EXPECT_TRUE(recorder->isReleased());
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Incomplete);
    EXPECT_EQ(disc.sectors.rbegin()->first, 99);
    EXPECT_FALSE(burn(*recorder, noiseOfSound(400, 6), true, atOnce)) << "the disc is spoilt";

    recorder->setFaults({.readErrorAt = 7});
    recorder->insert(Medium::blankCDR());
    EXPECT_TRUE(burn(*recorder, noiseOfData(300, 6), false, atOnce));
    LibburnSession session(recorder->node());
    EXPECT_NE(session.readData(0, 7), std::nullopt);
    EXPECT_EQ(session.readData(0, 8), std::nullopt);
}

TEST_F(EmulatedRecorderTest, LosesItsDiscInMidBurn) {
    const auto recorder = bed.plug({.faults = {.removeMediumAt = 100}});
    EXPECT_FALSE(burn(*recorder, noiseOfSound(400, 7), true, atOnce));
    EXPECT_EQ(recorder->writtenDisc(), std::nullopt);
    EXPECT_TRUE(recorder->isReleased());
    recorder->setFaults({});
    recorder->insert(Medium::blankCDR());
    EXPECT_TRUE(burn(*recorder, noiseOfSound(400, 7), true, atOnce));
}

TEST_F(EmulatedRecorderTest, IsUnpluggedInMidBurn) {
    const auto recorder = bed.plug({.faults = {.unplugAt = 100}});
    EXPECT_FALSE(burn(*recorder, noiseOfSound(400, 8), true, atOnce));
    EXPECT_FALSE(LibburnSession(recorder->node()).isGrabbed());
    bed.finishEvents(); // the unplugging is one
    recorder->setFaults({});
    recorder->insert(Medium::blankCDR());
    recorder->replug();
    EXPECT_TRUE(burn(*recorder, noiseOfSound(400, 8), true, atOnce));
}

TEST_F(EmulatedRecorderTest, IsBusyForATime) {
    const auto recorder = bed.plug();
    recorder->setBusy(100);
    EXPECT_FALSE(LibburnSession(recorder->node()).isGrabbed());
    recorder->setBusy(1);
    EXPECT_TRUE(LibburnSession(recorder->node()).isGrabbed());
}

TEST_F(EmulatedRecorderTest, IsForOneUserAtATime) {
    const auto recorder = bed.plug();
    constexpr int forItself = O_RDWR | O_NONBLOCK | O_EXCL;
    const int user = open(recorder->node().c_str(), forItself);
    ASSERT_GE(user, 0);
    EXPECT_EQ(open(recorder->node().c_str(), forItself), -1);
    EXPECT_EQ(errno, EBUSY);
    EXPECT_EQ(recorder->openCount(), 1);
    close(user);
    EXPECT_TRUE(LibburnSession(recorder->node()).isGrabbed());
}

TEST_F(EmulatedRecorderTest, IsNotReadyForATime) {
    const auto recorder = bed.plug({.faults = {.notReady = 3}});
    LibburnSession session(recorder->node());
    ASSERT_TRUE(session.isGrabbed());
    EXPECT_TRUE(session.isBlank());
}

TEST_F(EmulatedRecorderTest, IsSlow) {
    const auto recorder = bed.plug();
    recorder->setDelay(std::chrono::milliseconds(5));
    const std::size_t before = recorder->commands().size();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(LibburnSession(recorder->node()).isGrabbed());
    const auto commands = static_cast<int>(recorder->commands().size() - before);
    // The delay itself is what is tested: a thread never sleeps for less.
    EXPECT_GE(std::chrono::steady_clock::now() - start, commands * std::chrono::milliseconds(5));
}

TEST_F(EmulatedRecorderTest, IsOneOfSeveral) {
    const auto first = bed.plug({.product = "FIRST"});
    const auto second = bed.plug({.product = "SECOND", .medium = Medium::blankCDRW()});
    EXPECT_EQ(first->node(), "/dev/sr0");
    EXPECT_EQ(second->node(), "/dev/sr1");
    {
        LibburnSession session(second->node());
        ASSERT_TRUE(session.isGrabbed());
        EXPECT_EQ(session.product(), "SECOND");
        EXPECT_EQ(session.profile(), 0x0A);
        EXPECT_EQ(first->openCount(), 0);
    }
    EXPECT_TRUE(burn(*first, noiseOfData(300, 9), false, atOnce));
    EXPECT_EQ(second->writtenDisc()->state, Medium::State::Blank);
}

} // namespace
} // namespace quarner
