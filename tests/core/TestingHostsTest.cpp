// SPDX-License-Identifier: LGPL-2.1-or-later

// The code of docs/testing-hosts.md, which the last test here compares with this file.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include <quarner/quarner.h>
#include <quarner/scripted.h>

namespace {

// The host: burns songs, and keeps a line that its window shows.
class DiscWriter : public quarner::QuarnDelegate {
public:
    DiscWriter() { _burner->setDelegate(this); }
    ~DiscWriter() override { _burner->setDelegate(nullptr); }

    bool add(const std::vector<std::string>& songs) { return _burner->addFiles(songs); }
    void burn(const std::string& drive) {
        _burner->burnWithDevice(quarner::QuarnerDevice(drive), "Mix");
    }
    void cancel() { _burner->stopBurn(); }

    std::string line = "idle";

private:
    void burnProgressDidStarted() override { line = "starting"; }
    void burnProgressDidChanaged(double fraction, std::uint64_t /*lefttime*/) override {
        line = "at " + std::to_string(static_cast<int>(fraction * 100)) + "%";
    }
    void burnProgressDidDone() override { line = "done"; }
    void burnProgressDidCanceled() override { line = "cancelled"; }
    void burnProgressDidError(const quarner::BurnError& error) override {
        line = quarner::textForBurnErrorCode(error.code);
    }

    std::shared_ptr<quarner::Quarner> _burner = quarner::Quarner::audioCDBurner();
};

class DiscWriterTest : public ::testing::Test {
protected:
    DiscWriter writer; // outlives the platform: see ScriptedPlatform
    quarner::ScriptedPlatform platform;
    std::shared_ptr<quarner::ScriptedDrive> drive =
        platform.addDrive({.name = "Writer", .disc = quarner::DiscScript{}});

    // Two songs of three minutes in the compilation.
    void SetUp() override {
        platform.putSong("/music/one.mp3", {.seconds = 180});
        platform.putSong("/music/two.mp3", {.seconds = 180});
        ASSERT_TRUE(writer.add({"/music/one.mp3", "/music/two.mp3"}));
        ASSERT_TRUE(platform.runUntilIdle());
    }
};

TEST_F(DiscWriterTest, SaysDoneInTheEnd) {
    writer.burn("Writer");
    EXPECT_EQ(platform.lastBurn()->layout().size(), 2U);
    platform.lastBurn()->play();
    ASSERT_TRUE(platform.runUntilIdle());
    EXPECT_EQ(writer.line, "done");
}

TEST_F(DiscWriterTest, TellsWhatWentWrongInTheMiddle) {
    writer.burn("Writer");
    platform.lastBurn()->play({.failsAt = 0.4, .code = quarner::DRError::NoSpace});
    ASSERT_TRUE(platform.runUntilIdle());
    EXPECT_EQ(writer.line, "no space is left for the image");
}

TEST_F(DiscWriterTest, SurvivesADriveThatIsPulled) {
    writer.burn("Writer");
    platform.lastBurn()->play();
    ASSERT_TRUE(platform.runUntil([&] { return writer.line == "at 50%"; }));
    platform.unplug(drive);
    ASSERT_TRUE(platform.runUntilIdle());
    EXPECT_EQ(writer.line, "the drive was unplugged");
}

TEST_F(DiscWriterTest, CancelsWhileTheDriveStillPrepares) {
    writer.burn("Writer");
    platform.lastBurn()->post(quarner::BurnRecord{.state = quarner::DRStatusStatePreparing});
    ASSERT_TRUE(platform.runUntilIdle());
    writer.cancel();
    ASSERT_TRUE(platform.runUntilIdle());
    EXPECT_EQ(writer.line, "cancelled");
}

TEST_F(DiscWriterTest, LeavesOutASongThatCannotBeRead) {
    platform.putSong("/music/three.mp3", {.seconds = 180});
    platform.fail(quarner::ServiceCall::MovieWithFile, {.subject = "/music/three.mp3"});
    ASSERT_TRUE(writer.add({"/music/three.mp3"}));
    ASSERT_TRUE(platform.runUntilIdle());
    writer.burn("Writer");
    EXPECT_EQ(platform.lastBurn()->layout().size(), 2U);
}

std::string contentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

TEST(TestingHosts, TheCodeInTheDocumentIsTheCodeThatIsBuilt) {
    const std::string document = contentOf(QUARNER_SOURCE_DIR "/docs/testing-hosts.md");
    const std::string code = contentOf(QUARNER_SOURCE_DIR "/tests/core/TestingHostsTest.cpp");
    const std::string opening = "```cpp\n";
    int blocks = 0;
    for (std::size_t at = document.find(opening); at != std::string::npos;
         at = document.find(opening, at)) {
        at += opening.size();
        const std::string block = document.substr(at, document.find("```", at) - at);
        EXPECT_NE(code.find(block), std::string::npos) << block;
        ++blocks;
    }
    EXPECT_EQ(blocks, 4);
}

} // namespace
