// SPDX-License-Identifier: LGPL-2.1-or-later
#include <regex>

#include "tests/cli/program/HostFixture.h"
#include "tools/quarner/text/Columns.h"

namespace quarner::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

/// The program in the languages that it is translated into.
class ProgramLanguage : public HostFixture {
protected:
    static HostSettings in(const std::string& locale) {
        HostSettings settings;
        settings.environment = {"LOCPATH=" TEST_LOCALES, "LANGUAGE=", "LC_ALL=" + locale,
                                "TERM=xterm"};
        return settings;
    }
    HostEnd runInGerman(const std::vector<std::string>& arguments) const {
        return run(arguments, in("de_DE.UTF-8"));
    }

    /// The lines with an English word. What a user types is no word: options, commands, files.
    static std::vector<std::string> english(const std::string& text) {
        static const std::regex name("--[a-z-]+|quarner [a-z]+|\\bFILE\\b|one\\.mp3|\"[^\"]*\"");
        static const std::regex word(
            "\\b(the|of|is|are|and|or|with|not|to|be|it|if|no|one|file|files|disc's|drive|track|"
            "tracks|written|cancelled|burn|burnt|burned|left|failed|adding|writing|free|exit|"
            "options|usage|missing|required|example)\\b",
            std::regex::icase);
        std::vector<std::string> found;
        for (const std::string& line : lines(text))
            if (std::regex_search(std::regex_replace(line, name, ""), word))
                found.push_back(line);
        return found;
    }

    /// The lines behind the options of a help text that take too many columns.
    static std::vector<std::string> wideLines(const std::string& help) {
        std::vector<std::string> found = lines(help.substr(help.rfind("\n\n")));
        std::erase_if(found, [](const auto& line) { return cli::displayWidth(line) <= 87; });
        return found;
    }
};

TEST_F(ProgramLanguage, EveryHelpIsInGerman) {
    for (const std::string command : {"", "audio", "data", "drives", "disc", "eject", "watch"}) {
        std::vector<std::string> arguments = {command, "--help"};
        std::erase(arguments, "");
        const std::string help = runInGerman(arguments).out;
        EXPECT_THAT(help, HasSubstr("\nAufruf: quarner " + command));
        EXPECT_THAT(help, AllOf(HasSubstr("\nOptionen:\n"), HasSubstr("\nBeispiel:\n")));
        EXPECT_THAT(wideLines(help), IsEmpty());
        EXPECT_THAT(english(help), IsEmpty());
    }
}

TEST_F(ProgramLanguage, EveryHelpIsInFrench) {
    for (const std::string command : {"", "audio", "data", "drives", "disc", "eject", "watch"}) {
        std::vector<std::string> arguments = {command, "--help"};
        std::erase(arguments, "");
        const std::string help = run(arguments, in("fr_FR.UTF-8")).out;
        EXPECT_THAT(help, HasSubstr("\nUtilisation\u00A0: quarner " + command));
        EXPECT_THAT(wideLines(help), IsEmpty());
    }
}

TEST_F(ProgramLanguage, WhatIsWrongWithACommandLineIsSaidInGerman) {
    const std::vector<std::string> commandLines[] = {
        {},
        {"laufwerk"},
        {"audio"},
        {"audio", "--imag", "x"},
        {"--json", "drives"},
        {"audio", "--image"},
        {"audio", "--image", "x.iso", "a"},
        {"audio", "--image", "x.cue", "--drive", "x", "a"},
        {"audio", "--capacity", "74", "a"},
        {"audio", "--capacity", "75", "--image", "x.cue", "a"},
        {"audio", "a", "--title", "x", "--title", "y"},
        {"audio", "--sort=x", "a"},
        {"data", "a"},
        {"eject", "a"},
        {"disc"},
        {"disc", "--drive", "x"},
        {"disc", "--image", "x"},
    };
    for (const std::vector<std::string>& commandLine : commandLines) {
        const HostEnd end = runInGerman(commandLine);
        EXPECT_EQ(end.status, 2);
        EXPECT_THAT(end.err, StartsWith("quarner: "));
        EXPECT_THAT(english(end.err), IsEmpty());
    }
}

TEST_F(ProgramLanguage, WhatTheSystemRefusesIsSaidInGerman) {
    song("a.mp3");
    const std::string tooLong = std::string(300, 'x') + ".cue";
    const HostEnd end = runInGerman({"audio", "--image", tooLong, "a.mp3"});
    EXPECT_EQ(end.status, 2);
    // The reason is the system's, whose translations may not be installed.
    EXPECT_THAT(end.err, AllOf(StartsWith("quarner: Das Schreiben ist fehlgeschlagen.\n"),
                               HasSubstr("\nPrüfen von /")));
}

TEST_F(ProgramLanguage, ABurnIsInGermanFromStartToEnd) {
    song("a.mp3");
    song("b.m4a");
    const HostEnd end =
        runInGerman({"audio", "--keep-going", "--image", "mix.cue", "a.mp3", "b.m4a", "fehlt.mp3"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(lines(end.err), Contains(StartsWith("quarner: „fehlt.mp3“ existiert nicht.")));
    const std::vector<std::string> out = lines(end.out);
    EXPECT_THAT(out, Contains("Hinzufügen 2 von 2: b.m4a"));
    EXPECT_THAT(out, Contains(HasSubstr("2 Titel mit Pausen")));
    EXPECT_THAT(out, Contains(HasSubstr("00:00:24 von 01:19:57, 01:19:33 frei")));
    EXPECT_THAT(out, Contains(StartsWith("Schreiben von Titel 2 von 2")));
    EXPECT_THAT(out, Contains(StartsWith("Überprüfen")));
    EXPECT_EQ(out.back(), "Die Disc ist gebrannt und überprüft.");
    EXPECT_THAT(english(end.out + end.err), IsEmpty());
}

TEST_F(ProgramLanguage, TheDiscOfAnImageIsDescribedInGerman) {
    song("a.mp3");
    EXPECT_EQ(runInGerman({"audio", "--image", "mix.cue", "a.mp3"}).status, 0);
    const HostEnd end = runInGerman({"disc", "--image", "mix.cue"});
    EXPECT_THAT(lines(end.out), Contains("Disc:      CD-R, beschrieben"));
    EXPECT_THAT(lines(end.out), Contains(StartsWith("Belegt:    00:00:10, ")));
    EXPECT_THAT(english(end.out), IsEmpty());
}

TEST_F(ProgramLanguage, ProgramsReadTheSameNamesInEveryLanguage) {
    song("a.mp3");
    const HostEnd end = runInGerman({"audio", "--json", "--image", "mix.cue", "a.mp3"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.out, HasSubstr(R"({"event":"burnEnded","outcome":"done","text":"Die Disc)"));
    EXPECT_THAT(lines(end.out).back(), R"({"event":"exit","status":0})");
}

TEST_F(ProgramLanguage, IsEnglishWhereThereIsNoTranslation) {
    for (const char* const locale : {"sv_SE.UTF-8", "C"}) {
        const std::string help = run({"--help"}, in(locale)).out;
        EXPECT_THAT(help, HasSubstr("\nUsage: quarner "));
        EXPECT_THAT(english(help), Not(IsEmpty())); // what the other tests look for
    }
}

} // namespace
} // namespace quarner::testing
