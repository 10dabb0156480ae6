// SPDX-License-Identifier: LGPL-2.1-or-later
#include <future>
#include <vector>

#include "adapters/isofs/LayoutServer.h"
#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/JolietProtocol.h"
#include "fuzz/Input.h"
#include "fuzz/Messages.h"
#include "fuzz/Target.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/support/ChannelPair.h"

namespace quarner::fuzz {
namespace {

struct Received {
    Message reply;
    std::size_t bytes = 0;
};

/// Both ends of the connection are channels here: the library's takes what comes until the end.
Received receiveAll(const Channel& library) {
    const auto end = Channel::Clock::now() + std::chrono::seconds(60);
    Received received;
    if (library.receive(received.reply, end) != Channel::Result::Done)
        return {};
    std::vector<std::byte> buffer(65536);
    while (true) {
        std::span<std::byte> left = buffer;
        if (library.take(left, end) != Channel::Result::Done)
            return received;
        received.bytes += buffer.size() - left.size();
    }
}

void check(const Received& received) {
    if (received.reply.name != drive::done) {
        require(received.reply.name == drive::failed, "there is a reply");
        require(received.bytes == 0, "nothing follows a failure");
        return;
    }
    const std::uint64_t head = valueFor(received.reply.fields, "headBytes").asUInt64();
    require(head == received.bytes, "the head follows");
    require(head % dataBlockSize == 0, "the head has whole blocks");
    require(valueFor(received.reply.fields, "blocks").asUInt64() >= head / dataBlockSize,
            "the head is on the disc");
}

} // namespace
} // namespace quarner::fuzz

/// A request, or none, and the bytes that follow it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    using namespace quarner::fuzz;
    Input input(data, size);
    ChannelPair pair;
    const int kind = input.byte() % 4;
    const Message other = kind == 0 ? messageFrom(input) : Message{};
    const std::string bytes = input.rest();
    const std::size_t claimed = bytes.size() + (kind == 1 ? 1 : 0);
    if (!pair.other.send(kind == 0 ? other : layOutRequest(claimed)))
        return 0; // too large a message
    pair.other.sendStream(std::as_bytes(std::span(bytes)));
    pair.other.endStream();
    const Channel library = std::move(pair.other).asChannel();
    auto received = std::async(std::launch::async, [&] { return receiveAll(library); });
    serveLayout(pair.channel);
    pair.channel.shutDown();
    check(received.get());
    return 0;
}
