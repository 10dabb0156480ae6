// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/LeftDescriptors.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

class LeftDescriptorsTest : public testing::Test {
protected:
    ~LeftDescriptorsTest() override {
        for (const int descriptor : opened)
            close(descriptor);
    }
    int openFile(const std::string& path) {
        opened.push_back(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        return opened.back();
    }
    static bool isOpen(int descriptor) { return fcntl(descriptor, F_GETFD) >= 0; }

    TemporaryFolder folder;
    std::string node = folder.file("sr0");
    std::vector<int> opened;
};

TEST_F(LeftDescriptorsTest, AreThoseThatWereOpenedSince) {
    const int before = openFile(node);
    LeftDescriptors left(LeftDescriptors::placeOf(before));
    const int since = openFile(node);
    left.findOpened();
    left.closeAll();
    EXPECT_TRUE(isOpen(before));
    EXPECT_FALSE(isOpen(since));
}

TEST_F(LeftDescriptorsTest, AreOfThisPlaceAlone) {
    LeftDescriptors left(LeftDescriptors::placeOf(openFile(node)));
    const int other = openFile(folder.file("sr01"));
    left.findOpened();
    left.closeAll();
    EXPECT_TRUE(isOpen(other));
}

TEST_F(LeftDescriptorsTest, AreFoundWhenTheirFileIsGone) {
    LeftDescriptors left(LeftDescriptors::placeOf(openFile(node)));
    const int since = openFile(node);
    unlink(node.c_str());
    left.findOpened();
    left.closeAll();
    EXPECT_FALSE(isOpen(since));
}

TEST_F(LeftDescriptorsTest, AreFoundWhenTheDriveCameBackAsAnotherFileMeanwhile) {
    LeftDescriptors left(LeftDescriptors::placeOf(openFile(node)));
    unlink(node.c_str());
    const int since = openFile(node);
    left.findOpened();
    left.closeAll();
    EXPECT_FALSE(isOpen(since));
}

TEST_F(LeftDescriptorsTest, AreNotThoseThatWereOpenedLater) {
    LeftDescriptors left(LeftDescriptors::placeOf(openFile(node)));
    left.findOpened();
    const int later = openFile(node);
    left.closeAll();
    EXPECT_TRUE(isOpen(later));
}

TEST_F(LeftDescriptorsTest, AreNotThoseThatHaveBecomeAnotherFiles) {
    LeftDescriptors left(LeftDescriptors::placeOf(openFile(node)));
    const int since = openFile(node);
    left.findOpened();
    ASSERT_EQ(dup2(openFile(folder.file("other")), since), since);
    left.closeAll();
    EXPECT_TRUE(isOpen(since));
}

TEST_F(LeftDescriptorsTest, AreNoneWhereTheSystemTellsNoPlace) {
    LeftDescriptors left(LeftDescriptors::placeOf(-1));
    const int since = openFile(node);
    left.findOpened();
    left.closeAll();
    EXPECT_TRUE(isOpen(since));
}

} // namespace
} // namespace quarner
