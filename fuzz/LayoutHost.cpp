// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/BurnFailure.h"
#include "adapters/joliet/JolietDirectory.h"
#include "adapters/joliet/JolietLayout.h"
#include "adapters/worker/DriveProtocol.h"
#include "fuzz/Input.h"
#include "fuzz/Messages.h"
#include "fuzz/Target.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/support/ChannelPair.h"

/// A reply and the bytes that follow it, or something else.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    using namespace quarner::fuzz;
    constexpr std::chrono::milliseconds timeout{2};
    Input input(data, size);
    ChannelPair pair;
    const int kind = input.byte() % 8;
    const std::vector<std::byte> folder(std::size_t(input.byte()) * 4096);
    if (kind == 0)
        pair.other.sendText(input.text());
    else
        pair.other.send(messageFrom(input));
    const std::string bytes = input.rest();
    pair.other.sendStream(std::as_bytes(std::span(bytes)));
    if (kind == 1)
        pair.other.closeMessages();
    if (kind == 2)
        pair.other.closeStream();
    try {
        const JolietTree tree = layOut(pair.channel, folder, Channel::Clock::now() + timeout);
        require(tree.head.size() <= bytes.size(), "what did not come is not made up");
        require(tree.head.size() % dataBlockSize == 0, "the head has whole blocks");
        require(tree.blocks >= tree.head.size() / dataBlockSize, "the head is on the disc");
        jolietRootDirectory(tree.head);
    } catch (const BurnFailure& failure) {
        require(errorFor(std::uint64_t(failure.error())) == failure.error(),
                "a failure has a known code");
    }
    return 0;
}
