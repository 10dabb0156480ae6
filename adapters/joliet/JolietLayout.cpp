// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietLayout.h"

#include <optional>
#include <stop_token>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/WorkerProcess.h"
#include "quarner/platform/DiscFormat.h"

namespace quarner {
namespace {

using Clock = Channel::Clock;
using Result = Channel::Result;

constexpr std::uint64_t mostBlocks = 0xFFFFFFFF; ///< a file system's blocks have 32 bits

[[noreturn]] void failLayout(const std::string& problem) {
    throw BurnFailure(DRError::SourceUnreadable, problem);
}

void give(const Channel& channel, std::span<const std::byte> bytes, Clock::time_point end) {
    while (!bytes.empty())
        if (channel.give(bytes, end) != Result::Done)
            return; // the reply says why
}

Message receiveReply(const Channel& channel, Clock::time_point end) {
    Message reply;
    if (channel.receive(reply, end) != Result::Done)
        failLayout(std::string(jolietProgram) + " does not reply");
    return reply;
}

} // namespace

JolietTree layOut(const JolietFolder& folder, const StopSignal* stop) {
    const std::vector<std::byte> bytes = encoded(folder);
    if (bytes.size() > joliet::mostBytes)
        failLayout("too many files");
    WorkerProcess process(jolietProgram);
    const Channel& channel = process.channel();
    const std::stop_callback endsWaiting(stop != nullptr ? stop->token() : std::stop_token(),
                                         [&channel] { channel.shutDown(); });
    try {
        return layOut(channel, bytes, Clock::now() + joliet::timeout);
    } catch (const BurnFailure&) {
        if (stop != nullptr)
            stop->throwIfRequested();
        throw;
    }
}

JolietTree layOut(const Channel& channel, std::span<const std::byte> folder,
                  Channel::Clock::time_point end) {
    channel.send(layOutRequest(folder.size()), end);
    give(channel, folder, end);
    const Message reply = receiveReply(channel, end);
    if (reply.name != drive::done)
        failLayout(textFor(reply.fields, "info"));
    const std::uint64_t blocks = valueFor(reply.fields, "blocks").asUInt64();
    const std::uint64_t size = valueFor(reply.fields, "headBytes").asUInt64();
    if (size > joliet::mostBytes || size % dataBlockSize != 0 || blocks > mostBlocks ||
        blocks < size / dataBlockSize)
        failLayout("the layout of the data disc is no layout");
    std::optional<std::vector<std::byte>> head = channel.takeAll(size, end);
    if (!head)
        failLayout("the layout of the data disc ends early");
    return {blocks, std::move(*head)};
}

} // namespace quarner
