// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Pointee;

class SupportedAudioTypesTest : public AudioBurnerTest {};

TEST_F(SupportedAudioTypesTest, TheListIsFixedOnEveryCallWhateverThePlatformPlays) {
    platform.setMovieFileTypes({"wav", "ogg", "pdf"});
    for (int call = 0; call < 3; ++call)
        EXPECT_THAT(burner->supportedFileTypes(), ElementsAre("mp3", "MP3", "m4a", "M4A"));
}

TEST_F(SupportedAudioTypesTest, ExtensionsAreAcceptedInAnyCaseAndNoOthers) {
    putSongs({"/a.Mp3", "/b.wav", "/c.aif"});
    burner->addFiles({"/a.Mp3", "/b.wav", "/c.aif"});
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/a.Mp3"));
}

TEST_F(SupportedAudioTypesTest, AnAudiobookIsNotAcceptedByItsExtension) {
    platform.setMovieFileTypes({"m4b", "wav"});
    putSongs({"/book.m4b", "/b.wav"});
    EXPECT_FALSE(burner->addFiles({"/book.m4b", "/b.wav"}));
}

TEST_F(SupportedAudioTypesTest, TheCacheIsBuiltOnceOnTheFirstCall) {
    platform.setMovieFileTypes({"wav"});
    EXPECT_EQ(burner->_supportedFiles, nullptr);
    EXPECT_EQ(platform.calls(ServiceCall::MovieFileTypes), 0U);
    burner->supportedFileTypes();
    platform.setMovieFileTypes({"ogg"});
    burner->supportedFileTypes();
    EXPECT_THAT(burner->_supportedFiles, Pointee(ElementsAre("wav")));
    EXPECT_EQ(platform.calls(ServiceCall::MovieFileTypes), 1U);
}

TEST_F(SupportedAudioTypesTest, OnlyTheFirstOfEachUnwantedTypeLeavesTheCache) {
    platform.setMovieFileTypes({"mid", "wav", "'Midi'", "midi", "pls", "m3u", "pdf", "mid", "MID"});
    burner->supportedFileTypes();
    EXPECT_THAT(burner->_supportedFiles, Pointee(ElementsAre("wav", "mid", "MID")));
}

TEST_F(SupportedAudioTypesTest, WithoutAListOfThePlatformTheCacheIsEmpty) {
    platform.fail(ServiceCall::MovieFileTypes);
    EXPECT_EQ(burner->supportedFileTypes().size(), 4U);
    EXPECT_THAT(burner->_supportedFiles, Pointee(ElementsAre()));
}

TEST_F(SupportedAudioTypesTest, ABurnerThatWasNeverAskedHasNoCacheToRelease) {
    burner->clearAll();
    burner->usedCapacity();
    EXPECT_EQ(burner->_supportedFiles, nullptr);
    const std::weak_ptr<Quarner> watch = burner;
    burner.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(platform.calls(ServiceCall::MovieFileTypes), 0U);
}

} // namespace
} // namespace quarner::testing
