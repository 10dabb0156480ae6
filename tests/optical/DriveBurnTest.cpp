// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include "adapters/joliet/JolietDirectory.h"
#include "quarner/platform/DRKeys.h"
#include "tests/support/optical/OpticalStage.h"

namespace quarner {
namespace {

using testing::ElementsAre;
using testing::Gt;

using Bytes = std::vector<std::byte>;

/// The expected bytes of an audio track on the disc, padded with silence to whole sectors.
Bytes contentOf(const DRTrack& track) {
    std::ifstream file(track.path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    Bytes bytes(std::size_t(track.length().totalFrames()) * audioSectorSize);
    std::memcpy(bytes.data(), text.data(), text.size());
    return bytes;
}

Medium rewritable(Medium::State state = Medium::State::Closed) {
    Medium medium = Medium::dataCD(1000);
    medium.kind = Medium::Kind::CDRW;
    medium.state = state;
    return medium;
}

class DriveBurn : public testing::Test, public OpticalStage {
protected:
    /// The content of the only file on the disc, found through its Joliet directory.
    std::string fileOnDisc() const {
        const Medium disc = recorder->writtenDisc().value();
        const Bytes bytes = disc.contentOf(disc.tracks.at(0));
        const auto files = jolietRootDirectory(bytes);
        if (files.size() != 1)
            return "not one file";
        const auto& [firstBlock, size] = files.begin()->second;
        const auto* const text = reinterpret_cast<const char*>(bytes.data());
        return {text + firstBlock * dataBlockSize, std::size_t(size)};
    }
    void expectAudio(const DRLayout& layout) {
        const Medium disc = recorder->writtenDisc().value();
        EXPECT_EQ(disc.state, Medium::State::Closed);
        ASSERT_EQ(disc.tracks.size(), layout.size());
        std::int32_t start = 0;
        for (std::size_t i = 0; i < layout.size(); ++i) {
            const MediumTrack& track = disc.tracks[i];
            EXPECT_TRUE(track.isAudio);
            EXPECT_EQ(track.start, start);
            EXPECT_EQ(track.preGap, 150U);
            EXPECT_EQ(track.length, layout[i]->length().totalFrames());
            EXPECT_EQ(disc.bytes(start - 150, start, audioSectorSize),
                      Bytes(150 * audioSectorSize));
            EXPECT_TRUE(disc.contentOf(track) == contentOf(*layout[i])) << i;
            start += std::int32_t(track.length + 150);
        }
        EXPECT_EQ(disc.sectors.size(), std::size_t(start)) << "each sector was sent, and no other";
    }
};

TEST_F(DriveBurn, OfAudioWritesEveryTrackAfterTwoSecondsOfSilence) {
    const DRLayout layout = audio({310, 400, 5});
    const auto log = burn(layout);
    ASSERT_TRUE(log->isDone()) << log->info();
    expectAudio(layout);
    expectReleased();
}

TEST_F(DriveBurn, OfAudioWritesALongerSilenceBeforeTheFirstTrackToo) {
    const DRLayout layout = audio({300, 300});
    for (const auto& track : layout)
        std::const_pointer_cast<DRTrack>(track)->setPreGap(DRMSF::msfWithFrames(200));
    const auto log = burn(layout);
    ASSERT_TRUE(log->isDone()) << log->info();
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.tracks.at(0).start, 50);
    EXPECT_EQ(disc.tracks.at(0).preGap, 200U);
    EXPECT_EQ(disc.tracks.at(1).start, 50 + 300 + 200);
    EXPECT_EQ(disc.end(), 50 + 300 + 200 + 300);
}

TEST_F(DriveBurn, OfAudioHasNoTexts) {
    ASSERT_TRUE(burn(audio({300}))->isDone());
    const std::vector<std::uint8_t> sheet = recorder->writtenDisc()->cueSheet;
    ASSERT_THAT(sheet.size(), Gt(8U));
    EXPECT_EQ(sheet[1], 0) << "the lead-in";
    EXPECT_EQ(sheet[3] & 0xC0, 0) << "its sub-channels are left to the drive";
}

TEST_F(DriveBurn, OfDataWritesOneTrackThatIsTheImage) {
    const DRLayout layout = data(1'000'000);
    const auto log = burn(layout);
    ASSERT_TRUE(log->isDone()) << log->info();
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.state, Medium::State::Closed);
    ASSERT_EQ(disc.tracks.size(), 1U);
    EXPECT_FALSE(disc.tracks[0].isAudio);
    EXPECT_EQ(disc.tracks[0].start, 0);
    EXPECT_EQ(disc.tracks[0].length, layout[0]->estimateLength());
    EXPECT_EQ(disc.sectors.size(), 150 + layout[0]->estimateLength());
    EXPECT_TRUE(fileOnDisc() == rawNoise(250'000, 1));
    expectReleased();
}

TEST_F(DriveBurn, OfLittleDataFillsTheShortestTrackThatACDCanHave) {
    const DRLayout layout = data(1000);
    const auto blocks = std::int32_t(layout[0]->estimateLength());
    ASSERT_LT(blocks, 300);
    const auto log = burn(layout);
    ASSERT_TRUE(log->isDone()) << log->info();
    const Medium disc = recorder->writtenDisc().value();
    EXPECT_EQ(disc.tracks.at(0).length, 300U);
    EXPECT_TRUE(fileOnDisc() == rawNoise(250, 1));
    EXPECT_EQ(disc.bytes(blocks, 300, dataBlockSize),
              Bytes(std::size_t(300 - blocks) * dataBlockSize));
}

TEST_F(DriveBurn, TellsTheStepsThatEveryRecorderTells) {
    EXPECT_THAT(burn(audio({300, 300}))->states(),
                ElementsAre("Preparing", "SessionOpen", "TrackOpen 1/2", "TrackWrite 1/2",
                            "TrackClose 1/2", "TrackOpen 2/2", "TrackWrite 2/2", "TrackClose 2/2",
                            "SessionClose", "Finishing", "Verifying", "Done"));
}

TEST_F(DriveBurn, IsFollowedByTheNewStateOfTheDisc) {
    EXPECT_TRUE(drive->mediaIsBlank());
    ASSERT_TRUE(burn(audio({300, 300}))->isDone());
    EXPECT_FALSE(drive->mediaIsBlank());
    EXPECT_FALSE(drive->mediaIsAppendable());
    EXPECT_EQ(drive->mediaSpaceUsed(), DRMSF::msfWithFrames(750));
    EXPECT_EQ(drive->mediaSpaceFree(), DRMSF::msf());
}

TEST_F(DriveBurn, IsToldOfByTheDriveWhenItBeginsAndWhenItIsOver) {
    std::vector<bool> blank;
    loops->currentCenter()->addObserver(
        this, [&](const DRNotification&) { blank.push_back(drive->mediaIsBlank()); },
        DRDeviceStatusChangedNotification, drive.get());
    loops->setInStep(true);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    burning->writeLayout(audio({300}));
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    loops->setInStep(false);
    EXPECT_THAT(blank, ElementsAre(true, false));
    loops->currentCenter()->removeObserver(this, DRDeviceStatusChangedNotification, drive.get());
}

TEST_F(DriveBurn, HasASpeedOnlyWhileItLasts) {
    const auto speed = [&] {
        const Dictionary status = drive->status();
        return valueFor(status, DRStatusCurrentSpeedKey).asDouble();
    };
    double fastest = 0;
    loops->setInStep(true);
    const auto burning = makeBurn();
    const auto log = observe(burning);
    log->onRecord = [&](const Dictionary&) { fastest = std::max(fastest, speed()); };
    burning->writeLayout(audio({2000}));
    ASSERT_TRUE(loops->runUntil([&] { return log->isOver(); }));
    loops->setInStep(false);
    log->onRecord = nullptr;
    EXPECT_GT(fastest, 0);
    EXPECT_EQ(speed(), 0);
}

TEST_F(DriveBurn, ReadsTheDiscBackOnlyWhereThatIsWanted) {
    ASSERT_TRUE(burn(audio({300}), {{DRBurnVerifyDiscKey, false}})->isDone());
    EXPECT_EQ(countOf(operation::readCD), 0U);
    insert(Medium::blankCDR());
    ASSERT_TRUE(burn(data(10'000), {{DRBurnVerifyDiscKey, false}})->isDone());
    EXPECT_EQ(countOf(operation::read), 0U);
    insert(Medium::blankCDR());
    ASSERT_TRUE(burn(audio({300}))->isDone());
    EXPECT_GT(countOf(operation::readCD), 300U / 64U);
}

TEST_F(DriveBurn, AsksForTheSpeedThatIsWanted) {
    ASSERT_TRUE(burn(audio({300}), {{DRBurnRequestedSpeedKey, 600}})->isDone());
    EXPECT_EQ(recorder->writeSpeed(), 1412U) << "thousands of bytes, rounded up";
    insert(Medium::blankCDR());
    ASSERT_TRUE(burn(audio({300}))->isDone());
    EXPECT_EQ(recorder->writeSpeed(), 4234U) << "the fastest of this disc";
}

TEST_F(DriveBurn, BlanksARewritableDiscThatIsToBeOverwritten) {
    for (const Medium::State state : {Medium::State::Closed, Medium::State::Appendable}) {
        insert(rewritable(state));
        const std::size_t before = countOf(operation::blank);
        const DRLayout layout = audio({310, 320});
        const auto log = burn(layout, {{DRBurnOverwriteDiscKey, true}});
        ASSERT_TRUE(log->isDone()) << log->info();
        EXPECT_EQ(countOf(operation::blank), before + 1);
        expectAudio(layout);
        expectReleased();
    }
}

TEST_F(DriveBurn, BlanksNoDiscThatIsBlank) {
    insert(Medium::blankCDRW());
    ASSERT_TRUE(burn(audio({310}), {{DRBurnOverwriteDiscKey, true}})->isDone());
    EXPECT_EQ(countOf(operation::blank), 0U);
}

TEST_F(DriveBurn, OnTwoDrivesAtOnceWritesBothDiscs) {
    const auto other = bed.plug({});
    const auto otherDrive = makeDrive(*other);
    const DRLayout layout = audio({400, 450});
    const auto second = service->burnForDevice(otherDrive);
    const auto secondLog = observe(second);
    second->writeLayout(layout);
    const auto log = burn(layout);
    ASSERT_TRUE(loops->runUntil([&] { return secondLog->isOver(); }));
    EXPECT_TRUE(log->isDone()) << log->info();
    EXPECT_TRUE(secondLog->isDone()) << secondLog->info();
    expectAudio(layout);
    EXPECT_EQ(other->writtenDisc()->sectors, recorder->writtenDisc()->sectors);
}

class OffsetBurn : public DriveBurn, public testing::WithParamInterface<int> {};

TEST_P(OffsetBurn, IsVerifiedWhateverTheSampleOffsetOfTheDriveIs) {
    recorder->setReadOffset(GetParam());
    const DRLayout layout = audio({1030, 310});
    const auto log = burn(layout);
    EXPECT_TRUE(log->isDone()) << log->info();
    expectAudio(layout);
}

INSTANTIATE_TEST_SUITE_P(, OffsetBurn, testing::Values(667, -472, 1500, -1500),
                         [](const auto& tested) {
                             return (tested.param < 0 ? "minus" : "plus") +
                                    std::to_string(std::abs(tested.param));
                         });

} // namespace
} // namespace quarner
