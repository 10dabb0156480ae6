// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <future>
#include <limits>
#include <thread>

#include "quarner/audio/AudioCDBurner.h"
#include "quarner/data/DataCDBurner.h"
#include "quarner/front/BurnerRegistry.h"
#include "quarner/platform/NullPlatform.h"
#include "quarner/quarner.h"

namespace quarner::testing {
namespace {

TEST(Quarner, ABurnerThatIsNeitherAudioNorDataGivesNeutralAnswers) {
    const auto burner = std::make_shared<Quarner>();
    EXPECT_FALSE(burner->addFiles({"a.mp3"}));
    EXPECT_FALSE(burner->addFile("a.mp3"));
    EXPECT_EQ(burner->numberOfChildrenOfBurnItem(nullptr), 0U);
    EXPECT_EQ(burner->child(0, nullptr), nullptr);
    EXPECT_EQ(burner->propertyOfBurnItem(nullptr), nullptr);
    EXPECT_EQ(burner->usedCapacity(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_TRUE(burner->isContentOverflowForDevice(QuarnerDevice("none")));
    EXPECT_TRUE(burner->isContentBlank());
    EXPECT_TRUE(burner->supportedFileTypes().empty());
    burner->stopBurn();
}

TEST(Quarner, TheFactoryFindsTheAudioBurnerByName) {
    ASSERT_NE(Quarner::audioCDBurner(), nullptr);
    EXPECT_EQ(Quarner::audioCDBurner()->supportedFileTypes(),
              (std::vector<std::string>{"mp3", "MP3", "m4a", "M4A"}));
}

TEST(BurnerRegistry, MakesABurnerOnlyOfAClassThatItKnows) {
    EXPECT_NE(std::dynamic_pointer_cast<AudioCDBurner>(makeBurner("AudioCDBurner")), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<DataCDBurner>(makeBurner("DataCDBurner")), nullptr);
    EXPECT_EQ(makeBurner("NoSuchBurner"), nullptr);
}

class NullPlatformTest : public ::testing::Test {
protected:
    int compare(const std::string& a, const std::string& b) const {
        return platform.text->compareLocalizedCaseInsensitive(a, b);
    }

    const Platform platform = nullPlatform();
};

TEST_F(NullPlatformTest, HasNoDriveAndABurnThatDoesNothing) {
    EXPECT_TRUE(platform.recording->devices().empty());
    const std::shared_ptr<DRBurn> burn = platform.recording->burnForDevice(nullptr);
    ASSERT_NE(burn, nullptr);
    burn->setProperties({});
    burn->writeLayout({});
    burn->abort();
    EXPECT_NE(platform.recording->currentRunLoopCenter(), nullptr);
}

TEST_F(NullPlatformTest, ReadsNoFile) {
    EXPECT_EQ(platform.media->movieWithFile("/a.mp3"), nullptr);
    EXPECT_EQ(platform.recording->trackForAudioFile("/a.mp3"), nullptr);
    EXPECT_EQ(platform.recording->trackForRootFolder(std::make_shared<DRFolder>("Disc")), nullptr);
}

TEST_F(NullPlatformTest, ShowsTheNameOfAFileWithoutItsFolder) {
    EXPECT_EQ(platform.files->displayName("/music/a.mp3"), "a.mp3");
    EXPECT_EQ(platform.files->displayName("a.mp3"), "a.mp3");
}

TEST_F(NullPlatformTest, WorksInAThreadOfItsOwnAndInsteadOfTheMainThreadAtOnce) {
    std::promise<std::thread::id> worker;
    platform.dispatch->asyncGlobal([&] { worker.set_value(std::this_thread::get_id()); });
    EXPECT_NE(worker.get_future().get(), std::this_thread::get_id());
    std::thread::id main;
    platform.dispatch->syncMain([&] { main = std::this_thread::get_id(); });
    EXPECT_EQ(main, std::this_thread::get_id());
}

TEST_F(NullPlatformTest, DropsWorkForAMainQueueThatIsNotThere) {
    platform.dispatch->asyncMain([] { FAIL() << "not inside the call, and there is no later"; });
}

TEST_F(NullPlatformTest, SortsWithoutRegardToCase) {
    EXPECT_EQ(compare("", ""), 0);
    EXPECT_EQ(compare("Song", "sONG"), 0);
    EXPECT_LT(compare("a", "B"), 0);
    EXPECT_GT(compare("b", "A"), 0);
    EXPECT_LT(compare("song", "songs"), 0);
    EXPECT_GT(compare("songs", "song"), 0);
    EXPECT_LT(compare("song", std::string("song\0", 5)), 0)
        << "an end comes before every character";
    EXPECT_GT(compare(std::string("song\0", 5), "song"), 0);
}

TEST_F(NullPlatformTest, WritesNumbersAndTextsAsTheyAre) {
    EXPECT_EQ(platform.text->localizedNumber(1234.56, 1), "1234.6");
    EXPECT_EQ(platform.text->localizedNumber(-2.0, 0), "-2");
    EXPECT_EQ(platform.text->localizedString("%.1f MB"), "%.1f MB");
}

TEST_F(NullPlatformTest, StandsInForEveryServiceThatIsMissing) {
    installPlatform({});
    const auto current = currentPlatform();
    EXPECT_NE(current->recording, nullptr);
    EXPECT_NE(current->media, nullptr);
    EXPECT_NE(current->files, nullptr);
    EXPECT_NE(current->dispatch, nullptr);
    EXPECT_NE(current->text, nullptr);
    EXPECT_NE(current->log, nullptr);
}

} // namespace
} // namespace quarner::testing
