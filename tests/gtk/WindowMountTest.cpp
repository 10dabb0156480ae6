// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/WindowFixture.h"

namespace quarner::testing {
namespace {

/// The disc in the drive is mounted as "Old mix" as long as the file exists.
class WindowMounts : public WindowTest {
protected:
    HostSettings mounting() const {
        HostSettings settings = here();
        settings.environment.emplace_back("GIO_EXTRA_MODULES=" MODULE_FOLDER);
        settings.environment.push_back("QUARNER_MOUNT=" + mount);
        return settings;
    }
    void startWithMountedDisc() {
        start({song("a.mp3", 11)}, mounting());
        find("Drive: QUARNER DISC RECORDER");
        clickWhenReady("Burn", "push button");
        find("Unmount “Old mix”?");
    }

    const std::string mount = folder.file("mounted");
    const std::shared_ptr<EmulatedRecorder> recorder = machine.plug({});
};

TEST_F(WindowMounts, ADiscIsUnmountedAfterAQuestionAndBurntThen) {
    writeContent(mount, "");
    startWithMountedDisc();
    EXPECT_TRUE(std::filesystem::exists(mount));
    find("Unmount", "push button").activate();
    find("The disc is burnt and verified.");
    EXPECT_FALSE(std::filesystem::exists(mount));
    EXPECT_EQ(recorder->writtenDisc()->tracks.size(), 1U);
}

TEST_F(WindowMounts, ADiscIsLeftAloneIfItsUserSaysSo) {
    writeContent(mount, "");
    startWithMountedDisc();
    press("Escape");
    waitUntil([&] { return !isThere("Unmount “Old mix”?"); }, "end of the question");
    EXPECT_TRUE(std::filesystem::exists(mount));
    EXPECT_EQ(recorder->writtenDisc()->state, Medium::State::Blank);
}

TEST_F(WindowMounts, ADiscThatIsInUseIsNotBurnt) {
    std::filesystem::create_directory(mount); // which cannot be removed like a file
    startWithMountedDisc();
    find("Unmount", "push button").activate();
    waitUntil(
        [&] {
            return program()
                .find([](const SeenWidget& one) {
                    return one.name() ==
                               "The disc could not be unmounted: a program reads from it" &&
                           one.isVisible();
                })
                .has_value();
        },
        "reason");
    EXPECT_EQ(recorder->writtenDisc()->state, Medium::State::Blank);
}

TEST_F(WindowMounts, ABlankDiscThatTheDesktopShowsAsAPlaceForFilesIsNotUnmounted) {
    writeContent(mount, "");
    HostSettings settings = mounting();
    settings.environment.emplace_back("QUARNER_MOUNT_ROOT=burn:///");
    start({song("a.mp3", 11)}, settings);
    clickWhenReady("Burn", "push button");
    find("The disc is burnt and verified.");
    EXPECT_TRUE(std::filesystem::exists(mount));
}

} // namespace
} // namespace quarner::testing
