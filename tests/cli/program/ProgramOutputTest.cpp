// SPDX-License-Identifier: LGPL-2.1-or-later
#include <nlohmann/json.hpp>
#include <set>

#include "tests/cli/program/HostFixture.h"
#include "tools/quarner/text/Columns.h"

namespace quarner::testing {
namespace {

using nlohmann::json;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class ProgramOutput : public HostFixture {
protected:
    /// Without what the project reports beside the calls of the delegate.
    static std::vector<json> objects(const std::string& out) {
        const std::set<std::string> ofTheProject = {"fileRefused", "burnProgress", "burnEnded"};
        std::vector<json> all;
        for (const std::string& line : lines(out)) {
            json object = json::parse(line);
            if (!ofTheProject.contains(object.at("event")))
                all.push_back(std::move(object));
        }
        return all;
    }

    std::string uriInFolder(const std::string& name) const {
        return "file://" + (std::filesystem::canonical(folder.path()) / name).string();
    }

    /// What a reader makes of a URI.
    static std::string pathOfUri(const std::string& uri) {
        constexpr std::string_view scheme = "file://";
        EXPECT_TRUE(uri.starts_with(scheme)) << uri;
        std::string path;
        for (std::size_t at = scheme.size(); at < uri.size(); ++at) {
            const bool isEscaped = uri[at] == '%';
            path += isEscaped ? static_cast<char>(std::stoi(uri.substr(at + 1, 2), nullptr, 16))
                              : uri[at];
            at += isEscaped ? 2 : 0;
        }
        return path;
    }

    /// What was ever to be seen in one line of a terminal, in order, without control sequences.
    static std::vector<std::string> terminalLines(std::string out) {
        for (std::size_t at = 0; (at = out.find("\x1b[K", at)) != std::string::npos;)
            out.erase(at, 3);
        std::replace(out.begin(), out.end(), '\r', '\n');
        std::vector<std::string> found = lines(out);
        std::erase(found, "");
        return found;
    }
};

TEST_F(ProgramOutput, JsonTellsEveryCallbackInOrder) {
    song("a.mp3");
    song("b.m4a");
    const HostEnd end = run({"audio", "--json", "--image", "mix.cue", "b.m4a", "a.mp3"});
    EXPECT_EQ(end.status, 0);
    std::vector<std::string> steps; // without repetitions
    for (const json& object : objects(end.out)) {
        std::string step = object.at("event");
        if (object.contains("track"))
            step += " " + std::to_string(object.at("track").get<int>());
        if (step != "burnProgressDidChanaged" && (steps.empty() || steps.back() != step))
            steps.push_back(step);
    }
    EXPECT_THAT(steps, ElementsAre("addFilesProgressDidStarted", "addFilesProgressDidChanged",
                                   "fileDidAdded", "addFilesProgressDidChanged", "fileDidAdded",
                                   "addFilesProgressDidEnd", "compilation",
                                   "burnProgressDidStarted", "burnProgressIsPreparing",
                                   "burnProgressIsOpeningTrack 1", "burnProgressIsWriteingTrack 1",
                                   "burnProgressDidCloseTrack 1", "burnProgressIsOpeningTrack 2",
                                   "burnProgressIsWriteingTrack 2", "burnProgressDidCloseTrack 2",
                                   "burnProgressDidCloseSession", "burnProgressIsFinishing",
                                   "burnProgressIsVerifying", "burnProgressDidDone", "exit"));
}

TEST_F(ProgramOutput, JsonOfADataDiscCountsBytesAndKnowsNoProtectedFiles) {
    const std::string path = song("a.mp3");
    const auto all = objects(run({"data", "--json", "--keep-going", "--image", "mix.iso", "--title",
                                  "T", path, "none.mp3"})
                                 .out);
    const json& item = all[2].at("item");
    EXPECT_EQ(item.at("itemPath"), path);
    EXPECT_EQ(item.at("itemRealFileSize"), std::filesystem::file_size(path));
    EXPECT_EQ(all[4], (json{{"event", "addFilesProgressDidEnd"},
                            {"incompatible-files", {"none.mp3"}},
                            {"incompatible-file-uris", {uriInFolder("none.mp3")}}}));
    EXPECT_EQ(all[5], (json{{"event", "compilation"},
                            {"items", 1},
                            {"usedCapacity", std::filesystem::file_size(path)},
                            {"overflow", false}}));
    EXPECT_EQ(all.back(), (json{{"event", "exit"}, {"status", 0}}));
}

TEST_F(ProgramOutput, JsonCarriesTheArguments) {
    const std::string path = song("a.mp3");
    const auto all = objects(
        run({"audio", "--json", "--keep-going", "--image", "mix.cue", path, "none.mp3"}).out);
    EXPECT_EQ(
        all[1],
        (json{
            {"event", "addFilesProgressDidChanged"}, {"name", "a.mp3"}, {"index", 1}, {"of", 1}}));
    const json& item = all[2].at("item");
    EXPECT_EQ(item.size(), 8U);
    EXPECT_EQ(item.at("itemPath"), path);
    EXPECT_EQ(item.at("uri"), "file://" + path);
    EXPECT_EQ(item.at("itemRealDuration"), 10);
    EXPECT_EQ(item.at("itemDuration"), "00:00:10");
    EXPECT_EQ(item.at("itemRealFileSize"), std::filesystem::file_size(path));
    EXPECT_EQ(all[3], (json{{"event", "addFilesProgressDidEnd"},
                            {"protected-files", {"none.mp3"}},
                            {"protected-file-uris", {uriInFolder("none.mp3")}},
                            {"incompatible-files", json::array()},
                            {"incompatible-file-uris", json::array()}}));
    EXPECT_EQ(
        all[4],
        (json{{"event", "compilation"}, {"items", 1}, {"usedCapacity", 12}, {"overflow", false}}));
    EXPECT_EQ(all.back(), (json{{"event", "exit"}, {"status", 0}}));
}

TEST_F(ProgramOutput, JsonOfAFailedBurnHasDomainAndCode) {
    song("a.mp3", 20);
    HostSettings small;
    small.wrapper = {"prlimit", "--fsize=2000000"};
    const auto all = objects(run({"audio", "--json", "--image", "mix.cue", "a.mp3"}, small).out);
    ASSERT_GE(all.size(), 2U);
    const json& error = all[all.size() - 2];
    EXPECT_EQ(error.at("event"), "burnProgressDidError");
    EXPECT_EQ(error.at("domain"), "Quarn");
    EXPECT_LT(error.at("code").get<std::int64_t>(), 0);
    EXPECT_EQ(all.back().at("status"), 1);
}

TEST_F(ProgramOutput, NamesOfAllKindsComeThrough) {
    for (const char* const name :
         {"with space.mp3", "\"quoted\" 'name'.mp3", "Größe.mp3", "音楽.mp3", "🎵.mp3",
          "bad\xff\xfe.mp3", "line\nbreak.mp3", "-dash.mp3"})
        song(name, 4);
    const HostEnd end =
        run({"audio", "--json", "--image", "\"mix\" 🎵\xff.cue", "--title", "A \"title\" 🎵", "--",
             "with space.mp3", "\"quoted\" 'name'.mp3", "Größe.mp3", "音楽.mp3", "🎵.mp3",
             "bad\xff\xfe.mp3", "line\nbreak.mp3", "-dash.mp3"});
    EXPECT_EQ(end.status, 0) << end.err;
    std::vector<std::string> paths;
    for (const json& object : objects(end.out))
        if (object.at("event") == "fileDidAdded") {
            paths.push_back(object.at("item").at("itemPath"));
            EXPECT_TRUE(std::filesystem::exists(pathOfUri(object.at("item").at("uri"))));
        }
    EXPECT_THAT(paths, ::testing::UnorderedElementsAre(
                           "with space.mp3", "\"quoted\" 'name'.mp3", "Größe.mp3", "音楽.mp3",
                           "🎵.mp3", "bad\uFFFD\uFFFD.mp3", "line\nbreak.mp3", "-dash.mp3"));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "\"mix\" 🎵\xff.cue"));
}

TEST_F(ProgramOutput, APipeGetsPlainLinesWithoutControlCharacters) {
    song("line\nbreak\x1b[2J.mp3");
    const HostEnd end = run({"audio", "--image", "mix.cue", "line\nbreak\x1b[2J.mp3"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(lines(end.out), Contains(HasSubstr("line\uFFFDbreak\uFFFD[2J.mp3")));
    EXPECT_THAT(lines(end.out), Contains("Writing"));
    EXPECT_EQ(end.out.find_first_of("\x1b\r"), std::string::npos);
}

TEST_F(ProgramOutput, ATerminalShowsAddingTracksUsageAndOneProgressBar) {
    song("a.mp3");
    HostSettings settings;
    settings.terminalColumns = 80;
    const HostEnd end = run({"audio", "--image", "mix.cue", "a.mp3"}, settings);
    EXPECT_EQ(end.status, 0);
    const auto seen = terminalLines(end.out);
    EXPECT_THAT(seen, Contains("Adding 1 of 1: a.mp3"));
    EXPECT_THAT(seen, Contains(StartsWith("  1  a.mp3  ")));
    EXPECT_THAT(seen, Contains(HasSubstr("] 00:00:12 of 01:19:57, 01:19:45 left")));
    EXPECT_THAT(seen, Contains(StartsWith("Writing [")));
    EXPECT_THAT(seen, Contains(StartsWith("Verifying [██████████████████████████████] 100%")));
    EXPECT_EQ(seen.back(), "The disc is burnt and verified.");
}

TEST_F(ProgramOutput, ATerminalsWidthIsRespected) {
    song(std::string(50, 'x') + "音楽音楽音楽音楽.mp3");
    HostSettings settings;
    settings.terminalColumns = 44;
    const HostEnd end = run(
        {"audio", "--image", "mix.cue", std::string(50, 'x') + "音楽音楽音楽音楽.mp3"}, settings);
    EXPECT_EQ(end.status, 0);
    std::vector<std::string> seen = terminalLines(end.out);
    seen.pop_back(); // the sentence at the end may take several lines
    for (const std::string& line : seen)
        EXPECT_LE(cli::displayWidth(line), 44U) << line;
}

TEST_F(ProgramOutput, WithoutUtf8TheBarsAreAscii) {
    song("a.mp3");
    HostSettings settings;
    settings.terminalColumns = 80;
    settings.environment = {"LC_ALL=C", "TERM=xterm"};
    const HostEnd end = run({"audio", "--image", "mix.cue", "a.mp3"}, settings);
    EXPECT_THAT(terminalLines(end.out),
                Contains(HasSubstr("[##############################] 100%")));
    EXPECT_EQ(std::count_if(end.out.begin(), end.out.end(), [](char c) { return c < 0; }), 0);
}

TEST_F(ProgramOutput, DiagnosticsAreShownOnlyOnRequest) {
    song("a.mp3");
    HostSettings debugging;
    debugging.environment.push_back("G_MESSAGES_DEBUG=all");
    const HostEnd silent = run({"audio", "--image", "mix.cue", "a.mp3"}, debugging);
    EXPECT_EQ(silent.err, "");
    EXPECT_THAT(silent.out, Not(HasSubstr("DRStatusState")));
    const HostEnd verbose = run({"audio", "--verbose", "--image", "mix.cue", "a.mp3"});
    EXPECT_THAT(verbose.err, HasSubstr("DRStatusStateTrackWrite -- 1"));
    EXPECT_THAT(verbose.out, Not(HasSubstr("DRStatusState")));
}

} // namespace
} // namespace quarner::testing
