// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/DriveWorker.h"

#include <algorithm>
#include <atomic>
#include <string_view>
#include <utility>

#include "adapters/optical/DriveLog.h"
#include "adapters/worker/WorkerProgram.h"
#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

using Clock = Channel::Clock;
using Result = Channel::Result;

/// The interval at which a wait looks for a request to stop.
constexpr std::chrono::milliseconds checkInterval{20};

std::atomic<double> timeoutScale = 1;

Clock::duration scaled(Clock::duration time) {
    return std::chrono::duration_cast<Clock::duration>(time * timeoutScale.load());
}

bool hasReply(const DriveRequest& request) {
    return request.name != drive::hello.name && request.name != drive::stop.name;
}

} // namespace

/// How long to wait for a reply. A stop is passed on once.
class DriveWorker::Deadline {
public:
    Deadline(DriveWorker& worker, const DriveRequest& request, const StopSignal* stop)
        : _worker(worker), _request(request), _stop(stop) {
        renew();
    }

    /// The end of the next wait.
    Clock::time_point next() {
        if (!_worker._isStopped)
            passStopOn();
        return std::min(_end, Clock::now() + checkInterval);
    }
    bool isOver() const { return Clock::now() >= _end; }
    /// There was a sign of life.
    void renew() { _end = std::min(_worker._latest, Clock::now() + timeout()); }

private:
    Clock::duration timeout() const {
        return scaled(_worker._isStopped ? Clock::duration(drive::stopTimeout) : _request.timeout);
    }
    void passStopOn() {
        if (const std::optional<DRError> reason = _worker.reasonToStop(_stop)) {
            _worker.tellToStop(*reason, _stop);
            renew();
        }
    }

    DriveWorker& _worker;
    const DriveRequest& _request;
    const StopSignal* const _stop;
    Clock::time_point _end;
};

DriveWorker::DriveWorker(DriveRecord record, std::string name, DiscHandler handleDisc,
                         Starter start, std::function<bool()> isGone)
    : _record(std::move(record)), _name(std::move(name)), _handleDisc(std::move(handleDisc)),
      _start(std::move(start)), _isGone(std::move(isGone)), _process(_start()) {
    tell(drive::hello, helloFields(), nullptr);
}

DriveWorker::~DriveWorker() = default;

std::unique_ptr<WorkerProcess> DriveWorker::startDriveProgram() {
    return std::make_unique<WorkerProcess>(driveProgram);
}

void DriveWorker::scaleTimeouts(double factor) { timeoutScale = factor; }

Dictionary DriveWorker::ask(const DriveRequest& request, const Dictionary& fields,
                            const StopSignal* stop) {
    if (_isLost)
        giveUpEnded(stop);
    settle(stop);
    tell(request, fields, stop);
    return await(request, stop);
}

/// Stops a request that was given up, and takes its reply: it is not that to the next one.
void DriveWorker::settle(const StopSignal* stop) {
    if (!_awaited)
        return;
    try {
        const DriveRequest request = *_awaited;
        if (!_isStopped)
            tellToStop(DRError::UserCanceled, stop);
        await(request, stop);
    } catch (const BurnFailure&) {
        if (_isLost)
            throw;
    }
}

std::optional<DRError> DriveWorker::reasonToStop(const StopSignal* stop) const {
    const std::optional<DRError> reason = stop != nullptr ? stop->reason() : std::nullopt;
    return !reason && _isGone && _isGone() ? DRError::DeviceVanished : reason;
}

void DriveWorker::tellToStop(DRError reason, const StopSignal* stop) {
    _isStopped = true;
    tell(drive::stop, {{"error", static_cast<std::uint32_t>(reason)}}, stop);
}

void DriveWorker::tell(const DriveRequest& request, const Dictionary& fields,
                       const StopSignal* stop) {
    const auto end = Clock::now() + scaled(drive::sendTimeout);
    if (hasReply(request))
        _latest = Clock::now() + scaled(drive::longest);
    switch (_process->channel().send({request.name, fields}, end)) {
    case Channel::Sent::Done:
        if (hasReply(request))
            _awaited = request;
        return;
    case Channel::Sent::Closed: // the wait finds what was sent before the end, and the end
        return;
    case Channel::Sent::TimedOut:
        giveUpHanging(stop);
    case Channel::Sent::TooLarge:
        throw BurnFailure(DRError::Internal,
                          std::string("the request ") + request.name + " is too large");
    }
}

Dictionary DriveWorker::await(const DriveRequest& request, const StopSignal* stop) {
    Deadline deadline(*this, request, stop);
    while (true) {
        Message message;
        const Result result = _process->channel().receive(message, deadline.next());
        if (result != Result::TimedOut && check(result, message, deadline, stop))
            return std::move(message.fields);
        if (deadline.isOver())
            giveUpHanging(stop);
    }
}

bool DriveWorker::check(Channel::Result result, const Message& message, Deadline& deadline,
                        const StopSignal* stop) {
    if (result == Result::Closed)
        giveUpEnded(stop);
    return handle(message, deadline);
}

bool DriveWorker::isAwaited(const DriveRequest& request) const {
    return _awaited && std::string_view(_awaited->name) == request.name;
}

/// Returns whether it is the reply. Throws the failure that is one.
bool DriveWorker::handle(const Message& message, Deadline& deadline) {
    if (message.name == drive::done || message.name == drive::failed)
        _awaited.reset();
    if (message.name == drive::done)
        return true;
    if (message.name == drive::failed)
        throwFailure(message.fields);
    if (message.name == drive::alive)
        deadline.renew();
    else if (message.name == drive::log)
        logLine({std::string_view(textFor(message.fields, "line")).substr(0, drive::mostLogBytes)});
    else if (message.name == drive::disc && _handleDisc && isAwaited(drive::claim))
        _handleDisc(discFactsOf(message.fields));
    return false;
}

void DriveWorker::give(std::span<const std::byte> bytes, const DriveRequest& request,
                       const StopSignal* stop) {
    Deadline deadline(*this, request, stop);
    while (!bytes.empty()) {
        const Clock::time_point until = deadline.next();
        if (_isStopped)
            await(request, stop); // a failure
        const Result given = _process->channel().give(bytes, until);
        if (given == Result::Done)
            deadline.renew();
        else if (!takeMessage(deadline, stop) && given == Result::Closed)
            giveUpEnded(stop); // the stream alone was closed
        if (deadline.isOver())
            giveUpHanging(stop);
    }
}

/// Returns whether one had come.
bool DriveWorker::takeMessage(Deadline& deadline, const StopSignal* stop) {
    Message message;
    const Result result = _process->channel().receive(message, Clock::now());
    if (result == Result::TimedOut)
        return false;
    check(result, message, deadline, stop);
    return true;
}

void DriveWorker::take(std::span<std::byte> buffer, const DriveRequest& request,
                       const StopSignal* stop) {
    Deadline deadline(*this, request, stop);
    while (!buffer.empty()) {
        const Result result = _process->channel().take(buffer, deadline.next());
        if (stop != nullptr)
            stop->throwIfRequested();
        if (result == Result::Done)
            deadline.renew();
        if (result == Result::Closed)
            giveUpEnded(stop);
        if (deadline.isOver())
            giveUpHanging(stop);
    }
}

void DriveWorker::giveUpEnded(const StopSignal* stop) {
    giveUp(DRError::Internal, text("the program {program} has ended", {{"program", driveProgram}}),
           stop);
}

void DriveWorker::giveUpHanging(const StopSignal* stop) {
    _hasHung = true;
    giveUp(DRError::DeviceHanging, text("the drive does not respond"), stop);
}

void DriveWorker::giveUp(DRError error, const std::string& problem, const StopSignal* stop) {
    if (!std::exchange(_isLost, true)) {
        _process->kill();
        _process->detach();             // nobody waits for a process that the kernel keeps,
        _process->channel().shutDown(); // which also keeps its end of the connection open
        logLine({_name, ": ", problem});
        unlockTray();
    }
    if (stop != nullptr)
        stop->throwIfRequested();
    throw BurnFailure(error, _record.node + ": " + problem);
}

/// By another process. Where the drive hangs, that waits for the drive alone.
void DriveWorker::unlockTray() const {
    constexpr std::chrono::milliseconds usualTime{500};
    try {
        const std::unique_ptr<WorkerProcess> process = _start();
        process->detach();
        const auto end = Clock::now() + scaled(usualTime);
        process->channel().send({drive::hello.name, helloFields()}, end);
        process->channel().send({drive::unlock.name, fieldsOf(_record)}, end);
        Message reply;
        process->channel().receive(reply, end);
    } catch (const std::exception& failure) {
        logLine({_record.node, ": ", failure.what()});
    }
}

} // namespace quarner
