// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <memory>
#include <utility>
#include <vector>

#include "adapters/drive/DriveServer.h"
#include "adapters/worker/DriveProtocol.h"
#include "fuzz/Input.h"
#include "fuzz/Messages.h"
#include "fuzz/Target.h"
#include "quarner/platform/DiscFormat.h"
#include "quarner/platform/Platform.h"
#include "tests/support/ChannelPair.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner::fuzz {
namespace {

constexpr std::array<const DriveRequest*, 8> steps = {
    &drive::openSession,       &drive::write,    &drive::closeSession, &drive::finish,
    &drive::beginVerification, &drive::readBack, &drive::release,      &drive::reload};

/// A machine with one drive, for all inputs.
EmulatedRecorder& recorder() {
    static OpticalBed machine;
    static const std::shared_ptr<EmulatedRecorder> only = machine.plug();
    return *only;
}

DiscPlan planFrom(Input& input) {
    DiscPlan plan;
    plan.sectorSize = input.byte() % 2 == 0 ? dataBlockSize : audioSectorSize;
    for (int count = 1 + input.byte() % 3; count > 0; --count)
        plan.tracks.push_back({input.byte() % 4U * 75U, 1 + input.byte() % 16U});
    return plan;
}

/// A library that waits for each reply, and otherwise does as it likes.
class Library {
public:
    Library(Channel channel, DiscPlan plan) : _channel(std::move(channel)), _plan(plan) {}

    void begin() {
        _channel.send({drive::hello.name, {{"version", drive::version}}});
        ask({drive::claim.name,
             {{"drive", Dictionary{{"node", recorder().node()}}},
              {"plan", fieldsOf(_plan)},
              {"settings", Dictionary{{"overwrite", true}, {"verify", true}}}}});
    }
    void act(Input& input) {
        switch (input.byte() % 8) {
        case 0:
            return askWhatever(messageFrom(input));
        case 1:
            return ask({drive::readBack.name,
                        {{"first", input.byte()}, {"count", std::int64_t(input.byte())}}});
        case 2:
            return give(input.number<std::uint16_t>());
        case 3:
            return void(
                _channel.send({drive::stop.name, {{"error", input.number<std::uint32_t>()}}}));
        default:
            return takeStep(input);
        }
    }

private:
    void takeStep(Input& input) {
        const DriveRequest& step = *steps[std::min<std::size_t>(_next++, steps.size() - 1)];
        const bool isWriting = &step == &drive::write;
        const bool isCutOff = isWriting && input.byte() % 8 == 0;
        send({step.name});
        if (isWriting)
            give(isCutOff ? input.byte() : std::size_t(_plan.bytes()));
        if (!isCutOff)
            awaitAll();
    }
    /// Nothing that waits for bytes, or has no reply.
    void askWhatever(const Message& message) {
        if (message.name == drive::write.name)
            return;
        if (message.name == drive::hello.name || message.name == drive::stop.name)
            return void(_channel.send(message));
        ask(message);
    }
    void ask(const Message& request) {
        send(request);
        awaitAll();
    }
    void send(const Message& request) {
        if (_channel.send(request, Channel::Clock::now() + timeout) == Channel::Sent::Done)
            ++_awaited;
    }
    /// Where the program waits for bytes that do not come, this is given up once.
    void awaitAll() {
        const auto end = Channel::Clock::now() + (_isStuck ? std::chrono::seconds(0) : timeout);
        Message message;
        while (_awaited > 0 && _channel.receive(message, end) == Channel::Result::Done)
            _awaited -= message.name == drive::done || message.name == drive::failed ? 1 : 0;
        _isStuck = _awaited > 0;
        std::vector<std::byte> buffer(65536);
        std::span<std::byte> left = buffer;
        while (_channel.take(left, Channel::Clock::now()) == Channel::Result::Done)
            left = buffer;
    }
    void give(std::size_t count) {
        const std::vector<std::byte> bytes(count);
        std::span<const std::byte> left = bytes;
        while (!left.empty() &&
               _channel.give(left, Channel::Clock::now() + shortly) == Channel::Result::Done) {
        }
    }

    static constexpr std::chrono::milliseconds shortly{20};
    static constexpr std::chrono::seconds timeout{1};

    const Channel _channel;
    const DiscPlan _plan;
    std::size_t _next = 0;
    int _awaited = 0;
    bool _isStuck = false;
};

} // namespace
} // namespace quarner::fuzz

/// What a library does to a burn that has begun. Whatever it is, the drive is free afterwards.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    using namespace quarner::fuzz;
    constexpr int mostActions = 20;
    constexpr std::chrono::seconds timeToEnd{60};
    Input input(data, size);
    Medium disc = input.byte() % 4 == 0 ? Medium::dataCD(1000) : Medium::blankCDRW();
    disc.kind = Medium::Kind::CDRW;
    recorder().insert(std::move(disc));
    ChannelPair pair;
    auto status = std::async(std::launch::async,
                             [&] { return DriveServer(std::move(pair.channel), timeToEnd).run(); });
    {
        Library library(std::move(pair.other).asChannel(), planFrom(input));
        library.begin();
        for (int count = 0; count < mostActions && !input.isEmpty(); ++count)
            library.act(input);
    }
    require(status.get() == 0, "the program ends with the connection");
    require(recorder().isReleased(), "the drive is free");
    installPlatform({}); // its log was the channel
    return 0;
}
