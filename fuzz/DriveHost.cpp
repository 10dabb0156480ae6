// SPDX-License-Identifier: LGPL-2.1-or-later
#include <vector>

#include "adapters/optical/WorkerWriter.h"
#include "fuzz/Input.h"
#include "fuzz/Messages.h"
#include "fuzz/Target.h"
#include "tests/support/ChannelPair.h"

namespace quarner::fuzz {
namespace {

/// Makes every timeout one of a millisecond, and the longest one of some.
constexpr double timeoutScale = 1e-6;

/// A library that uses a program which sends what the input says, and may end at any moment.
class Host {
public:
    explicit Host(Input& input) : _input(input) {
        _plan.tracks = {{.preGap = 0, .length = 300}};
        _worker = std::make_shared<DriveWorker>(
            DriveRecord{"/dev/sr-none", "", "", "", true}, "Recorder",
            [](const DiscFacts& disc) { require(disc.speeds.size() <= 64, "the disc is checked"); },
            [this] { return startProgram(); });
        _writer = std::make_unique<WorkerWriter>(_worker, _stop);
    }

    void step() {
        const int choice = _input.byte() % 24;
        if (choice < 12)
            actAsProgram(choice);
        else
            use(choice - 12);
    }
    void end() {
        guard([this] { _writer.reset(); });
    }

private:
    std::unique_ptr<WorkerProcess> startProgram() {
        if (_isStarted)
            return std::make_unique<WorkerProcess>(ChannelPair().channel); // ends at once
        _isStarted = true;
        return std::make_unique<WorkerProcess>(std::move(_pair.channel));
    }

    void actAsProgram(int choice) {
        const std::vector<std::byte> bytes(_input.number<std::uint16_t>());
        switch (choice) {
        case 0:
            _pair.other.sendText(_input.text());
            break;
        case 1:
            _pair.other.sendPacket(bytes);
            break;
        case 2:
            _pair.other.sendStream(bytes);
            break;
        case 3:
            while (_pair.other.send({drive::alive}))
                ;
            break;
        case 4:
            _pair.other.drainMessages();
            break;
        case 5:
            _pair.other.drainStream();
            break;
        case 6:
            _pair.other.closeMessages();
            break;
        case 7:
            _pair.other.closeStream();
            break;
        default:
            _pair.other.send(messageFrom(_input));
        }
    }

    void use(int choice) {
        guard([&] {
            switch (choice) {
            case 0:
                return void(_worker->ask(drive::facts, fieldsFrom(_input), _stop.get()));
            case 1:
                return void(_worker->ask(drive::claim, fieldsFrom(_input), nullptr));
            case 2:
                return _writer->openSession(_plan);
            case 3:
                return _writer->write(
                    std::vector<std::byte>(std::size_t(_input.byte()) * audioSectorSize));
            case 4:
                return _writer->closeSession();
            case 5:
                return _writer->finish();
            case 6:
                return _writer->beginVerification();
            case 7:
                return readBack();
            case 8:
                return _stop->request(DRError::UserCanceled);
            case 9:
                return _stop->request(DRError::DeviceVanished);
            case 10:
                return fillMessages();
            default:
                return void(_worker->ask(drive::reload, nullptr));
            }
        });
    }
    void readBack() {
        std::vector<std::byte> buffer(std::size_t(_input.byte()) * audioSectorSize);
        _writer->readBack(_input.byte(), buffer);
    }
    /// Until the program has to take some.
    void fillMessages() {
        const Dictionary fields = {{"name", std::string(60'000, 'x')}};
        for (int i = 0; i < 8; ++i)
            _worker->tell(drive::facts, fields, _stop.get());
    }

    template <typename Act>
    static void guard(const Act& act) {
        try {
            act();
        } catch (const BurnFailure& failure) {
            require(errorFor(std::uint64_t(failure.error())) == failure.error(),
                    "a failure has a known code");
        }
    }

    Input& _input;
    ChannelPair _pair;
    bool _isStarted = false;
    DiscPlan _plan;
    std::shared_ptr<StopSignal> _stop = std::make_shared<StopSignal>();
    std::shared_ptr<DriveWorker> _worker;
    std::unique_ptr<WorkerWriter> _writer;
};

} // namespace
} // namespace quarner::fuzz

/// What the program does and what the library asks of it, in any order.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner::fuzz;
    constexpr int mostSteps = 40;
    quarner::DriveWorker::scaleTimeouts(timeoutScale);
    Input input(data, size);
    Host host(input);
    for (int steps = 0; steps < mostSteps && !input.isEmpty(); ++steps)
        host.step();
    host.end();
    return 0;
}
