// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/isofs/LayoutServer.h"

#include "adapters/isofs/IsofsTree.h"
#include "adapters/worker/DriveProtocol.h"

namespace quarner {
namespace {

using Clock = Channel::Clock;
using Result = Channel::Result;

constexpr std::size_t mostProblemBytes = 4096; ///< it may name a file, whose name has no limit

std::optional<JolietFolder> receiveFolder(const Channel& channel, Clock::time_point end) {
    Message request;
    if (channel.receive(request, end) != Result::Done || request.name != joliet::layOut ||
        valueFor(request.fields, "version").asInt64() != joliet::version)
        return std::nullopt;
    const std::uint64_t size = valueFor(request.fields, "bytes").asUInt64();
    if (size > joliet::mostBytes)
        return std::nullopt;
    const std::optional<std::vector<std::byte>> bytes = channel.takeAll(size, end);
    return bytes ? decodedFolder(*bytes) : std::nullopt;
}

void send(const Channel& channel, const IsofsTree& tree, Clock::time_point end) {
    channel.send({drive::done, {{"blocks", tree.blocks}, {"headBytes", tree.head.size()}}});
    for (std::span<const std::byte> left = tree.head; !left.empty();)
        if (channel.give(left, end) != Result::Done)
            return;
}

} // namespace

void serveLayout(const Channel& channel) {
    const Clock::time_point end = Clock::now() + joliet::timeout;
    const std::optional<JolietFolder> folder = receiveFolder(channel, end);
    IsofsTree tree;
    const std::string problem = folder ? tree.layOut(*folder) : "the folder is not understood";
    if (problem.empty())
        send(channel, tree, end);
    else
        channel.send({drive::failed, {{"info", problem.substr(0, mostProblemBytes)}}});
}

} // namespace quarner
