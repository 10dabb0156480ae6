// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/optical/NodeUser.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <functional>
#include <future>
#include <thread>

#include "tests/support/optical/OpticalBed.h"
#include "tests/support/optical/nodes/NodeAccess.h"

namespace quarner {
namespace {

using testing::ElementsAre;

constexpr std::uint8_t testUnitReady = 0;
constexpr std::chrono::seconds longTime(30);

bool becomes(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + longTime;
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

/// A process that a test has started uses the drives of the test.
class NodeUserTest : public testing::Test {
protected:
    FileDescriptor openHere(int flags = O_EXCL) const {
        return FileDescriptor(open(recorder->node().c_str(), O_RDWR | O_NONBLOCK | flags));
    }
    /// Starts a system call and returns when the drive hangs in it.
    void startHanging(const NodeUser& user) const {
        recorder->hang();
        user.startCommand();
        EXPECT_TRUE(becomes([&] { return recorder->isHanging(); }));
    }

    OpticalBed bed;
    std::shared_ptr<EmulatedRecorder> recorder = bed.plug();
};

TEST_F(NodeUserTest, HasTheDriveForItselfUntilItEnds) {
    {
        const NodeUser user(recorder->node());
        ASSERT_EQ(user.opening(), 0);
        EXPECT_EQ(recorder->openCount(), 1);
        EXPECT_FALSE(openHere().isOpen());
        EXPECT_EQ(errno, EBUSY);
        EXPECT_EQ(NodeUser(recorder->node()).opening(), -EBUSY);
        const FileDescriptor shared = openHere(0);
        EXPECT_TRUE(shared.isOpen()) << "not exclusively";
        EXPECT_EQ(recorder->openCount(), 2);
    }
    EXPECT_EQ(recorder->openCount(), 0);
    EXPECT_TRUE(openHere().isOpen());
}

TEST_F(NodeUserTest, DoesNotGetADriveThatIsOpenHere) {
    const FileDescriptor own = openHere();
    EXPECT_EQ(NodeUser(recorder->node()).opening(), -EBUSY);
    EXPECT_EQ(recorder->openCount(), 1);
}

TEST_F(NodeUserTest, FreesTheDriveWhenItIsKilled) {
    NodeUser user(recorder->node());
    user.kill();
    EXPECT_TRUE(becomes([&] { return recorder->openCount() == 0; })) << "before it is waited for";
    EXPECT_TRUE(openHere().isOpen());
    EXPECT_EQ(user.wait(), SIGKILL);
    EXPECT_EQ(NodeUser(recorder->node()).opening(), 0);
}

TEST_F(NodeUserTest, IsRefusedABusyDrive) {
    recorder->setBusy(3);
    EXPECT_EQ(NodeUser(recorder->node()).opening(), -EBUSY);
    EXPECT_FALSE(openHere().isOpen());
    EXPECT_EQ(NodeUser(recorder->node()).opening(), -EBUSY);
    EXPECT_EQ(NodeUser(recorder->node()).opening(), 0);
}

TEST_F(NodeUserTest, IsRefusedADriveWithoutRights) {
    refuseOpening(recorder->node(), EACCES, 1);
    EXPECT_EQ(NodeUser(recorder->node()).opening(), -EACCES);
    EXPECT_EQ(NodeUser(recorder->node()).opening(), 0);
}

TEST_F(NodeUserTest, FindsNoDriveThatIsUnplugged) {
    recorder->unplug();
    EXPECT_EQ(NodeUser(recorder->node()).opening(), -ENOENT);
}

TEST_F(NodeUserTest, LosesADriveThatIsUnplugged) {
    NodeUser user(recorder->node());
    EXPECT_EQ(user.status(), CDS_DISC_OK);
    recorder->unplug();
    EXPECT_EQ(user.status(), -ENODEV);
    EXPECT_EQ(user.sendCommand(), -ENODEV);
    recorder->replug();
    EXPECT_EQ(recorder->openCount(), 1);
    NodeUser next(recorder->node());
    EXPECT_EQ(next.opening(), 0) << "it is a new device";
    EXPECT_EQ(next.status(), CDS_DISC_OK);
    EXPECT_EQ(recorder->openCount(), 2);
}

TEST_F(NodeUserTest, ReachesTheDriveOfItsNode) {
    const auto second = bed.plug({.medium = std::nullopt});
    NodeUser user(recorder->node());
    NodeUser other(second->node());
    EXPECT_EQ(user.status(), CDS_DISC_OK);
    EXPECT_EQ(other.status(), CDS_NO_DISC);
    EXPECT_EQ(user.sendCommand(), 0);
    EXPECT_THAT(recorder->commands(), ElementsAre(testUnitReady));
    EXPECT_THAT(second->commands(), ElementsAre());
    second->insert(Medium::blankCDR());
    EXPECT_EQ(other.status(), CDS_DISC_OK);
}

TEST_F(NodeUserTest, IsNotDelayedByTheCommandsOfAnotherDrive) {
    const auto second = bed.plug();
    NodeUser user(recorder->node());
    NodeUser other(second->node());
    std::promise<void> isExecuted;
    auto executed = isExecuted.get_future();
    std::atomic<std::future_status> end = std::future_status::timeout;
    recorder->setCommandHook([&](std::uint8_t) { end = executed.wait_for(longTime); });
    second->setCommandHook([&](std::uint8_t) { isExecuted.set_value(); });
    user.startCommand();
    EXPECT_EQ(other.sendCommand(), 0);
    EXPECT_EQ(user.answer(), 0);
    EXPECT_EQ(end, std::future_status::ready) << "both at the same time";
}

TEST_F(NodeUserTest, HangsWithItsDriveAlone) {
    const auto second = bed.plug();
    NodeUser user(recorder->node());
    NodeUser other(second->node());
    startHanging(user);
    EXPECT_EQ(other.status(), CDS_DISC_OK);
    EXPECT_EQ(other.sendCommand(), 0);
    recorder->unplug();
    recorder->replug();
    NodeUser next(recorder->node());
    next.startStatus();
    EXPECT_FALSE(next.answersWithin(std::chrono::milliseconds(20)));
    EXPECT_FALSE(user.answersWithin({}));
    EXPECT_TRUE(recorder->isHanging()) << "unplugging does not end it";
    recorder->resume();
    EXPECT_EQ(user.answer(), 0);
    EXPECT_EQ(next.answer(), CDS_DISC_OK);
    EXPECT_FALSE(recorder->isHanging());
}

TEST_F(NodeUserTest, HangsFromACertainCommandOn) {
    NodeUser user(recorder->node());
    recorder->hangAt(testUnitReady);
    EXPECT_EQ(user.status(), CDS_DISC_OK);
    user.startCommand();
    EXPECT_TRUE(becomes([&] { return recorder->isHanging(); }));
    recorder->unplug();
    recorder->resume();
    EXPECT_EQ(user.answer(), -ENODEV);
}

TEST_F(NodeUserTest, DiesWhenItIsKilledWhileItsDriveHangs) {
    NodeUser user(recorder->node());
    startHanging(user);
    user.kill();
    EXPECT_EQ(user.wait(), SIGKILL);
    EXPECT_EQ(recorder->openCount(), 0);
    NodeUser next(recorder->node());
    EXPECT_EQ(next.opening(), 0);
    next.startStatus();
    EXPECT_FALSE(next.answersWithin(std::chrono::milliseconds(20))) << "the drive hangs on";
    recorder->resume();
    EXPECT_EQ(next.answer(), CDS_DISC_OK);
    EXPECT_EQ(next.sendCommand(), 0);
}

TEST_F(NodeUserTest, DoesNotKeepAMachineWhoseDriveHangs) {
    NodeUser user(recorder->node());
    startHanging(user);
    user.kill();
    user.wait();
    // `bed` is destroyed while the drive hangs.
}

} // namespace
} // namespace quarner
