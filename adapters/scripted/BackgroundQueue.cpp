// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/BackgroundQueue.h"

#include <utility>

namespace quarner {
namespace {

thread_local bool isWorkerThread = false;

} // namespace

BackgroundQueue::BackgroundQueue(std::shared_ptr<Ticker> ticker) : _ticker(std::move(ticker)) {}

BackgroundQueue::~BackgroundQueue() { close(); }

bool BackgroundQueue::isOnItsThread() { return isWorkerThread; }

void BackgroundQueue::submit(std::function<void()> work) {
    const std::lock_guard lock(_mutex);
    if (_isClosed)
        return;
    if (_isHeld)
        _waiting.push_back(std::move(work));
    else
        start(std::move(work));
}

std::size_t BackgroundQueue::running() const {
    const std::lock_guard lock(_mutex);
    return _running;
}

void BackgroundQueue::close() {
    std::deque<std::function<void()>> dropped; // destroyed without the lock
    std::vector<Worker> workers;
    {
        const std::lock_guard lock(_mutex);
        _isClosed = true;
        dropped.swap(_waiting);
        workers.swap(_workers);
    }
    for (Worker& worker : workers)
        worker.thread.join();
}

void BackgroundQueue::hold() {
    const std::lock_guard lock(_mutex);
    _isHeld = true;
}

void BackgroundQueue::release() {
    const std::lock_guard lock(_mutex);
    _isHeld = false;
    for (auto& work : std::exchange(_waiting, {}))
        start(std::move(work));
}

bool BackgroundQueue::releaseOne(std::size_t place) {
    const std::lock_guard lock(_mutex);
    if (place >= _waiting.size())
        return false;
    const auto work = _waiting.begin() + static_cast<std::ptrdiff_t>(place);
    start(std::move(*work));
    _waiting.erase(work);
    return true;
}

std::size_t BackgroundQueue::waiting() const {
    const std::lock_guard lock(_mutex);
    return _waiting.size();
}

void BackgroundQueue::start(std::function<void()> work) {
    joinEnded();
    ++_running;
    const auto hasEnded = std::make_shared<std::atomic<bool>>(false);
    std::thread thread([this, hasEnded, work = std::move(work)]() mutable {
        run(std::move(work));
        *hasEnded = true;
    });
    _workers.push_back({std::move(thread), hasEnded});
}

void BackgroundQueue::joinEnded() {
    std::erase_if(_workers, [](Worker& worker) {
        const bool hasEnded = *worker.hasEnded;
        if (hasEnded)
            worker.thread.join();
        return hasEnded;
    });
}

void BackgroundQueue::run(std::function<void()> work) {
    isWorkerThread = true;
    work();
    work = nullptr; // destroyed before the work counts as done
    {
        const std::lock_guard lock(_mutex);
        --_running;
    }
    _ticker->tick();
}

} // namespace quarner
