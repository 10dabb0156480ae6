// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <array>
#include <cstring>

#include "adapters/posix/FileStamps.h"
#include "adapters/posix/RegularFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Watchdog.h"

namespace quarner {
namespace {

/// Every test ends in time, or is ended by the watchdog.
class RegularFiles : public testing::Test {
protected:
    std::string problemOf(const std::string& path) const {
        const RegularFile file(path);
        EXPECT_FALSE(file.isOpen());
        EXPECT_EQ(file.stamp(), FileStamp());
        return file.problem();
    }
    std::string linkTo(const std::string& target) const {
        std::filesystem::create_symlink(target, folder.file("link"));
        return folder.file("link");
    }

    const TemporaryFolder folder;
    std::array<std::byte, 16> buffer = {};

private:
    const Watchdog _watchdog;
};

TEST_F(RegularFiles, ARegularFileIsReadToItsEndAlsoThroughALink) {
    const RegularFile file(linkTo(folder.write("song", "abc")));
    ASSERT_TRUE(file.isOpen()) << file.problem();
    EXPECT_EQ(file.problem(), "");
    EXPECT_EQ(file.read(buffer), 3);
    EXPECT_EQ(std::memcmp(buffer.data(), "abc", 3), 0);
    EXPECT_EQ(file.read(buffer), 0);
}

TEST_F(RegularFiles, TheStampIsThatOfTheOpenFileWhateverIsAtItsPathLater) {
    const std::string path = folder.write("song", "abc");
    const auto before = stampOfFile(path);
    const RegularFile file(path);
    std::filesystem::rename(folder.write("other", "abcdef"), path);
    EXPECT_EQ(file.stamp(), before);
    EXPECT_NE(stampOfFile(path), before);
}

TEST_F(RegularFiles, AFileThatIsNotThereIsAProblem) {
    EXPECT_EQ(problemOf(folder.file("none")), "No such file or directory");
}

TEST_F(RegularFiles, AFifoThatNobodyWritesToIsRefused) {
    ASSERT_EQ(mkfifo(folder.file("fifo").c_str(), 0600), 0);
    EXPECT_EQ(problemOf(folder.file("fifo")), "not a regular file");
}

TEST_F(RegularFiles, AFolderIsRefused) {
    EXPECT_EQ(problemOf(folder.path()), "not a regular file");
}

TEST_F(RegularFiles, ADeviceBehindALinkIsRefused) {
    EXPECT_EQ(problemOf(linkTo("/dev/zero")), "not a regular file");
}

TEST_F(RegularFiles, ASocketIsRefused) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    folder.file("socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    ASSERT_EQ(bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)),
              0);
    EXPECT_EQ(problemOf(folder.file("socket")), "not a regular file");
}

/// It counts as a regular file, and a plain read of it waits for the kernel's next message.
TEST_F(RegularFiles, TheLogOfTheKernelIsNotWaitedFor) {
    const RegularFile file(linkTo("/proc/kmsg"));
    if (!file.isOpen())
        GTEST_SKIP() << "the log of the kernel cannot be opened here: " << file.problem();
    std::array<std::byte, 65536> large = {};
    ssize_t count = 1;
    while (count > 0)
        count = file.read(large);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(errno, EAGAIN);
}

TEST(InterruptedCalls, AreRepeatedUntilTheyEndInAnotherWay) {
    int calls = 0;
    const auto outcome = uninterrupted([&] {
        errno = ++calls < 3 ? EINTR : EIO;
        return -1;
    });
    EXPECT_EQ(outcome, -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(calls, 3);
}

} // namespace
} // namespace quarner
