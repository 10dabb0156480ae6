// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/NodeDescriptors.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace quarner {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NodeDescriptorsTest : public testing::Test {
protected:
    ~NodeDescriptorsTest() override {
        for (const int descriptor : opened)
            close(descriptor);
    }
    int openFile(const std::string& path) {
        opened.push_back(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        return opened.back();
    }
    std::string path() { return NodeDescriptors::pathOf(openFile(node)); }
    static bool isOpen(int descriptor) { return fcntl(descriptor, F_GETFD) >= 0; }

    TemporaryFolder folder;
    std::string node = folder.file("sr0");
    std::vector<int> opened;
};

TEST_F(NodeDescriptorsTest, AreThoseThatWereOpenedSince) {
    const NodeDescriptors descriptors(NodeDescriptors::pathOf(openFile(node)));
    EXPECT_THAT(descriptors.openedSince(), IsEmpty());
    const int since = openFile(node);
    EXPECT_THAT(descriptors.openedSince(), ElementsAre(since));
}

TEST_F(NodeDescriptorsTest, AreOfThisPlaceAlone) {
    const NodeDescriptors descriptors(NodeDescriptors::pathOf(openFile(node)));
    openFile(folder.file("sr01"));
    EXPECT_THAT(descriptors.openedSince(), IsEmpty());
}

TEST_F(NodeDescriptorsTest, AreFoundWhenTheirFileIsGone) {
    const NodeDescriptors descriptors(NodeDescriptors::pathOf(openFile(node)));
    const int since = openFile(node);
    unlink(node.c_str());
    EXPECT_THAT(descriptors.openedSince(), ElementsAre(since));
}

TEST_F(NodeDescriptorsTest, AreFoundWhenTheDriveCameBackAsAnotherFileMeanwhile) {
    const NodeDescriptors descriptors(NodeDescriptors::pathOf(openFile(node)));
    unlink(node.c_str());
    const int since = openFile(node);
    EXPECT_THAT(descriptors.openedSince(), ElementsAre(since));
}

TEST_F(NodeDescriptorsTest, AreNoneWhereTheSystemTellsNoPlace) {
    const NodeDescriptors descriptors(NodeDescriptors::pathOf(-1));
    openFile(node);
    EXPECT_THAT(descriptors.openedSince(), IsEmpty());
}

TEST_F(NodeDescriptorsTest, StayInUseWhenTheirFileIsTakenAway) {
    const int kept = openFile(node);
    const int taken = openFile(node);
    ASSERT_TRUE(replaceByEmptyFile({taken}, path()));
    EXPECT_EQ(NodeDescriptors::pathOf(kept), NodeDescriptors::pathOf(openFile(node)));
    EXPECT_NE(NodeDescriptors::pathOf(taken), NodeDescriptors::pathOf(kept));
    EXPECT_TRUE(isOpen(taken));
    closeReplaced({taken});
    EXPECT_FALSE(isOpen(taken));
}

TEST_F(NodeDescriptorsTest, ThatAreAnotherFilesByNowAreNotTakenAway) {
    const int other = openFile(folder.file("other"));
    const std::string before = NodeDescriptors::pathOf(other);
    ASSERT_TRUE(replaceByEmptyFile({other}, path()));
    EXPECT_EQ(NodeDescriptors::pathOf(other), before);
}

TEST_F(NodeDescriptorsTest, ThatAreAnotherFilesByNowAreNotClosed) {
    const int taken = openFile(node);
    ASSERT_TRUE(replaceByEmptyFile({taken}, path()));
    ASSERT_EQ(dup2(openFile(folder.file("other")), taken), taken);
    closeReplaced({taken});
    EXPECT_TRUE(isOpen(taken));
}

} // namespace
} // namespace quarner
