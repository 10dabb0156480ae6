// SPDX-License-Identifier: LGPL-2.1-or-later
#include <time.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "adapters/joliet/JolietDiscs.h"
#include "adapters/posix/FileStamps.h"
#include "quarner/data/DataCDBurner.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/desktop/DesktopFixture.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class DesktopDataDisc : public DesktopTest {
protected:
    DesktopDataDisc() {
        burner = Quarner::dataCDBurner();
        burner->setDelegate(&delegate);
    }
    std::string addDrive() const { return addImageDrive({.path = image(), .minutes = 80}); }
    std::string image() const { return folder.file("mix.iso"); }

    /// The calls of a burn without progress reports and repetitions.
    std::vector<std::string> states() const {
        std::vector<std::string> states = delegate.calls();
        std::erase_if(states, [](const std::string& call) {
            return call.starts_with("burnProgressDidChanaged");
        });
        states.erase(std::unique(states.begin(), states.end()), states.end());
        return states;
    }
    /// The volume name in the Joliet descriptor, without padding; ASCII only.
    std::string volumeName() const {
        constexpr std::size_t descriptor = 17 * dataBlockSize;
        constexpr std::size_t place = 40;
        const std::string field = contentOf(image()).substr(descriptor + place, 32);
        std::string name;
        for (std::size_t i = 1; i < field.size(); i += 2)
            name += field[i];
        return name.substr(0, name.find_last_not_of(std::string_view(" \0", 2)) + 1);
    }
    std::string extracted(const std::string& name) const {
        return run({"isoinfo", "-J", "-i", image(), "-x", '/' + name}).output;
    }
    /// Runs a program that can tell the user of any name.
    static ProgramResult run(std::vector<std::string> command) {
        command.insert(command.begin(), {"env", "LC_ALL=C.UTF-8"});
        return runProgram(command);
    }
};

TEST_F(DesktopDataDisc, AHostAddsFilesAndBurnsThemByteForByte) {
    const QuarnerDevice drive(addDrive());
    const std::string one = put("five.mp3", "one.mp3");
    const std::string two = put("six.m4a", "Größe 二.m4a");
    compile({one, two});
    EXPECT_EQ(burner->usedCapacity(),
              std::filesystem::file_size(one) + std::filesystem::file_size(two));
    EXPECT_FALSE(burner->isContentOverflowForDevice(drive));
    delegate.forget();

    burner->burnWithDevice(drive, "Mix");
    EXPECT_THAT(delegate.calls(), ElementsAre("burnProgressDidStarted"));
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    EXPECT_THAT(states(),
                ElementsAre("burnProgressDidStarted", "burnProgressIsPreparing",
                            "burnProgressIsOpeningTrack(1, 1)", "burnProgressIsWriteingTrack(1, 1)",
                            "burnProgressDidCloseTrack(1, 1)", "burnProgressDidCloseSession",
                            "burnProgressIsFinishing", "burnProgressIsVerifying",
                            "burnProgressDidDone"));
    EXPECT_THAT(delegate.calls(), Contains("burnProgressDidChanaged(1, 0)"));
    EXPECT_FALSE(drive.isDiscBlank());

    EXPECT_TRUE(extracted("one.mp3") == contentOf(one));
    EXPECT_EQ(run({"isoinfo", "-f", "-i", image()}).output, "") << "Joliet only";
    const TemporaryFolder out;
    EXPECT_EQ(run({"bsdtar", "-xf", image(), "-C", out.path().string()}).status, 0);
    EXPECT_TRUE(contentOf(out.file("one.mp3")) == contentOf(one));
    EXPECT_TRUE(contentOf(out.file("Größe 二.m4a")) == contentOf(two));
}

TEST_F(DesktopDataDisc, AFolderNamedLikeASongIsRefusedAndReported) {
    const std::string album = folder.file("album.mp3");
    std::filesystem::create_directory(album);
    compile({album, put("five.mp3", "one.mp3")});
    EXPECT_THAT(paths(), ElementsAre(folder.file("one.mp3")));
    EXPECT_EQ(delegate.reports().back(), (EndReport{{"incompatible-files", {album}}}));
}

TEST_F(DesktopDataDisc, AnyTitleIsBurntAlsoOnADiscOfNoFiles) {
    const std::vector<std::pair<std::optional<std::string>, std::string>> titles = {
        {std::nullopt, ""},
        {"", ""},
        {"Mix", "Mix"},
        {std::string(300, 'x'), std::string(16, 'x')}};
    const std::string name = addDrive();
    for (const auto& [title, onDisc] : titles) {
        QuarnerDevice drive(name);
        delegate.forget();
        burner->burnWithDevice(drive, title);
        ASSERT_TRUE(runUntilCalled("burnProgressDidDone")) << onDisc;
        EXPECT_EQ(run({"isoinfo", "-J", "-f", "-i", image()}).output, "");
        EXPECT_EQ(volumeName(), onDisc);
        drive.eject();
        EXPECT_TRUE(insertBlankDisc(name));
    }
}

TEST_F(DesktopDataDisc, TheBurnFollowsAnEditedList) {
    const QuarnerDevice drive(addDrive());
    compile({put("five.mp3", "a.mp3"), put("five.mp3", "b.mp3"), put("six.m4a", "c.m4a")});
    burner->removeItem(burner->child(1, nullptr));
    burner->moveBurnItem({1}, 0);
    burner->burnWithDevice(drive, "Mix");
    ASSERT_TRUE(runUntilCalled("burnProgressDidDone"));
    EXPECT_EQ(run({"isoinfo", "-J", "-f", "-i", image()}).output, "/a.mp3\n/c.m4a\n");
}

TEST_F(DesktopDataDisc, StoppingEndsInACancellationAndLeavesNoImage) {
    const QuarnerDevice drive(addDrive());
    compile({put("60.00.mp3", "one.mp3")});
    burner->burnWithDevice(drive, "Mix");
    burner->stopBurn();
    ASSERT_TRUE(runUntilCalled("burnProgressDidCanceled"));
    EXPECT_FALSE(std::filesystem::exists(image()));
    EXPECT_TRUE(drive.isDiscBlank());
}

/// A data burner that shows its list.
class OpenDataCDBurner : public DataCDBurner {
public:
    using DataCDBurner::_content;
};

/// The processor time that this thread takes for work.
double threadSecondsOf(const std::function<void()>& work) {
    const auto now = [] {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    const double start = now();
    work();
    return now() - start;
}

TEST_F(DesktopDataDisc, StartingTheBurnOfManyFilesDoesNotLayThemOutOnTheCallingThread) {
    const QuarnerDevice drive(addDrive());
    const auto many = std::make_shared<OpenDataCDBurner>();
    many->setDelegate(&delegate);
    const auto root = std::make_shared<DRFolder>("Mix");
    root->setExplicitFilesystemMask(DRFilesystemMaskJoliet);
    for (int i = 0; i < 2000; ++i) {
        const std::string path = folder.write("song " + std::to_string(i) + ".mp3", "x");
        const auto node = std::make_shared<DRFile>(path, *stampOfFile(path));
        many->_content.append(node);
        root->addChild(node);
    }
    const double ofLayout =
        threadSecondsOf([&] { makeJolietDiscs()->trackForRootFolder(root)->estimateLength(); });
    const double ofCall = threadSecondsOf([&] { many->burnWithDevice(drive, "Mix"); });
    EXPECT_LT(ofCall, ofLayout / 5);
    many->stopBurn();
    EXPECT_TRUE(runUntilCalled("burnProgressDidCanceled"));
}

TEST_F(DesktopDataDisc, AFileThatIsGoneSinceItWasAddedFailsTheBurn) {
    const QuarnerDevice drive(addDrive());
    const std::string path = put("five.mp3", "one.mp3");
    compile({path});
    std::filesystem::remove(path);
    burner->burnWithDevice(drive, "Mix");
    ASSERT_TRUE(runUntil([&] { return !delegate.errors().empty(); }));
    EXPECT_EQ(delegate.errors().front().code, signedCode(DRError::SourceMissing));
    EXPECT_FALSE(std::filesystem::exists(image()));
}

} // namespace
} // namespace quarner::testing
