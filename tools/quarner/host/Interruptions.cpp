// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/Interruptions.h"

#include <pthread.h>

#include <csignal>
#include <utility>

namespace quarner::cli {
namespace {

/// By whoever started the program: nohup, or a shell whose script runs it in the background.
bool isIgnored(int signal) {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    return signals;
}

} // namespace

void Interruptions::blockSignals() {
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

Interruptions::Interruptions(EventLoop& loop, std::function<void()> exitNow)
    : _loop(loop), _exitNow(std::move(exitNow)) {
    blockSignals();
    _thread = std::thread([this] { serve(); });
}

Interruptions::~Interruptions() {
    {
        const std::lock_guard lock(_mutex);
        _isOver = true;
    }
    _over.notify_all();
    pthread_kill(_thread.native_handle(), SIGINT);
    _thread.join();
}

void Interruptions::setHandler(std::function<void()> handler) {
    const std::lock_guard lock(_mutex);
    _handler = std::move(handler);
}

void Interruptions::serve() {
    const sigset_t signals = endingSignals();
    for (int signal = 0; sigwait(&signals, &signal) == 0;) {
        {
            const std::lock_guard lock(_mutex);
            if (_isOver)
                return;
        }
        if (!isIgnored(signal)) // one that is blocked arrives nevertheless
            signalArrived();
    }
}

void Interruptions::signalArrived() {
    std::function<void()> handler;
    {
        const std::lock_guard lock(_mutex);
        handler = std::exchange(_handler, nullptr);
    }
    if (handler)
        return _loop.post(std::move(handler));
    _loop.endAtOnce();
    std::unique_lock lock(_mutex);
    if (_over.wait_for(lock, exitTimeout, [this] { return _isOver; }))
        return;
    lock.unlock();
    _exitNow();
}

} // namespace quarner::cli
