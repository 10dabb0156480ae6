// SPDX-License-Identifier: LGPL-2.1-or-later
#include <functional>
#include <thread>
#include <utility>

#include "quarner/platform/Platform.h"
#include "tests/support/BurnerFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AudioIngestionTest : public AudioBurnerTest {
protected:
    using Paths = std::vector<std::string>;

    Paths reported(const char* key) const {
        const std::vector<EndReport> reports = delegate.reports();
        EXPECT_EQ(reports.size(), 1U);
        const auto entry = reports.front().find(key);
        return entry == reports.front().end() ? Paths{"no entry"} : entry->second;
    }
    Paths protectedFiles() const { return reported("protected-files"); }
    Paths incompatibleFiles() const { return reported("incompatible-files"); }
};

TEST_F(AudioIngestionTest, WhatIsRefusedAtOnceIsReportedAsTheCallerWroteIt) {
    putSongs({"/a.mp3"});
    platform.putFile("/real/text.txt");
    platform.putFile("/real/song.m4p");
    platform.putFile("/text alias", {.aliasOf = "/real/text.txt"});
    platform.putFile("/song alias", {.aliasOf = "/real/song.m4p"});
    burner->addFiles({"/a.mp3", "/text alias", "/song alias"});
    finishRuns();
    EXPECT_THAT(incompatibleFiles(), ElementsAre("/text alias"));
    EXPECT_THAT(protectedFiles(), ElementsAre("/song alias"));
}

TEST_F(AudioIngestionTest, AnotherExtensionIsAcceptedOnlyByASupportedTypeCode) {
    class WaveBurner : public OpenAudioCDBurner {
        std::vector<std::string> supportedFileTypes() override { return {"mp3", "'WAVE'"}; }
    };
    burner = std::make_shared<WaveBurner>();
    platform.putSong("/x.wav", {.seconds = 5}, {.typeCode = typeCode("WAVE")});
    platform.putSong("/y.wav", {.seconds = 5}, {.typeCode = typeCode("wave")});
    platform.putSong("/z.wav", {.seconds = 5});
    EXPECT_TRUE(burner->addFiles({"/x.wav"}));
    EXPECT_FALSE(burner->addFiles({"/y.wav", "/z.wav"}));
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/x.wav"));
}

TEST_F(AudioIngestionTest, ATypeCodeOutsideTheListHelpsNobody) {
    platform.putSong("/x.wav", {.seconds = 5}, {.typeCode = typeCode("WAVE")});
    EXPECT_FALSE(burner->addFiles({"/x.wav"}));
}

/// Makes one track until its run is cancelled, and for as long after that as it may.
class SlowRecording : public RecordingService {
public:
    SlowRecording(std::shared_ptr<RecordingService> recording, std::string slowPath)
        : _recording(std::move(recording)), _slowPath(std::move(slowPath)) {}

    std::vector<std::shared_ptr<DRDevice>> devices() override { return _recording->devices(); }
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice> device) override {
        return _recording->burnForDevice(std::move(device));
    }
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string& path) override {
        return _recording->trackForAudioFile(path);
    }
    std::shared_ptr<DRTrack> trackForAudioFileWhile(const std::string& path,
                                                    const MayContinue& mayContinue) override {
        if (path != _slowPath)
            return trackForAudioFile(path);
        whenBegun();
        while (mayContinue())
            std::this_thread::yield();
        return nullptr;
    }
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override {
        return _recording->currentRunLoopCenter();
    }

    std::function<void()> whenBegun;

private:
    const std::shared_ptr<RecordingService> _recording;
    const std::string _slowPath;
};

TEST_F(AudioIngestionTest, ACancelWhileATrackIsMadeEndsTheRunWithoutThatFile) {
    putSongs({"/a.mp3", "/b.mp3", "/c.mp3"});
    Platform slow = *currentPlatform();
    const auto recording = std::make_shared<SlowRecording>(slow.recording, "/b.mp3");
    recording->whenBegun = [this] { burner->cancelToAddFiles(); };
    slow.recording = recording;
    installPlatform(slow);
    burner->addFiles({"/a.mp3", "/b.mp3", "/c.mp3"});
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/a.mp3"));
    EXPECT_THAT(incompatibleFiles(), IsEmpty());
    EXPECT_EQ(delegate.count("addFilesProgressDidCanceled"), 1U);
    EXPECT_EQ(delegate.count("addFilesProgressDidEnd"), 1U);
}

TEST_F(AudioIngestionTest, AFileOfWhichNoTrackCanBeMadeIsIncompatible) {
    platform.putSong("/odd.mp3", {.seconds = 10, .makesTrack = false});
    putSongs({"/fine.mp3"});
    burner->addFiles({"/odd.mp3", "/fine.mp3"});
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/fine.mp3"));
    EXPECT_THAT(incompatibleFiles(), ElementsAre("/odd.mp3"));
}

TEST_F(AudioIngestionTest, ProtectedAndUnexaminableFilesAreSetAside) {
    putSongs({"/a.mp3", "/book.m4b", "/secret.mp3"});
    platform.putFile("/secret.mp3", {.isReadable = false});
    platform.putSong("/coded.mp3", {.seconds = 9}, {.typeCode = typeCode("M4P ")});
    burner->addFiles({"/a.mp3", "/book.m4b", "/secret.mp3", "/coded.mp3", "/missing.mp3"});
    finishRuns();
    EXPECT_THAT(paths(), ElementsAre("/a.mp3"));
    EXPECT_THAT(protectedFiles(),
                ElementsAre("/book.m4b", "/coded.mp3", "/missing.mp3", "/secret.mp3"));
    EXPECT_THAT(incompatibleFiles(), IsEmpty());
}

TEST_F(AudioIngestionTest, ARunWithNothingAcceptedStaysSilent) {
    platform.putFile("/x.txt");
    platform.putFile("/y.m4p");
    EXPECT_FALSE(burner->addFiles({"/x.txt", "/y.m4p"}));
    finishRuns();
    EXPECT_THAT(delegate.calls(), IsEmpty());
    EXPECT_EQ(count(), 0U);
}

TEST_F(AudioIngestionTest, ASizeThatCannotBeReadAnyMoreCountsAsZero) {
    putSongs({"/a.mp3"});
    platform.backgroundQueue().hold();
    EXPECT_TRUE(burner->addFiles({"/a.mp3"}));
    platform.fail(ServiceCall::Attributes);
    platform.backgroundQueue().release();
    finishRuns();
    ASSERT_EQ(delegate.added().size(), 1U);
    EXPECT_EQ(valueFor(delegate.added()[0], kQuarnItemRealFileSizeKey), Value(0));
    EXPECT_EQ(valueFor(delegate.added()[0], kQuarnItemFileSizeKey), Value("0 KB"));
}

TEST_F(AudioIngestionTest, TheRecordHoldsTheSevenKeys) {
    platform.putSong("/dir/a.mp3", {.seconds = 205.9, .trackProperties = {{"own", 1}}},
                     {.size = 4'299'161, .displayName = "Song A", .icon = {{"audio-mpeg"}}});
    burner->addFiles({"/dir/a.mp3"});
    finishRuns();
    const Dictionary record = {{"itemName", "Song A"},
                               {"itemPath", "/dir/a.mp3"},
                               {"itemRealDuration", 205},
                               {"itemDuration", "00:03:25"},
                               {"itemRealFileSize", 4'299'161},
                               {"itemFileSize", "4.1 MB"},
                               {"itemIcon", Icon{{"audio-mpeg"}}}};
    ASSERT_EQ(delegate.added().size(), 1U);
    EXPECT_EQ(delegate.added()[0], record);
    EXPECT_EQ(delegate.count("addFilesProgressDidChanged(Song A, 1, 1)"), 1U);
}

TEST_F(AudioIngestionTest, TheItemKeepsTheTracksOwnPropertiesExceptWhereTheRecordHasThem) {
    platform.putSong("/a.mp3",
                     {.seconds = 10, .trackProperties = {{"own", 1}, {"itemName", "Track"}}});
    burner->addFiles({"/a.mp3"});
    finishRuns();
    const auto properties = burner->propertyOfBurnItem(burner->child(0, nullptr));
    EXPECT_EQ(properties->size(), 8U);
    EXPECT_EQ(valueFor(*properties, "own"), Value(1));
    EXPECT_EQ(valueFor(*properties, kQuarnItemDisplayNameKey), Value("a.mp3"));
    EXPECT_EQ(delegate.added()[0].size(), 7U);
}

TEST_F(AudioIngestionTest, EveryTrackHasAPreGapOf150Frames) {
    putSongs({"/a.mp3", "/b.mp3"});
    burner->addFiles({"/a.mp3", "/b.mp3"});
    finishRuns();
    ASSERT_EQ(count(), 2U);
    const ContentList::Snapshot items = burner->_content.snapshot();
    for (const BurnItemRef& item : items)
        EXPECT_EQ(std::dynamic_pointer_cast<const DRTrack>(item)->preGap().totalFrames(), 150U);
}

} // namespace
} // namespace quarner::testing
