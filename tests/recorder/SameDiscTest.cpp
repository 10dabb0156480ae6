// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/e2e/DiscReaders.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "quarner/platform/DiscFormat.h"
#include "tests/recorder/CueStage.h"
#include "tests/recorder/IsoStage.h"
#include "tests/recorder/OpticalRecorderStage.h"
#include "tests/support/BurnLog.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;

/// The same files burned to an image and onto the disc of an emulated drive.
template <class ImageKind, class OpticalKind>
class SameDisc : public ::testing::Test {
protected:
    void burnBoth(std::initializer_list<std::uint64_t> pairs) {
        for (const std::uint64_t count : pairs)
            paths.push_back(optical.makeSource(count));
        burn(image, image.layoutOf(paths));
        burn(optical, optical.layoutOf(paths));
        disc = optical.disc();
    }
    static void burn(RecorderStage& stage, const DRLayout& layout) {
        const auto burning = stage.service()->burnForDevice(stage.drive());
        const BurnLog log(stage.service()->currentRunLoopCenter(), burning.get());
        burning->writeLayout(layout);
        stage.loops().runUntil([&] { return log.isOver(); });
        ASSERT_TRUE(log.isDone()) << log.info();
    }

    Paths paths;
    ImageKind image;
    OpticalKind optical;
    Medium disc;
};

using SameAudioDisc = SameDisc<CueStage, AudioOpticalStage>;
using SameDataDisc = SameDisc<IsoStage, DataOpticalStage>;

/// An entry of a cue sheet, without the first byte: track, index, and minute, second and frame.
using Entry = std::vector<int>;
std::vector<Entry> entriesOf(const std::vector<std::uint8_t>& sheet) {
    std::vector<Entry> entries;
    for (std::size_t at = 0; at + 8 <= sheet.size(); at += 8)
        entries.push_back(
            {sheet[at + 1], sheet[at + 2], sheet[at + 5], sheet[at + 6], sheet[at + 7]});
    return entries;
}

TEST_F(SameAudioDisc, HasTheCueSheetOfItsTracks) {
    burnBoth({588 * 310 + 1, 1, 588 * 450});
    constexpr int leadOut = 0xAA;
    // 311, 300 and 450 sectors, each after 150 of silence.
    EXPECT_THAT(entriesOf(disc.cueSheet),
                ElementsAre(Entry{0, 0, 0, 0, 0}, Entry{1, 0, 0, 0, 0}, Entry{1, 1, 0, 2, 0},
                            Entry{2, 0, 0, 6, 11}, Entry{2, 1, 0, 8, 11}, Entry{3, 0, 0, 12, 11},
                            Entry{3, 1, 0, 14, 11}, Entry{leadOut, 1, 0, 20, 11}));
    for (std::size_t at = 0; at < disc.cueSheet.size(); at += 8)
        EXPECT_EQ(disc.cueSheet[at], 0x01) << "sound that may not be copied, in entry " << at / 8;
}

TEST_F(SameAudioDisc, IsTheImageSectorBySector) {
    burnBoth({588 * 310 + 1, 1, 588 * 450});
    const std::string bin = contentOf(image.bin());
    const std::vector<std::byte> bytes = disc.bytes(0, disc.end(), audioSectorSize);
    EXPECT_TRUE(std::ranges::equal(std::as_bytes(std::span(bin)), bytes));
    EXPECT_EQ(disc.sectors.size(), bytes.size() / audioSectorSize + sectorsOfPreGap)
        << "each was sent";
    EXPECT_EQ(disc.bytes(-150, 0, audioSectorSize), std::vector<std::byte>(150 * audioSectorSize));
    EXPECT_TRUE(optical.contentsOnDisc() == image.contentsOnDisc());
}

TEST_F(SameAudioDisc, ShowsProgramsThatWereNotWrittenHereTheSameTracks) {
    burnBoth({588 * 310 + 1, 1, 588 * 450});
    const TemporaryFolder folder;
    const std::string cue = folder.file("received.cue");
    saveCue(disc, cue);
    EXPECT_THAT(startsByCdInfo(cue), ElementsAre(0, 461, 911, 1361));
    EXPECT_EQ(startsByCdInfo(cue), startsByCdInfo(image.cue()));
    EXPECT_THAT(placesByCdrdao(cue),
                ElementsAre(TrackPlace{0, 311}, TrackPlace{461, 761}, TrackPlace{911, 1361}));
    EXPECT_EQ(placesByCdrdao(cue), placesByCdrdao(image.cue()));
    EXPECT_EQ(sectorsByLibburn(cue), sectorsByLibburn(image.cue()));
    EXPECT_EQ(soundByBchunk(cue, folder.file("received.bin")),
              soundByBchunk(image.cue(), image.bin()));
}

TEST_F(SameDataDisc, HasOneTrackWithTheFilesOfTheImage) {
    burnBoth({300'000, 1, 77'777});
    ASSERT_EQ(disc.tracks.size(), 1U);
    EXPECT_FALSE(disc.tracks[0].isAudio);
    EXPECT_EQ(disc.tracks[0].start, 0);
    EXPECT_EQ(optical.blocksOnDisc(), image.blocksOnDisc());
    EXPECT_TRUE(optical.contentsOnDisc() == image.contentsOnDisc());
    EXPECT_TRUE(optical.contentsOnDisc() == optical.expectedContentsOf(paths));
}

TEST_F(SameDataDisc, ShowsProgramsThatWereNotWrittenHereTheSameFiles) {
    burnBoth({300'000, 1, 77'777});
    const TemporaryFolder folder;
    const std::string iso = folder.file("received.iso");
    saveIso(disc, iso);
    const auto listed = [](const std::string& path) {
        const ProgramResult result = runProgram({"isoinfo", "-J", "-f", "-i", path});
        EXPECT_EQ(result.status, 0) << result.output;
        return result.output;
    };
    EXPECT_EQ(listed(iso), listed(image.image()));
    for (const std::string& path : paths) {
        const std::string name = std::filesystem::path(path).filename().string();
        const ProgramResult read = runProgram({"isoinfo", "-J", "-x", "/" + name, "-i", iso});
        EXPECT_TRUE(read.output == contentOf(path)) << name;
    }
}

} // namespace
} // namespace quarner::testing
