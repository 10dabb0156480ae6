// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/AccessProblem.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/optical/OpticalBed.h"
#include "tests/support/optical/nodes/NodeAccess.h"

namespace quarner {
namespace {

constexpr gid_t groupOfOthers = 24; // not the one that the tests' user gets
constexpr uid_t nobody = 65534;
constexpr char advice[] = "; an administrator can change that, then log in again";

/// Returns a function's result in a child process of a user without any rights who is a member of
/// one group.
std::string asNobody(gid_t group, const std::function<std::string()>& function) {
    std::array<int, 2> ends = {};
    if (pipe(ends.data()) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        const bool isNobody = setgroups(1, &group) == 0 && setresgid(nobody, nobody, nobody) == 0 &&
                              setresuid(nobody, nobody, nobody) == 0;
        const std::string answer = isNobody ? function() : "still somebody";
        const bool isWritten = write(ends[1], answer.data(), answer.size()) >= 0;
        _exit(isWritten ? 0 : 1);
    }
    close(ends[1]);
    std::array<char, 1000> answer = {};
    const ssize_t size = read(ends[0], answer.data(), answer.size());
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return {answer.data(), std::size_t(std::max<ssize_t>(0, size))};
}

class AccessProblem : public testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0)
            GTEST_SKIP() << "only root can become another user";
        chmod(folder.path().c_str(), 0755);
        if (chown(node.c_str(), 0, groupOfOthers) != 0)
            GTEST_SKIP() << "no file of another group here";
    }
    /// The problem of a user with a node of this mode; "none" if there is none.
    std::string problem(mode_t mode, gid_t group) {
        chmod(node.c_str(), mode);
        return asNobody(group, [&] { return accessProblem(node).value_or("none"); });
    }

    TemporaryFolder folder;
    const std::string node = folder.write("node");
};

TEST_F(AccessProblem, IsNoneWhereTheNodeMayBeReadAndWritten) {
    EXPECT_EQ(problem(0666, nobody), "none");
    EXPECT_EQ(problem(0660, groupOfOthers), "none");
}

TEST_F(AccessProblem, NamesTheGroupThatIsMissing) {
    const group* const entry = getgrgid(groupOfOthers);
    const std::string name = entry ? entry->gr_name : std::to_string(groupOfOthers);
    EXPECT_EQ(problem(0660, nobody),
              node + " may be opened only by members of the group " + name + advice);
}

TEST_F(AccessProblem, NamesThePermissionThatIsMissing) {
    const std::string text =
        node + " may not be opened for reading and writing: Permission denied" + advice;
    EXPECT_EQ(problem(0640, groupOfOthers), text);
    EXPECT_EQ(problem(0644, nobody), text);
    EXPECT_EQ(problem(0600, groupOfOthers), text);
    ASSERT_EQ(chown(node.c_str(), nobody, groupOfOthers), 0);
    EXPECT_EQ(problem(0060, groupOfOthers), text) << "a member, but the owner has no rights";
}

/// Problems with opening a drive that do not depend on its node's mode.
class DriveProblem : public testing::Test {
protected:
    /// The problem while the next attempts to open the drive fail.
    std::string problem(int error, unsigned times) {
        refuseOpening(recorder->node(), error, times);
        const std::string found = accessProblem(recorder->node()).value_or("none");
        refuseOpening(recorder->node(), 0, 0);
        return found;
    }

    OpticalBed bed;
    std::shared_ptr<EmulatedRecorder> recorder = bed.plug();
};

TEST_F(DriveProblem, IsNoneOfADriveThatOpensAndItIsClosedAgain) {
    EXPECT_EQ(accessProblem(recorder->node()), std::nullopt);
    EXPECT_EQ(recorder->openCount(), 0);
    EXPECT_TRUE(recorder->commands().empty());
}

TEST_F(DriveProblem, IsAnotherProgramThatStays) {
    EXPECT_EQ(problem(EBUSY, 5), "none") << "busy for a moment";
    const std::string text = "/dev/sr0 is in use by another program; its disc may be mounted";
    EXPECT_EQ(problem(EBUSY, 100), text);
    const int other = open("/dev/sr0", O_RDWR | O_NONBLOCK | O_EXCL | O_CLOEXEC);
    EXPECT_EQ(accessProblem("/dev/sr0"), text);
    close(other);
}

TEST_F(DriveProblem, IsASystemThatForbidsIt) {
    EXPECT_EQ(problem(EPERM, 100), "the system forbids opening /dev/sr0; in a container, the drive "
                                   "has to be passed through");
}

TEST_F(DriveProblem, IsANodeThatIsMissing) {
    recorder->unplug();
    EXPECT_EQ(accessProblem("/dev/sr0"), "the drive has no device node /dev/sr0; in a container, "
                                         "the drive has to be passed through");
}

TEST_F(DriveProblem, IsToldInTheSystemsWordsOtherwise) {
    EXPECT_EQ(problem(ENXIO, 100), "/dev/sr0 cannot be opened: No such device or address");
}

} // namespace
} // namespace quarner
