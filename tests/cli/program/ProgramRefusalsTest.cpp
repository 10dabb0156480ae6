// SPDX-License-Identifier: LGPL-2.1-or-later
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <nlohmann/json.hpp>

#include "tests/cli/program/EveryKind.h"

namespace quarner::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// The reasons for which real files are refused.
class ProgramRefusals : public EveryKind {
protected:
    ProgramRefusals() {
        chmod(folder.path().c_str(), 0777); // for another user and its image
        song("good.mp3");
    }

    /// For a user whom permissions concern.
    HostSettings asOrdinaryUser() const {
        HostSettings settings;
        if (geteuid() == 0)
            settings.wrapper = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
        return settings;
    }

    /// Adds a file beside a good one, and returns the reasons for which it is refused.
    std::vector<std::string> reasons(const std::string& name, const HostSettings& settings = {}) {
        const HostEnd end = burn({"--dry-run", "--json", "good.mp3", name}, settings);
        EXPECT_EQ(end.status, 3) << name;
        std::vector<std::string> found;
        for (const std::string& line : lines(end.out)) {
            const json object = json::parse(line);
            if (object.at("event") != "fileRefused")
                continue;
            found.push_back(object.at("reason"));
            EXPECT_EQ(object.at("path"), name);
            EXPECT_TRUE(object.at("uri").get<std::string>().ends_with(name));
            EXPECT_THAT(object.at("text").get<std::string>(), HasSubstr("\"" + name + "\" "));
            EXPECT_THAT(end.err, HasSubstr(object.at("text").get<std::string>()));
        }
        return found;
    }
};

TEST_P(ProgramRefusals, AFileThatIsMissing) {
    EXPECT_THAT(reasons("none.mp3"), ElementsAre("missing"));
    std::filesystem::create_symlink("none.mp3", folder.file("link.mp3"));
    EXPECT_THAT(reasons("link.mp3"), ElementsAre("missing"));
}

TEST_P(ProgramRefusals, AFileThatMayNotBeRead) {
    chmod(song("secret.mp3").c_str(), 0);
    const HostSettings user = asOrdinaryUser();
    if (run({"--version"}, user).status != 0)
        GTEST_SKIP() << "the program cannot be run by another user from here";
    EXPECT_THAT(reasons("secret.mp3", user), ElementsAre("unreadable"));
}

TEST_P(ProgramRefusals, WhatIsNoFile) {
    makeFolder("album");
    EXPECT_THAT(reasons("album"), ElementsAre("not-a-file"));
    makeFolder("album.mp3");
    EXPECT_THAT(reasons("album.mp3"), ElementsAre("not-a-file"));
    ASSERT_EQ(mkfifo(folder.file("pipe.mp3").c_str(), 0644), 0);
    EXPECT_THAT(reasons("pipe.mp3"), ElementsAre("not-a-file"));
}

TEST_P(ProgramRefusals, AFileOfAnotherType) {
    folder.write("text.txt", "x");
    EXPECT_THAT(reasons("text.txt"), ElementsAre("unsupported-type"));
}

TEST_P(ProgramRefusals, AFileThatIsProtected) {
    folder.write("song.m4p", "x");
    EXPECT_THAT(reasons("song.m4p"), ElementsAre(isData() ? "unsupported-type" : "protected"));
}

TEST_P(ProgramRefusals, AFileWithoutSound) {
    folder.write("text.mp3", "no sound");
    EXPECT_THAT(reasons("text.mp3"), ElementsAre("no-sound"));
    folder.write("empty.m4a");
    EXPECT_THAT(reasons("empty.m4a"), ElementsAre("no-sound"));
}

TEST_P(ProgramRefusals, AFileThatIsShorterThanASecond) {
    AudioRecipe instant = mp3Recipe();
    instant.samples = 22050;
    std::filesystem::copy_file(audioFixture(instant), folder.file("short.mp3"));
    EXPECT_THAT(reasons("short.mp3"), ElementsAre("too-short"));
}

TEST_P(ProgramRefusals, AFileOfWhichTooMuchIsDamaged) {
    const std::string sound = contentOf(audioFixture(untaggedMP3Recipe()));
    folder.write("damaged.mp3", sound + std::string(17U << 20, '\x55') + sound);
    EXPECT_THAT(reasons("damaged.mp3"), ElementsAre("damaged"));
}

TEST_P(ProgramRefusals, OfSeveralFilesAreEachToldAndTheRestCanBeBurnt) {
    folder.write("text.mp3", "no sound");
    folder.write("text.txt", "x");
    const std::vector<std::string> files = {"none.mp3", "text.mp3", "good.mp3", "text.txt"};
    std::vector<std::string> arguments = {"--json", "--keep-going"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    const HostEnd end = burn(arguments);
    EXPECT_EQ(end.status, 0) << end.err;
    std::map<std::string, std::string> refused;
    for (const std::string& line : lines(end.out)) {
        const json object = json::parse(line);
        if (object.at("event") == "fileRefused")
            refused[object.at("path")] = object.at("reason");
    }
    EXPECT_EQ(refused, (std::map<std::string, std::string>{{"none.mp3", "missing"},
                                                           {"text.mp3", "no-sound"},
                                                           {"text.txt", "unsupported-type"}}));
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, ProgramRefusals,
                         ::testing::Values(cli::DiscKind::Audio, cli::DiscKind::Data), kindName);

} // namespace
} // namespace quarner::testing
