// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include "tests/image/ImageTest.h"

namespace quarner {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class SourceFault : public AnyImageTest {
protected:
    /// Burns two sources and does something to the second one's file when it is being read.
    Outcome burnAndDisturb(const std::function<void(const std::string&)>& disturb) {
        const Paths paths = makeSources({588 * 400, 588 * 2000});
        path = paths[1];
        stage->whileReading(path, [=, this] { disturb(path); });
        return burn(paths);
    }
    std::string path;
};

TEST_P(SourceFault, ASourceThatVanishesInMidBurnFailsIt) {
    const Paths old = makeSources({1000, 588 * 400});
    ASSERT_TRUE(burn(old).isDone);
    takeNewBlank();
    const Outcome outcome =
        burnAndDisturb([](const std::string& file) { std::filesystem::remove(file); });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceMissing)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
    EXPECT_TRUE(imageHolds(old)) << "the old image is kept";
    EXPECT_EQ(filesInFolder(), stage->filesOfImage());
}

TEST_P(SourceFault, ASourceThatShrinksInMidBurnFailsIt) {
    const Outcome outcome = burnAndDisturb(
        [](const std::string& file) { std::filesystem::resize_file(file, 588 * 1000 * 4); });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
    EXPECT_THAT(filesInFolder(), IsEmpty());
}

TEST_P(SourceFault, ASourceThatIsWrittenAnewInMidBurnFailsIt) {
    const Outcome outcome = burnAndDisturb([](const std::string& file) {
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now());
    });
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(path));
}

INSTANTIATE_IMAGE_SUITE(SourceFault);

class SoundFault : public CueTest {};

TEST_F(SoundFault, ASourceThatDeliversLessThanItPromisedFailsTheBurn) {
    const DRLayout layout = makeLayout({588 * 400});
    const auto track = makeTrack(1000);
    track->sampleCount = 1001;
    const Outcome outcome = burn({layout[0], track});
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceUnreadable)) << outcome.info;
    EXPECT_THAT(outcome.info, HasSubstr(track->path));
}

TEST_F(SoundFault, ASourceThatDeliversMoreThanItPromisedFailsTheBurn) {
    const auto track = makeTrack(1000);
    track->sampleCount = 999;
    const Outcome outcome = burn({track});
    EXPECT_EQ(outcome.code, codeOf(DRError::SourceChanged)) << outcome.info;
}

} // namespace
} // namespace quarner
