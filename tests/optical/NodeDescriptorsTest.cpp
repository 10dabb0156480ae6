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
    std::string place() { return NodeDescriptors::placeOf(openFile(node)); }
    static bool isOpen(int descriptor) { return fcntl(descriptor, F_GETFD) >= 0; }

    TemporaryFolder folder;
    std::string node = folder.file("sr0");
    std::vector<int> opened;
};

TEST_F(NodeDescriptorsTest, AreThoseThatWereOpenedSince) {
    const NodeDescriptors descriptors(NodeDescriptors::placeOf(openFile(node)));
    EXPECT_THAT(descriptors.openedSince(), IsEmpty());
    const int since = openFile(node);
    EXPECT_THAT(descriptors.openedSince(), ElementsAre(since));
}

TEST_F(NodeDescriptorsTest, AreOfThisPlaceAlone) {
    const NodeDescriptors descriptors(NodeDescriptors::placeOf(openFile(node)));
    openFile(folder.file("sr01"));
    EXPECT_THAT(descriptors.openedSince(), IsEmpty());
}

TEST_F(NodeDescriptorsTest, AreFoundWhenTheirFileIsGone) {
    const NodeDescriptors descriptors(NodeDescriptors::placeOf(openFile(node)));
    const int since = openFile(node);
    unlink(node.c_str());
    EXPECT_THAT(descriptors.openedSince(), ElementsAre(since));
}

TEST_F(NodeDescriptorsTest, AreFoundWhenTheDriveCameBackAsAnotherFileMeanwhile) {
    const NodeDescriptors descriptors(NodeDescriptors::placeOf(openFile(node)));
    unlink(node.c_str());
    const int since = openFile(node);
    EXPECT_THAT(descriptors.openedSince(), ElementsAre(since));
}

TEST_F(NodeDescriptorsTest, AreNoneWhereTheSystemTellsNoPlace) {
    const NodeDescriptors descriptors(NodeDescriptors::placeOf(-1));
    openFile(node);
    EXPECT_THAT(descriptors.openedSince(), IsEmpty());
}

TEST_F(NodeDescriptorsTest, StayInUseWhenTheirFileIsTakenAway) {
    const int kept = openFile(node);
    const int taken = openFile(node);
    ASSERT_TRUE(takeAway({taken}, place()));
    EXPECT_EQ(NodeDescriptors::placeOf(kept), NodeDescriptors::placeOf(openFile(node)));
    EXPECT_NE(NodeDescriptors::placeOf(taken), NodeDescriptors::placeOf(kept));
    EXPECT_TRUE(isOpen(taken));
    closeTakenAway({taken});
    EXPECT_FALSE(isOpen(taken));
}

TEST_F(NodeDescriptorsTest, ThatAreAnotherFilesByNowAreNotTakenAway) {
    const int other = openFile(folder.file("other"));
    const std::string before = NodeDescriptors::placeOf(other);
    ASSERT_TRUE(takeAway({other}, place()));
    EXPECT_EQ(NodeDescriptors::placeOf(other), before);
}

TEST_F(NodeDescriptorsTest, ThatAreAnotherFilesByNowAreNotClosed) {
    const int taken = openFile(node);
    ASSERT_TRUE(takeAway({taken}, place()));
    ASSERT_EQ(dup2(openFile(folder.file("other")), taken), taken);
    closeTakenAway({taken});
    EXPECT_TRUE(isOpen(taken));
}

} // namespace
} // namespace quarner
