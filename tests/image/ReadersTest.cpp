// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>

#include <array>
#include <cstdio>

#include "tests/image/ImageTest.h"

namespace quarner {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// Returns what a command line prints on both streams.
std::string outputOf(const std::string& command) {
    std::string output;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    std::array<char, 4096> buffer = {};
    while (pipe != nullptr) {
        const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe);
        if (count == 0)
            break;
        output.append(buffer.data(), count);
    }
    if (pipe != nullptr)
        pclose(pipe);
    return output;
}

bool isInstalled(const std::string& program) { return !outputOf("command -v " + program).empty(); }

std::string quotedForShell(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + '\'';
}

/// Independent programs read an image of three tracks, whatever its name.
class ImageReaders : public CueTest, public testing::WithParamInterface<const char*> {
protected:
    void burnImage() {
        const auto drive = stage->drives().add({.path = cue()});
        layout = makeLayout({588 * 450 + 1, 588 * 300, 588 * 4500});
        const Outcome outcome = burn(layout, drive);
        ASSERT_TRUE(outcome.isDone) << outcome.info;
    }
    std::string cue() const { return stage->folder.file(std::string(GetParam()) + ".cue"); }
    std::string bin() const { return stage->folder.file(std::string(GetParam()) + ".bin"); }

    DRLayout layout;
};

TEST_P(ImageReaders, CdInfoSeesTheTracksWhereTheyAre) {
    ASSERT_TRUE(isInstalled("cd-info"));
    burnImage();
    EXPECT_THAT(
        outputOf("cd-info --no-header --no-cddb --cue-file=" + quotedForShell(cue())),
        AllOf(HasSubstr("1: 00:02:00  000000 audio"), HasSubstr("2: 00:10:01  000601 audio"),
              HasSubstr("3: 00:16:01  001051 audio"), HasSubstr("170: 01:16:01  005551 leadout")));
}

TEST_P(ImageReaders, CdrdaoSeesTheTracksAndTheirPreGaps) {
    ASSERT_TRUE(isInstalled("cdrdao"));
    burnImage();
    EXPECT_THAT(outputOf("cd " + stage->folder.path().string() + " && cdrdao show-toc " +
                         quotedForShell(cue())),
                AllOf(HasSubstr("END    00:06:01(   451)"), HasSubstr("START  00:08:01(   601)"),
                      HasSubstr("END    00:12:01(   901)"), HasSubstr("START  00:14:01(  1051)"),
                      HasSubstr("END    01:14:01(  5551)")));
}

TEST_P(ImageReaders, BchunkExtractsEveryTrack) {
    ASSERT_TRUE(isInstalled("bchunk"));
    burnImage();
    const TemporaryFolder out;
    const std::string log = outputOf("bchunk " + quotedForShell(bin()) + ' ' +
                                     quotedForShell(cue()) + ' ' + out.file("track"));
    const std::vector<std::string> tracks = tracksOf(layout);
    for (const std::size_t i : {0, 1, 2})
        EXPECT_TRUE(contentOf(out.file("track0" + std::to_string(i + 1) + ".cdr")) == tracks[i])
            << log;
}

INSTANTIATE_TEST_SUITE_P(Named, ImageReaders,
                         testing::Values("mix", "two words", "Grüße 日本 🎵", "no\xFF\xFEtext",
                                         "it's 100% back\\slash; (a) & b"),
                         [](const auto& tested) { return std::to_string(tested.index); });

} // namespace
} // namespace quarner
