// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/DriveServer.h"

#include <fcntl.h>
#include <unistd.h>

#include <exception>
#include <thread>
#include <utility>

#include "adapters/drive/DriveSession.h"
#include "adapters/drive/GrabbedDrive.h"
#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/WorkerProgram.h"

namespace quarner {
namespace {

constexpr std::size_t mostRequestsWaiting = 16;

Message replyTo(DriveSession& session, const Message& request) {
    try {
        return {drive::done, session.execute(request)};
    } catch (const BurnFailure& failure) {
        return {drive::failed, fieldsOf(failure)};
    } catch (const std::exception& failure) {
        return {drive::failed, fieldsOf(BurnFailure(DRError::Internal, failure.what()))};
    }
}

/// The drive that a request locks, or finds locked.
std::string nodeThatIsLocked(const Message& request) {
    if (request.name == drive::claim.name)
        return textFor(dictionaryFor(request.fields, "drive"), "node");
    return request.name == drive::unlock.name ? textFor(request.fields, "node") : "";
}

/// Nobody waits any longer for what the process might still print.
void closeErrors() {
    if (const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC); nothing >= 0)
        dup2(nothing, STDERR_FILENO);
}

} // namespace

int DriveServer::run() {
    std::thread receiver([this] { receiveAll(); });
    {
        DriveSession session(_channel, _stop);
        while (const std::optional<Message> request = nextRequest()) {
            reply(replyTo(session, *request));
            session.afterReply();
            if (GrabbedDrive::isAnyAbandoned())
                _exit(1); // a thread of libburn waits for ever
        }
    }
    {
        const std::lock_guard lock(_mutex);
        _isDone = true;
        _changed.notify_all();
    }
    _channel.shutDown();
    receiver.join();
    return 0;
}

void DriveServer::reply(const Message& message) const {
    if (_channel.send(message) == Channel::Sent::TooLarge)
        _channel.send(
            {drive::failed, fieldsOf(BurnFailure(DRError::Internal, "the reply is too large"))});
}

void DriveServer::receiveAll() {
    constexpr std::chrono::hours interval{1};
    while (true) {
        Message message;
        const auto result = _channel.receive(message, Channel::Clock::now() + interval);
        if (result == Channel::Result::Closed ||
            (result == Channel::Result::Done && !receive(std::move(message))))
            break;
    }
    libraryIsGone();
    endUnlessDone();
}

/// Only once: the language must not change under the other thread.
bool DriveServer::begin(const Dictionary& hello) {
    if (std::exchange(_hasBegun, true) || valueFor(hello, "version").asInt64() != drive::version)
        return false;
    installWorkerPlatform(hello, _channel);
    return true;
}

/// Returns whether the library keeps to the protocol.
bool DriveServer::receive(Message message) {
    if (message.name == drive::hello.name)
        return begin(message.fields);
    if (!_hasBegun)
        return false;
    if (const std::string node = nodeThatIsLocked(message); !node.empty())
        _lockedNode = node;
    if (message.name == drive::stop.name) {
        _stop->request(errorFor(valueFor(message.fields, "error").asUInt64()));
    } else {
        const std::lock_guard lock(_mutex);
        if (_requests.size() < mostRequestsWaiting)
            _requests.push_back(std::move(message));
        _changed.notify_all();
    }
    return true;
}

void DriveServer::libraryIsGone() {
    _stop->request(DRError::UserCanceled);
    const std::lock_guard lock(_mutex);
    _isClosed = true;
    _changed.notify_all();
}

/// On this thread, because the other one may wait for ever. Where the drive hangs, this one waits
/// for the drive, and the tray is unlocked when that responds.
void DriveServer::endUnlessDone() {
    std::unique_lock lock(_mutex);
    if (_changed.wait_for(lock, _timeToEnd, [this] { return _isDone; }))
        return;
    lock.unlock();
    closeErrors();
    if (!_lockedNode.empty())
        unlockTray(_lockedNode);
    _exit(1);
}

std::optional<Message> DriveServer::nextRequest() {
    std::unique_lock lock(_mutex);
    _changed.wait(lock, [this] { return _isClosed || !_requests.empty(); });
    if (_requests.empty())
        return std::nullopt;
    Message request = std::move(_requests.front());
    _requests.pop_front();
    return request;
}

} // namespace quarner
