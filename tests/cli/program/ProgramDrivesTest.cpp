// SPDX-License-Identifier: LGPL-2.1-or-later
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "tests/cli/program/HostFixture.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr char name[] = "QUARNER DISC RECORDER";

/// On a machine whose only drives are those of the test.
class ProgramDrives : public HostFixture {
protected:
    HostSettings onMachine() const {
        HostSettings settings = here();
        settings.environment.insert(
            settings.environment.end(),
            {"LD_PRELOAD=libumockdev-preload.so.0", "ASAN_OPTIONS=verify_asan_link_order=0"});
        return settings;
    }
    HostEnd runOnMachine(const std::vector<std::string>& arguments) const {
        return run(arguments, onMachine());
    }

    OpticalBed machine;
};

TEST_F(ProgramDrives, WithoutAnyTheListIsEmptyAndTheWayToAnImageTold) {
    const HostEnd end = runOnMachine({"drives"});
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(end.err, "quarner: there is no drive; quarner audio --image FILE.cue makes an image "
                       "without one\n");
}

TEST_F(ProgramDrives, AreListedWithTheirDiscs) {
    machine.plug({});
    machine.plug({.medium = {}});
    const HostEnd end = runOnMachine({"drives"});
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(lines(end.out),
                ElementsAre("QUARNER DISC RECORDER: writes CDs; CD-R, blank, 01:19:57 free",
                            "QUARNER DISC RECORDER (2): writes CDs; no disc"));
}

TEST_F(ProgramDrives, PutTheirDiscsOut) {
    const auto recorder = machine.plug({});
    EXPECT_EQ(runOnMachine({"eject"}).out, "Ejected: QUARNER DISC RECORDER\n");
    EXPECT_TRUE(recorder->isTrayOpen());
    EXPECT_FALSE(recorder->isTrayLocked());
}

TEST_F(ProgramDrives, AreHeardOfAsTheyComeAndGo) {
    HostProgram program({"watch"}, onMachine());
    ASSERT_TRUE(program.waitForOutput("There is no drive yet."));
    const auto recorder = machine.plug({.medium = {}});
    EXPECT_TRUE(program.waitForOutput("QUARNER DISC RECORDER: appeared"));
    recorder->insert(Medium::blankCDRW());
    EXPECT_TRUE(program.waitForOutput("QUARNER DISC RECORDER: CD-RW, "));
    recorder->unplug();
    EXPECT_TRUE(program.waitForOutput("QUARNER DISC RECORDER: disappeared"));
    program.signal(SIGINT);
    const HostEnd end = program.wait();
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(lines(end.out),
                ElementsAre("There is no drive yet.", "QUARNER DISC RECORDER: appeared",
                            "QUARNER DISC RECORDER: CD-RW, blank, can be erased, 01:19:57 free",
                            "QUARNER DISC RECORDER: disappeared"));
}

TEST_F(ProgramDrives, TakeAnAudioCD) {
    song("a.mp3");
    const auto recorder = machine.plug({});
    const HostEnd end = runOnMachine({"audio", "--drive", name, "a.mp3"});
    ASSERT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(lines(end.out).back(),
              "Burnt and verified: 1 track, 00:00:12, on QUARNER DISC RECORDER");
    ASSERT_EQ(recorder->writtenDisc()->tracks.size(), 1U);
    EXPECT_EQ(recorder->writtenDisc()->tracks[0].length, 750U);
    EXPECT_EQ(runOnMachine({"audio", "--drive", name, "a.mp3"}).status, 1); // it is written now
}

TEST_F(ProgramDrives, AskSomebodyOnATerminalOnce) {
    song("a.mp3");
    const auto recorder = machine.plug({});
    HostSettings terminal = onMachine();
    terminal.terminalColumns = 80;
    terminal.isTypedTo = true;
    HostProgram program({"audio", "--title", "Summer mix", "a.mp3"}, terminal);
    ASSERT_TRUE(program.waitForOutput("Burn this disc?"));
    program.type("no\n");
    const HostEnd end = program.wait();
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(end.out, HasSubstr("Drive:   QUARNER DISC RECORDER\r\n"));
    EXPECT_THAT(end.out, HasSubstr("Title:   Summer mix\r\n"));
    EXPECT_TRUE(recorder->writtenDisc()->tracks.empty());
}

TEST_F(ProgramDrives, ThatAUserMayNotOpenAreListedWithTheMissingGroup) {
    const group* const cdrom = getgrnam("cdrom");
    if (geteuid() != 0 || cdrom == nullptr)
        GTEST_SKIP() << "only root can become another user, and only Debian has the group";
    machine.plug({});
    const std::filesystem::path root = std::getenv("UMOCKDEV_DIR");
    ASSERT_EQ(chmod(root.c_str(), 0755), 0);
    ASSERT_EQ(chown((root / "dev/sr0").c_str(), 0, cdrom->gr_gid), 0);
    ASSERT_EQ(chmod((root / "dev/sr0").c_str(), 0660), 0);
    HostSettings nobody = onMachine();
    nobody.wrapper = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    const HostEnd end = run({"drives"}, nobody);
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.out, HasSubstr("QUARNER DISC RECORDER: writes CDs; /dev/sr0 may be opened only "
                                   "by members of the group cdrom"));
    EXPECT_EQ(run({"disc"}, nobody).status, 2);
}

} // namespace
} // namespace quarner::testing
