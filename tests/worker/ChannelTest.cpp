// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <future>

#include "adapters/worker/Channel.h"
#include "tests/support/ChannelPair.h"

namespace quarner {
namespace {

using Result = Channel::Result;
using Sent = Channel::Sent;

class AChannel : public ::testing::Test, public ChannelPair {
protected:
    static Channel::Clock::time_point after(std::chrono::milliseconds time) {
        return Channel::Clock::now() + time;
    }
    Result receive() {
        Message message;
        return channel.receive(message, after(std::chrono::seconds(10)));
    }
    static Message large(std::size_t size) { return {"large", {{"", std::string(size, 'x')}}}; }
};

TEST_F(AChannel, DoesNotSendAMessageThatIsTooLarge) {
    EXPECT_EQ(channel.send(large(mostMessageBytes)), Sent::TooLarge);
    EXPECT_EQ(other.drainMessages(), 0U);
    EXPECT_EQ(channel.send(large(mostMessageBytes - 100)), Sent::Done);
    EXPECT_GT(other.drainMessages(), 0U);
}

TEST_F(AChannel, DoesNotWaitForEverForASideThatTakesNoMessage) {
    Sent sent = Sent::Done;
    for (int i = 0; i < 1000 && sent == Sent::Done; ++i)
        sent = channel.send(large(60'000), after(std::chrono::milliseconds(5)));
    EXPECT_EQ(sent, Sent::TimedOut);
    other.drainMessages();
    EXPECT_EQ(channel.send({"next"}), Sent::Done);
}

TEST_F(AChannel, SendsAMessageAsSoonAsTheOtherSideTakesSome) {
    while (channel.send(large(60'000), Channel::Clock::now()) == Sent::Done)
        ;
    auto sending = std::async(std::launch::async, [this] { return channel.send({"waits"}); });
    while (sending.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
        other.drainMessages();
    EXPECT_EQ(sending.get(), Sent::Done);
}

TEST_F(AChannel, SendsNothingOnceTheOtherSideIsGone) {
    other.closeMessages();
    EXPECT_EQ(channel.send({"name"}), Sent::Closed);
    EXPECT_EQ(receive(), Result::Closed);
}

TEST_F(AChannel, ReceivesWhatWasSentBeforeTheEnd) {
    other.send({"last"});
    other.closeMessages();
    EXPECT_EQ(receive(), Result::Done);
    EXPECT_EQ(receive(), Result::Closed);
}

TEST_F(AChannel, CountsGarbageAsTheEnd) {
    other.sendText("no message");
    EXPECT_EQ(receive(), Result::Closed);
}

TEST_F(AChannel, CountsAnEmptyPacketAsTheEnd) {
    other.sendPacket({});
    EXPECT_EQ(receive(), Result::Closed);
}

TEST_F(AChannel, CountsAPacketThatIsTooLargeAsTheEnd) {
    ASSERT_TRUE(other.sendPacket(encoded(large(mostMessageBytes))));
    EXPECT_EQ(receive(), Result::Closed);
}

TEST_F(AChannel, TakesBytesThatComeInParts) {
    constexpr std::size_t size = 300'000;
    auto taking = std::async(std::launch::async, [this] {
        return channel.takeAll(size, after(std::chrono::seconds(10)));
    });
    const std::vector<std::byte> part(1000, std::byte(7));
    for (std::size_t given = 0; given < size;)
        given += other.sendStream(part) ? part.size() : 0;
    EXPECT_EQ(taking.get(), std::vector<std::byte>(size, std::byte(7)));
}

TEST_F(AChannel, DoesNotTakeMemoryForBytesThatAreOnlyClaimed) {
    constexpr std::uint64_t claimed = std::uint64_t(1) << 60;
    other.sendStream(std::vector<std::byte>(10));
    EXPECT_FALSE(channel.takeAll(claimed, after(std::chrono::milliseconds(5))));
    other.closeStream();
    EXPECT_FALSE(channel.takeAll(claimed, after(std::chrono::seconds(10))));
}

TEST_F(AChannel, StopsGivingBytesWhenAMessageHasCome) {
    other.send({"stop"});
    const std::vector<std::byte> bytes(10);
    std::span<const std::byte> left = bytes;
    EXPECT_EQ(channel.give(left, after(std::chrono::seconds(10))), Result::TimedOut);
    EXPECT_EQ(left.size(), bytes.size());
}

TEST_F(AChannel, EndsEveryWaitWhenItIsShutDown) {
    auto waiting = std::async(std::launch::async, [this] { return receive(); });
    channel.shutDown();
    EXPECT_EQ(waiting.get(), Result::Closed);
}

} // namespace
} // namespace quarner
