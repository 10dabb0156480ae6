// SPDX-License-Identifier: LGPL-2.1-or-later
#include <vector>

#include "adapters/drive/DriveServer.h"
#include "adapters/worker/DriveProtocol.h"
#include "fuzz/Input.h"
#include "fuzz/Messages.h"
#include "fuzz/Target.h"
#include "quarner/platform/Platform.h"
#include "tests/support/ChannelPair.h"

namespace quarner::fuzz {
namespace {

/// A packet that is a message may name a drive of this machine.
void sendNoMessage(const RawEnd& library, Input& input) {
    const std::string text = input.text();
    if (!decoded(std::as_bytes(std::span(text))))
        library.sendText(text);
}

void actAsLibrary(RawEnd& library, Input& input) {
    switch (input.byte() % 16) {
    case 0:
        return sendNoMessage(library, input);
    case 1:
        return void(library.sendPacket(std::vector<std::byte>(input.number<std::uint16_t>())));
    case 2:
        return void(library.sendStream(std::vector<std::byte>(input.number<std::uint16_t>())));
    case 3:
        return library.closeStream();
    case 4:
        return void(library.send({drive::hello.name, {{"version", drive::version}}}));
    default:
        library.send(messageFrom(input));
    }
}

} // namespace
} // namespace quarner::fuzz

/// What a library sends before it closes the connection. None of the drives exists.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    using namespace quarner::fuzz;
    constexpr int mostMessages = 40;
    Input input(data, size);
    ChannelPair pair;
    if (input.byte() % 4 != 0)
        pair.other.send({drive::hello.name, {{"version", drive::version}}});
    for (int count = 0; count < mostMessages && !input.isEmpty(); ++count)
        actAsLibrary(pair.other, input);
    pair.other.closeMessages();
    constexpr std::chrono::seconds timeToEnd{60};
    const int status = DriveServer(std::move(pair.channel), timeToEnd).run();
    installPlatform({}); // its log was the channel
    require(status == 0, "the program ends with the connection");
    return 0;
}
