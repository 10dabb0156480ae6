// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Not tests: they make the pictures of the window for scripts/screenshots.
#include <cstdlib>
#include <thread>

#include "tests/gtk/WindowFixture.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

class WindowPictures : public WindowTest {
protected:
    struct Tune {
        std::string title;
        std::string artist;
        unsigned seconds;
    };

    /// Five tunes with tags.
    std::vector<std::string> tunes() const {
        const std::vector<Tune> wanted = {{"Morning Ferry", "Lena Holm", 214},
                                          {"Two Rooms", "The Copper Pots", 187},
                                          {"Slow Signal", "The Copper Pots", 251},
                                          {"Harbour Lights", "Lena Holm", 305},
                                          {"Last Train Home", "Akin Oduya", 276}};
        std::vector<std::string> paths;
        for (const Tune& tune : wanted) {
            paths.push_back(folder.file(tune.title + ".mp3"));
            const std::string sound = "anullsrc=d=" + std::to_string(tune.seconds);
            EXPECT_EQ(runProgram({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", sound, "-metadata",
                                  "title=" + tune.title, "-metadata", "artist=" + tune.artist,
                                  "-b:a", "64k", paths.back()})
                          .status,
                      0);
        }
        return paths;
    }
    void take(const std::string& name) const {
        std::this_thread::sleep_for(std::chrono::seconds(1)); // until all animations have ended
        const std::string path = std::string(std::getenv("QUARNER_PICTURES")) + "/" + name + ".png";
        const ProgramResult result = runProgram({"import", "-window", title, path});
        EXPECT_EQ(result.status, 0) << result.output;
    }
    void startIn(const std::vector<std::string>& arguments, const std::string& theme) {
        HostSettings settings = here();
        settings.environment.push_back("GTK_THEME=" + theme);
        start(arguments, settings);
    }
};

TEST_F(WindowPictures, Light) {
    const auto recorder = machine.plug({});
    startIn(tunes(), "Adwaita");
    waitUntil([&] { return rows().size() == 5; }, "rows");
    find("Drive: QUARNER DISC RECORDER");
    waitUntil([&] { return find("Burn", "push button").isSensitive(); }, "disc");
    take("window");
}

TEST_F(WindowPictures, Dark) {
    const auto recorder = machine.plug({});
    startIn(tunes(), "Adwaita:dark");
    waitUntil([&] { return find("Burn", "push button").isSensitive(); }, "disc");
    take("window-dark");
}

TEST_F(WindowPictures, Empty) {
    startIn({}, "Adwaita");
    take("window-empty");
}

TEST_F(WindowPictures, Burning) {
    const auto recorder = machine.plug({.delay = std::chrono::milliseconds(2)});
    startIn(tunes(), "Adwaita");
    clickWhenReady("Burn", "push button");
    waitUntil(
        [&] {
            return program()
                .find([](const SeenWidget& one) {
                    return one.role() == "progress bar" &&
                           one.name().starts_with("Writing track 2");
                })
                .has_value();
        },
        "second track");
    take("window-burning");
}

TEST_F(WindowPictures, Refusals) {
    // The picture shows its path.
    const std::filesystem::path music = "/tmp/Music";
    ASSERT_TRUE(std::filesystem::create_directory(music));
    auto files = tunes();
    for (const char* const name : {"notes.txt", "empty.mp3"}) {
        files.push_back(music / name);
        writeContent(files.back(), "");
    }
    startIn(files, "Adwaita");
    click("2 files were not added");
    take("window-refusals");
    std::filesystem::remove_all(music);
}

TEST_F(WindowPictures, Narrow) {
    machine.plug({});
    HostSettings settings = here();
    settings.environment = {"LC_ALL=C.UTF-8", "LANGUAGE=de"};
    title = "Disc brennen";
    start(tunes(), settings);
    resize(360, 640);
    take("window-narrow");
}

} // namespace
} // namespace quarner::testing
