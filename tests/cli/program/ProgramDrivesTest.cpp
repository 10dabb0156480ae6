// SPDX-License-Identifier: LGPL-2.1-or-later
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <future>
#include <iterator>
#include <thread>
#include <utility>

#include "tests/cli/program/HostFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char name[] = "QUARNER DISC RECORDER";

constexpr std::uint8_t writeCommand = 0x2A; // MMC-6

bool waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

/// The files that a process has in its memory.
std::string mapsOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/maps");
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Makes a recorder keep its first write command until this object goes.
class HangingRecorder {
public:
    explicit HangingRecorder(EmulatedRecorder& recorder) : _recorder(recorder) {
        _recorder.setCommandHook([this](std::uint8_t operation) {
            if (operation != writeCommand || std::exchange(_isWriting, true))
                return;
            _writing.set_value();
            _end.get_future().wait();
        });
    }
    ~HangingRecorder() {
        _recorder.setCommandHook({});
        _end.set_value();
    }
    HangingRecorder(const HangingRecorder&) = delete;
    HangingRecorder& operator=(const HangingRecorder&) = delete;

    void waitForWriting() { _writing.get_future().wait(); }

private:
    EmulatedRecorder& _recorder;
    bool _isWriting = false; // of the thread that executes commands
    std::promise<void> _writing;
    std::promise<void> _end;
};

class ProgramDrives : public HostFixture {
protected:
    /// With somebody at a terminal, to which the output goes too unless a wrapper changes that.
    HostSettings atTerminal(const std::vector<std::string>& wrapper = {}) const {
        HostSettings settings = here();
        settings.terminalColumns = 80;
        settings.isTypedTo = true;
        settings.wrapper = wrapper;
        return settings;
    }

    /// A burn of a song on a drive is asked about, and ends with a no.
    void expectQuestion(const HostSettings& settings, const std::string& typedAhead = {}) {
        song("a.mp3");
        const auto recorder = machine.plug({});
        HostProgram program({"audio", "--title", "Summer mix", "a.mp3"}, settings);
        program.type(typedAhead);
        ASSERT_TRUE(program.waitForOutput("Burn this disc?")) << program.output();
        program.type("no\n");
        const HostEnd end = program.wait();
        EXPECT_EQ(end.status, 130);
        EXPECT_THAT(end.out, HasSubstr("Drive:   QUARNER DISC RECORDER\r\n"));
        EXPECT_THAT(end.out, HasSubstr("Title:   Summer mix\r\n"));
        EXPECT_TRUE(recorder->writtenDisc()->tracks.empty());
    }

    /// The end of a burn on a drive that hangs.
    HostEnd interruptTwiceWhileHanging(const std::string& option) {
        song("a.mp3");
        HangingRecorder recorder(*machine.plug({}));
        HostProgram program({"audio", option, "a.mp3"}, here());
        recorder.waitForWriting();
        program.signal(SIGINT);
        program.signal(SIGTERM); // a second SIGINT could become one with the first
        return program.wait();
    }

    /// The end of a burn of a song on a drive, of which nobody was asked.
    HostEnd burnUnasked(const std::vector<std::string>& options, const HostSettings& settings) {
        song("a.mp3");
        machine.plug({});
        std::vector<std::string> arguments = {"audio", "a.mp3"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const HostEnd end = run(arguments, settings);
        EXPECT_THAT(end.out, Not(HasSubstr("Burn this disc?")));
        return end;
    }
};

TEST_F(ProgramDrives, WithoutAnyTheListIsEmpty) {
    const HostEnd end = run({"drives"});
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out, "");
}

TEST_F(ProgramDrives, AreListedWithTheirDiscs) {
    machine.plug({});
    machine.plug({.medium = {}});
    const HostEnd end = run({"drives", "--json"});
    EXPECT_EQ(end.status, 0);
    const std::vector<std::string> told = lines(end.out);
    ASSERT_EQ(told.size(), 3U);
    EXPECT_THAT(told[0],
                HasSubstr(R"("name":"QUARNER DISC RECORDER","canWriteCD":true,"disc":true)"));
    EXPECT_THAT(told[1], HasSubstr(R"json("name":"QUARNER DISC RECORDER (2)")json"));
    EXPECT_THAT(told[1], HasSubstr(R"("canWriteCD":true,"disc":false)"));
}

TEST_F(ProgramDrives, PutTheirDiscsOut) {
    const auto recorder = machine.plug({});
    EXPECT_EQ(run({"eject"}).status, 0);
    EXPECT_TRUE(recorder->isTrayOpen());
    EXPECT_FALSE(recorder->isTrayLocked());
}

TEST_F(ProgramDrives, AreHeardOfAsTheyComeAndGo) {
    HostProgram program({"watch"}, here());
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
    const HostEnd end = run({"audio", "--drive", name, "a.mp3"});
    ASSERT_EQ(end.status, 0) << end.err;
    ASSERT_EQ(recorder->writtenDisc()->tracks.size(), 1U);
    EXPECT_EQ(recorder->writtenDisc()->tracks[0].length, 750U);
    EXPECT_EQ(run({"audio", "--drive", name, "a.mp3"}).status, 1); // it is written now
}

TEST_F(ProgramDrives, AreLetGoWhereverInABurnTheProgramIsKilled) {
    constexpr std::array<std::uint8_t, 6> operations = {
        0x00, 0xA1, 0x5D, writeCommand, 0x35, 0xBE}; // MMC-6: from asking for the disc to reading
    song("a.mp3");
    Medium written = Medium::dataCD(1000);
    written.kind = Medium::Kind::CDRW;
    const auto recorder = machine.plug({});
    const std::vector<std::string> command = {"audio", "--yes", "a.mp3"};
    for (const std::uint8_t wanted : operations) {
        SCOPED_TRACE(int(wanted));
        recorder->insert(written);
        HostProgram program(command, here());
        std::atomic<bool> isKilled = false;
        recorder->setCommandHook([&](std::uint8_t operation) {
            if (operation == wanted && !isKilled.exchange(true))
                program.signal(SIGKILL);
        });
        EXPECT_EQ(program.wait().status, 128 + SIGKILL);
        recorder->setCommandHook({});
        EXPECT_TRUE(waitUntil([&] { return recorder->isReleased(); }));
    }
    recorder->insert(written);
    EXPECT_EQ(run(command).status, 0);
}

TEST_F(ProgramDrives, AreLetGoAlsoIfTheProgramIsKilledWhileTheyBlankForLong) {
    song("a.mp3");
    Medium written = Medium::dataCD(1000);
    written.kind = Medium::Kind::CDRW;
    UnitFaults faults;
    faults.blankingSteps = 1'000'000;
    const auto recorder = machine.plug({.medium = written, .faults = faults});
    HostProgram program({"audio", "--yes", "a.mp3"}, here());
    bool isBlanking = false;
    bool isKilled = false;
    recorder->setCommandHook([&](std::uint8_t operation) {
        constexpr std::uint8_t blank = 0xA1; // MMC-6
        if (isBlanking && !std::exchange(isKilled, true))
            program.signal(SIGKILL);
        isBlanking = isBlanking || operation == blank;
    });
    EXPECT_EQ(program.wait().status, 128 + SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return recorder->isReleased(); }));
    recorder->setCommandHook({});
}

TEST_F(ProgramDrives, BringNoLibraryOfTheirsIntoTheProgram) {
    song("a.mp3");
    const auto recorder = machine.plug({});
    HostProgram program({"data", "--title", "Mix", "--yes", "a.mp3"}, here());
    std::promise<std::string> maps;
    auto isRead = std::make_shared<std::atomic<bool>>(false);
    recorder->setCommandHook([&](std::uint8_t operation) {
        if (operation == writeCommand && !isRead->exchange(true))
            maps.set_value(mapsOf(program.process()));
    });
    const HostEnd end = program.wait();
    ASSERT_EQ(end.status, 0) << end.err;
    const std::string found = maps.get_future().get();
    EXPECT_THAT(found, HasSubstr("libquarner-desktop"));
    EXPECT_THAT(found, Not(HasSubstr("libburn")));
    EXPECT_THAT(found, Not(HasSubstr("libisofs")));
}

TEST_F(ProgramDrives, ThatHangDoNotKeepTheProgramFromEndingWithAMessage) {
    const HostEnd end = interruptTwiceWhileHanging("--yes");
    EXPECT_EQ(end.status, 130);
    EXPECT_THAT(end.err, StartsWith("quarner: "));
}

TEST_F(ProgramDrives, ThatHangDoNotKeepTheExitLineFromPrograms) {
    const HostEnd end = interruptTwiceWhileHanging("--json");
    EXPECT_EQ(end.status, 130);
    EXPECT_EQ(lines(end.out).back(), R"({"event":"exit","status":130})");
}

TEST_F(ProgramDrives, HoldACompleteDiscAfterACtrlCWhileVerifying) {
    song("a.mp3");
    const auto recorder = machine.plug({.delay = std::chrono::milliseconds(1)});
    HostProgram program({"audio", "--drive", name, "--json", "a.mp3"}, here());
    ASSERT_TRUE(program.waitForOutput("burnProgressIsVerifying"));
    recorder->setDelay(std::chrono::milliseconds(50));
    program.signal(SIGINT);
    const HostEnd end = program.wait();
    EXPECT_EQ(end.status, 130);
    EXPECT_EQ(recorder->writtenDisc()->state, Medium::State::Closed);
}

TEST_F(ProgramDrives, AskSomebodyAtATerminal) { expectQuestion(atTerminal()); }

TEST_F(ProgramDrives, TakeNoAnswerThatWasTypedBeforeTheQuestion) {
    expectQuestion(atTerminal(), "y\n");
}

TEST_F(ProgramDrives, AskAlsoSomebodyWhoDoesNotSeeTheErrors) {
    expectQuestion(atTerminal({"sh", "-c", "exec \"$@\" 2>errors", "sh"}));
}

TEST_F(ProgramDrives, AskAlsoSomebodyWhoSeesNoOutput) {
    expectQuestion(
        atTerminal({"setsid", "--ctty", "sh", "-c", "exec \"$@\" >output 2>errors", "sh"}));
}

TEST_F(ProgramDrives, AreNotWrittenToWhereAQuestionWouldNotBeSeen) {
    const HostEnd end =
        burnUnasked({}, atTerminal({"setsid", "sh", "-c", "exec \"$@\" >output 2>errors", "sh"}));
    EXPECT_EQ(end.status, 2);
    EXPECT_THAT(contentOf(folder.file("errors")), StartsWith("quarner: "));
}

TEST_F(ProgramDrives, AskNobodyWhoCannotType) {
    HostSettings output = here();
    output.terminalColumns = 80;
    EXPECT_EQ(burnUnasked({}, output).status, 0);
}

TEST_F(ProgramDrives, AskNoProgram) { EXPECT_EQ(burnUnasked({"--json"}, atTerminal()).status, 0); }

TEST_F(ProgramDrives, WithoutADeviceNodeAreSaidToHaveNone) {
    machine.plug({});
    std::filesystem::remove(machineRoot() / "dev/sr0");
    if (std::filesystem::exists("/dev/sr0"))
        GTEST_SKIP() << "a drive of this machine has the node that is to be missing";
    const std::string reason = "the drive has no device node /dev/sr0";
    EXPECT_THAT(run({"drives", "--json"}).out, HasSubstr(R"("accessProblem":")" + reason));
    const HostEnd disc = run({"disc"});
    EXPECT_EQ(disc.status, 2);
    EXPECT_THAT(disc.err, HasSubstr(reason));
    const HostEnd eject = run({"eject"});
    EXPECT_EQ(eject.status, 1);
    EXPECT_THAT(eject.err, HasSubstr(reason));
    song("a.mp3");
    const HostEnd burn = run({"audio", "a.mp3"});
    EXPECT_EQ(burn.status, 2);
    EXPECT_THAT(burn.err, HasSubstr(reason));
    HostProgram watching({"watch"}, here());
    EXPECT_TRUE(watching.waitForOutput(reason));
}

TEST_F(ProgramDrives, ThatAUserMayNotOpenAreListedWithTheMissingGroup) {
    const group* const cdrom = getgrnam("cdrom");
    if (geteuid() != 0 || cdrom == nullptr)
        GTEST_SKIP() << "only root can become another user, and only Debian has the group";
    machine.plug({});
    const std::string node = machineRoot() / "dev/sr0";
    ASSERT_EQ(chown(node.c_str(), 0, cdrom->gr_gid), 0);
    ASSERT_EQ(chmod(node.c_str(), 0660), 0);
    // Later versions of umockdev handle the calls on every node through sockets.
    for (const auto& socket :
         std::filesystem::recursive_directory_iterator(machineRoot() / "ioctl"))
        std::filesystem::permissions(socket, std::filesystem::perms::all);
    HostSettings nobody = here();
    nobody.wrapper = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    const HostEnd end = run({"drives", "--json"}, nobody);
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_THAT(end.out, HasSubstr(R"("accessProblem":"/dev/sr0 may be opened only by members of )"
                                   "the group cdrom"));
    EXPECT_EQ(run({"disc"}, nobody).status, 2);
}

} // namespace
} // namespace quarner::testing
