// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <string>

#include "adapters/engine/BurnFailure.h"
#include "adapters/isofs/LayoutServer.h"
#include "adapters/joliet/JolietLayout.h"
#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/JolietProtocol.h"
#include "tests/support/ChannelPair.h"

namespace quarner {
namespace {

const JolietFolder twoFiles = {"Disc", {{"a.txt", {10, -1, 2, 3, 4}}, {"b\xFF", {0, 1, 2, 3, 5}}}};

Channel::Clock::time_point inTime() { return Channel::Clock::now() + std::chrono::seconds(10); }

/// A program that sends this reply, and these bytes, and then ends.
class AProgramThatLaysOut : public ::testing::Test, public ChannelPair {
protected:
    void reply(const Dictionary& fields, std::size_t bytes) {
        other.send({drive::done, fields});
        other.sendStream(std::vector<std::byte>(bytes));
        other.closeMessages();
        other.closeStream();
    }
    /// The name of the reply of the real program to a request and a folder.
    std::string nameOfReplyTo(const Message& request, std::span<const std::byte> folder) {
        other.send(request);
        EXPECT_TRUE(other.sendStream(folder));
        other.endStream();
        serveLayout(channel);
        Message message;
        const Channel library = std::move(other).asChannel();
        EXPECT_EQ(library.receive(message, inTime()), Channel::Result::Done);
        return message.name;
    }
    JolietTree layOutTwoFiles() { return layOut(channel, encoded(twoFiles), inTime()); }
};

TEST(AFolder, ArrivesAsItIs) {
    EXPECT_EQ(decodedFolder(encoded(twoFiles)), twoFiles);
    EXPECT_EQ(decodedFolder(encoded(JolietFolder())), JolietFolder());
}

TEST(AFolder, ThatIsCutOffIsNotRead) {
    const std::vector<std::byte> bytes = encoded(JolietFolder{"Disc", {{"name", {}}}});
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_EQ(decodedFolder(std::span(bytes).first(size)).has_value(), size == 5) << size;
}

TEST_F(AProgramThatLaysOut, GivesBlocksAndAHead) {
    reply({{"blocks", 20}, {"headBytes", 4096}}, 4096);
    const JolietTree tree = layOutTwoFiles();
    EXPECT_EQ(tree.blocks, 20U);
    EXPECT_EQ(tree.head.size(), 4096U);
}

TEST_F(AProgramThatLaysOut, MayNotSendLessThanItSays) {
    reply({{"blocks", 262'144}, {"headBytes", joliet::mostBytes}}, 4096);
    EXPECT_THROW(layOutTwoFiles(), BurnFailure);
}

TEST_F(AProgramThatLaysOut, MayNotReplyWithAnImpossibleDisc) {
    for (const Dictionary& fields :
         {Dictionary{{"blocks", 1}, {"headBytes", 4096}},
          Dictionary{{"blocks", 20}, {"headBytes", 1}},
          Dictionary{{"blocks", std::int64_t(1) << 32}, {"headBytes", 4096}},
          Dictionary{{"blocks", std::int64_t(1) << 31}, {"headBytes", joliet::mostBytes + 2048}}}) {
        ChannelPair pair;
        pair.other.send({drive::done, fields});
        EXPECT_THROW(layOut(pair.channel, encoded(twoFiles), inTime()), BurnFailure);
    }
}

TEST_F(AProgramThatLaysOut, IsNotWaitedForWhenItHasEnded) {
    other.closeMessages();
    EXPECT_THROW(layOutTwoFiles(), BurnFailure);
}

TEST_F(AProgramThatLaysOut, RefusesAFolderThatDoesNotCome) {
    EXPECT_EQ(nameOfReplyTo(layOutRequest(joliet::mostBytes), {}), drive::failed);
}

TEST_F(AProgramThatLaysOut, RefusesAnotherVersionOfTheRequest) {
    const std::vector<std::byte> folder = encoded(JolietFolder{"Disc", {}});
    Message request = layOutRequest(folder.size());
    request.fields["version"] = joliet::version + 1;
    EXPECT_EQ(nameOfReplyTo(request, folder), drive::failed);
}

TEST_F(AProgramThatLaysOut, LaysAnEmptyFolderOut) {
    const std::vector<std::byte> folder = encoded(JolietFolder{"Disc", {}});
    EXPECT_EQ(nameOfReplyTo(layOutRequest(folder.size()), folder), drive::done);
}

TEST_F(AProgramThatLaysOut, RepliesAlsoIfTheNameOfAFileIsLongerThanAMessage) {
    const std::vector<std::byte> folder =
        encoded(JolietFolder{"Disc", {{std::string(100'000, '/'), {1, 0, 0, 1, 1}}}});
    EXPECT_EQ(nameOfReplyTo(layOutRequest(folder.size()), folder), drive::failed);
}

} // namespace
} // namespace quarner
