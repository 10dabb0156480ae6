// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/WindowFixture.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

class WindowActions : public WindowTest {
protected:
    /// Starts with a song, and gives the window the keyboard.
    void startWithSong(const HostSettings& settings = {}) {
        start({song("a.mp3")}, settings);
        waitForRows({"a.mp3"});
        click(row("a.mp3"), title);
    }

    /// With it, files in the folder "slow" are not read while the file `gate` exists.
    HostSettings slowAdding() const {
        writeContent(gate, "");
        HostSettings settings = here();
        settings.preloads.emplace_back(FAILING_CALLS);
        settings.environment.emplace_back("QUARNER_FAULT=pread 1 held always /slow/");
        settings.environment.push_back("QUARNER_FAULT_GATE=" + gate);
        return settings;
    }
    /// Stops the adding of files once the window has made room for the button.
    void clickStop() const {
        waitUntil(
            [&] {
                const SeenWidget::Place stop = find("Stop", "push button").place();
                return stop.y + stop.height <=
                       find("Drive: QUARNER DISC RECORDER", "push button").place().y;
            },
            "room");
        click("Stop", "push button");
    }
};

TEST_F(WindowActions, ASecondStartAddsItsFilesToTheOpenWindow) {
    start({song("a.mp3")});
    waitForRows({"a.mp3"});
    HostSettings settings;
    settings.folder = makeFolder("below");
    song("below/b.mp3");
    const HostEnd second = runHost({"b.mp3"}, settings);
    EXPECT_EQ(second.status, 0) << second.err;
    waitForRows({"a.mp3", "b.mp3"});
}

TEST_F(WindowActions, AFileIsAddedByTheDialogueOfTheDesktop) {
    song("b.mp3");
    startWithSong();
    press("ctrl+o");
    enterInDialogue("Add Files", folder.file("b.mp3"));
    waitForRows({"a.mp3", "b.mp3"});
}

TEST_F(WindowActions, AFolderIsAddedByTheDialogueOfTheDesktop) {
    const std::string below = makeFolder("below");
    song("below/b.mp3");
    startWithSong();
    press("ctrl+shift+o");
    enterInDialogue("Add Folder", below);
    waitForRows({"a.mp3", "b.mp3"});
}

TEST_F(WindowActions, TheDiscIsEjected) {
    const auto recorder = machine.plug({});
    startWithSong();
    waitUntil([&] { return find("Burn", "push button").isSensitive(); }, "disc");
    EXPECT_FALSE(recorder->isTrayOpen());
    press("ctrl+e");
    waitUntil([&] { return recorder->isTrayOpen(); }, "open tray");
    find("There is no disc in the drive.\nInsert a blank CD-R or CD-RW.");
}

TEST_F(WindowActions, AddingIsStoppedAndTheListIsUsedFurther) {
    makeFolder("slow");
    constexpr std::size_t slowFiles = 30;
    for (std::size_t i = 0; i < slowFiles; ++i)
        song("slow/" + std::to_string(i) + ".mp3", 1);
    machine.plug({});
    start({song("a.mp3"), "slow"}, slowAdding());
    find("Stop", "push button");
    EXPECT_TRUE(find("Title of the disc", "text").isSensitive()); // somebody may be typing
    clickStop();
    // What comes after the click has been seen, so that has been, too.
    click(row("a.mp3"), title);
    waitUntil([&] { return row("a.mp3").isFocused(); }, "focus");
    std::filesystem::remove(gate);
    waitUntil([&] { return find("Burn", "push button").isSensitive(); }, "end of adding");
    EXPECT_LT(rows().size(), slowFiles);
    EXPECT_EQ(run({song("z.mp3")}).status, 0);
    waitUntil([&] { return rows().back() == "z.mp3"; }, "z.mp3");
}

/// Programs that the window starts, seen through one that writes down how it was started.
class WindowOpens : public WindowActions {
protected:
    /// Burns an image in a folder, and opens that. Returns the lines that the desktop's program for
    /// folders writes down: its argument, and its environment.
    std::vector<std::string> openFolderOfImage(const std::string& images, HostSettings settings) {
        installFolderProgram();
        settings.environment.push_back("XDG_DATA_HOME=" + folder.path().string());
        startWithSong(settings);
        chooseImage(images + "/mix.cue");
        clickWhenReady("Burn", "push button");
        find("The disc is burnt and verified.");
        clickWhenReady("Open Folder", "push button");
        waitUntil([&] { return std::filesystem::exists(written); }, "opened folder");
        return lines(contentOf(written));
    }

private:
    void installFolderProgram() const {
        const std::string script = folder.file("show-folder");
        writeContent(script, "#!/bin/sh\n"
                             "{ echo \"$1\"; env; } >'" +
                                 written +
                                 ".part'\n"
                                 "mv '" +
                                 written + ".part' '" + written + "'\n");
        chmod(script.c_str(), 0700);
        makeFolder("applications");
        writeContent(folder.file("applications/folders.desktop"),
                     "[Desktop Entry]\nType=Application\nName=Folders\nExec=" + script +
                         " %f\nMimeType=inode/directory;\n");
        writeContent(folder.file("applications/mimeapps.list"),
                     "[Default Applications]\ninode/directory=folders.desktop\n");
    }

    const std::string written = folder.file("written");
};

TEST_F(WindowOpens, TheFolderOfTheImageInTheProgramOfTheDesktop) {
    const std::string images = makeFolder("images");
    const std::vector<std::string> opened = openFolderOfImage(images, here());
    EXPECT_EQ(opened.front(), images);
    EXPECT_THAT(opened, Not(Contains(StartsWith("GSK_RENDERER="))));
}

TEST_F(WindowOpens, AFolderWithTheRendererThatItsUserNames) {
    HostSettings settings = here();
    settings.environment.emplace_back("GSK_RENDERER=cairo");
    EXPECT_THAT(openFolderOfImage(makeFolder("images"), settings), Contains("GSK_RENDERER=cairo"));
}

} // namespace
} // namespace quarner::testing
