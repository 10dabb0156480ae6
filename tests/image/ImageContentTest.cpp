// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <sys/stat.h>

#include <fstream>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/DiscPlan.h"
#include "tests/image/ForwardingFiles.h"
#include "tests/image/ImageTest.h"
#include "tests/support/OrdinaryUser.h"

namespace quarner {
namespace {

using testing::ElementsAre;

class ImageContent : public CueTest {};

TEST_F(ImageContent, IsTheTracksWithTwoSecondsOfSilenceBeforeAllButTheFirst) {
    const DRLayout layout = makeLayout({588 * 301, 588 * 302 + 1, 7});
    const Outcome outcome = burn(layout);
    ASSERT_TRUE(outcome.isDone) << outcome.info;
    const std::vector<std::string> tracks = tracksOf(layout);
    const std::string silence(150 * audioSectorSize, '\0');
    EXPECT_TRUE(contentOf(bin()) == tracks[0] + silence + tracks[1] + silence + tracks[2]);
    EXPECT_EQ(contentOf(cue()), "FILE \"mix.bin\" BINARY\n"
                                "  TRACK 01 AUDIO\n"
                                "    INDEX 01 00:00:00\n"
                                "  TRACK 02 AUDIO\n"
                                "    INDEX 00 00:04:01\n"
                                "    INDEX 01 00:06:01\n"
                                "  TRACK 03 AUDIO\n"
                                "    INDEX 00 00:10:04\n"
                                "    INDEX 01 00:12:04\n");
    EXPECT_THAT(filesInFolder(), ElementsAre("mix.bin", "mix.cue"));
}

TEST_F(ImageContent, KeepsThePreGapsThatTheTracksSay) {
    const auto first = makeTrack(1000);
    first->setPreGap(DRMSF::msfWithFrames(160));
    const auto second = makeTrack(1000);
    second->setPreGap(DRMSF::msf());
    const Outcome outcome = burn({first, second});
    ASSERT_TRUE(outcome.isDone) << outcome.info;
    EXPECT_EQ(contentOf(cue()), "FILE \"mix.bin\" BINARY\n"
                                "  TRACK 01 AUDIO\n"
                                "    INDEX 00 00:00:00\n"
                                "    INDEX 01 00:00:10\n"
                                "  TRACK 02 AUDIO\n"
                                "    INDEX 01 00:04:10\n");
    EXPECT_EQ(contentOf(bin()).size(), 610U * audioSectorSize);
}

TEST_F(ImageContent, NinetyNineTracksFit) {
    DRLayout layout;
    for (std::size_t i = 0; i < mostTracks; ++i) {
        const auto track = makeTrack(100);
        track->setLength(DRMSF::msfWithFrames(2)); // a small disc
        layout.push_back(track);
    }
    const Outcome outcome = burn(layout);
    ASSERT_TRUE(outcome.isDone) << outcome.info;
    EXPECT_TRUE(stage->contentsOnDisc() == tracksOf(layout));
}

TEST_F(ImageContent, TracksLongerThanTheReadAheadComeOutWhole) {
    const DRLayout layout = makeLayout({588 * 2000, 588 * 13000 + 5, 588 * 300});
    const Outcome outcome = burn(layout);
    ASSERT_TRUE(outcome.isDone) << outcome.info;
    EXPECT_TRUE(stage->contentsOnDisc() == tracksOf(layout));
}

TEST_F(ImageContent, ReplacesAnImageInWhateverStateItsPredecessorLeftIt) {
    for (int i = 0; i < 3; ++i) {
        const DRLayout layout = makeLayout({1000, static_cast<std::uint64_t>(588 * 400 + i)});
        const Outcome outcome = burn(layout);
        ASSERT_TRUE(outcome.isDone) << outcome.info;
        EXPECT_TRUE(stage->contentsOnDisc() == tracksOf(layout));
        EXPECT_THAT(filesInFolder(), ElementsAre("mix.bin", "mix.cue"));
        takeNewBlank();
    }
}

TEST_F(ImageContent, WithoutSecondNamesForAFileTheBinAlternatesBetweenTwo) {
    class NoLinks : public ForwardingFiles {
        bool link(const std::string&, const std::string&) override { return false; }
    };
    useFiles(std::make_shared<NoLinks>());
    for (const char* bin : {"mix.bin", "mix.bin.new", "mix.bin", "mix.bin.new"}) {
        const DRLayout layout = makeLayout({1000, 2000});
        const Outcome outcome = burn(layout);
        ASSERT_TRUE(outcome.isDone) << outcome.info;
        EXPECT_TRUE(stage->contentsOnDisc() == tracksOf(layout));
        EXPECT_THAT(filesInFolder(), ElementsAre(bin, "mix.cue"));
        takeNewBlank();
    }
}

TEST_F(ImageContent, AnExistingImageIsLoadedAsAWrittenDisc) {
    ASSERT_TRUE(burn(makeLayout({588 * 400, 1000})).isDone);
    const auto loaded = stage->drives().add({.path = cue(), .loadExisting = true});
    EXPECT_FALSE(loaded->mediaIsBlank());
    EXPECT_EQ(loaded->mediaSpaceUsed(), DRMSF::msfWithFrames(400 + 150 + 300));
    EXPECT_EQ(loaded->mediaSpaceFree(), DRMSF::msf());
    EXPECT_TRUE(stage->drives()
                    .add({.path = stage->folder.file("none.cue"), .loadExisting = true})
                    ->mediaIsBlank());
}

TEST_F(ImageContent, AnImageOfAnotherProgramIsAWrittenDiscToo) {
    const auto usedBlocks = [&] {
        const auto loaded = stage->drives().add({.path = cue(), .loadExisting = true});
        EXPECT_FALSE(loaded->mediaIsBlank());
        EXPECT_EQ(loaded->mediaSpaceFree(), DRMSF::msf());
        return loaded->mediaSpaceUsed()->totalFrames();
    };
    std::ofstream(cue()) << "FILE \"mix.bin\" BINARY\n  TRACK 01 MODE1/2048\n";
    EXPECT_EQ(usedBlocks(), 0U) << "the BIN is missing";
    std::ofstream(bin()) << std::string(dataBlockSize * 300, 'x');
    EXPECT_EQ(usedBlocks(), 0U) << "no sectors of sound";
    std::ofstream(cue()) << "FILE mix.bin BINARY\n";
    EXPECT_EQ(usedBlocks(), 0U) << "the BIN is not found";
    std::filesystem::permissions(stage->folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(cue(), std::filesystem::perms(0));
    const OrdinaryUser user;
    ASSERT_TRUE(user.isSet());
    EXPECT_EQ(usedBlocks(), 0U) << "the sheet may not be read";
}

TEST_F(ImageContent, APipeInTheImagesPlaceIsNoDiscAndKeepsNobodyWaiting) {
    ASSERT_EQ(mkfifo(cue().c_str(), 0600), 0);
    EXPECT_TRUE(stage->drives().add({.path = cue(), .loadExisting = true})->mediaIsBlank());
}

TEST_F(ImageContent, ImagesWhoseNamesDifferInTheirLettersCaseAloneLeaveEachOtherAlone) {
    const Paths first = makeSources({1000});
    const Paths second = makeSources({2000});
    ASSERT_TRUE(burn(first).isDone);
    const std::string other = stage->folder.file("mix.cUE");
    if (std::filesystem::exists(other))
        GTEST_SKIP() << "to this file system they are one name";
    ASSERT_TRUE(burn(stage->layoutOf(second), stage->drives().add({.path = other})).isDone);
    EXPECT_TRUE(imageHolds(first));
    EXPECT_TRUE(stage->contentsOf(other) == stage->expectedContentsOf(second));
}

TEST_F(ImageContent, ABinOfAnotherProgramIsReplacedToo) {
    std::ofstream(bin()) << "another program's sound";
    const DRLayout layout = makeLayout({1000, 2000});
    ASSERT_TRUE(burn(layout).isDone);
    EXPECT_TRUE(stage->contentsOnDisc() == tracksOf(layout));
    EXPECT_THAT(filesInFolder(), ElementsAre("mix.bin", "mix.cue"));
}

TEST_F(ImageContent, ABinThatNoSheetNamesOutlivesAFailureToPublish) {
    class NoSheet : public ForwardingFiles {
        void rename(const std::string& from, const std::string& to) override {
            if (to.ends_with(".cue"))
                throw BurnFailure(DRError::WriteFailed, "renaming failed");
            ForwardingFiles::rename(from, to);
        }
    };
    useFiles(std::make_shared<NoSheet>());
    std::ofstream(cue()) << "FILE mix.bin BINARY\n"; // another program's way to write it
    std::ofstream(bin()) << "another program's sound";
    EXPECT_EQ(burn(makeLayout({2000})).code, codeOf(DRError::WriteFailed));
    EXPECT_EQ(contentOf(bin()), "another program's sound");
    EXPECT_EQ(contentOf(cue()), "FILE mix.bin BINARY\n");
    EXPECT_THAT(filesInFolder(), ElementsAre("mix.bin", "mix.cue"));
}

TEST_F(ImageContent, ADriveTakes74Or80MinutesAndANameOfItsOwn) {
    const auto drive = stage->drives().add({.path = cue(), .minutes = 74});
    EXPECT_EQ(drive->mediaSpaceFree(), DRMSF::msfWithFrames(333'000));
    EXPECT_EQ(drive->displayName(), "mix.cue (2)");
    EXPECT_EQ(stage->drives().add({.path = cue()})->displayName(), "mix.cue (3)");
    EXPECT_EQ(stage->drives().add({.path = cue(), .minutes = 90}), nullptr);
    EXPECT_EQ(stage->drives().add({.path = stage->folder.file("mix.bin")}), nullptr);
}

TEST_F(ImageContent, OnlyAnAttachedDriveTakesABlankDisc) {
    const auto drive = stage->imageDrive();
    EXPECT_FALSE(drive->insertBlank()) << "it has one";
    EXPECT_TRUE(drive->ejectMedia());
    EXPECT_TRUE(drive->insertBlank());
    stage->unplug();
    EXPECT_FALSE(drive->insertBlank());
}

} // namespace
} // namespace quarner
