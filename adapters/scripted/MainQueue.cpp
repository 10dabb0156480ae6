// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/scripted/MainQueue.h"

#include <algorithm>
#include <utility>

namespace quarner {

MainQueue::MainQueue(std::shared_ptr<Ticker> ticker) : _ticker(std::move(ticker)) {}

void MainQueue::runAndWait(std::function<void()> work, bool isCallerInBackground) {
    const auto item = std::make_shared<Item>();
    item->work = std::move(work);
    item->isCallerInBackground = isCallerInBackground;
    {
        const std::lock_guard lock(_mutex);
        if (_isClosed)
            return;
        _items.push_back(item);
    }
    _ticker->tick();
    std::unique_lock lock(_mutex);
    _changed.wait(lock, [&] { return item->isDone || (_isClosed && !item->isBegun); });
}

void MainQueue::post(std::function<void()> work) {
    const auto item = std::make_shared<Item>();
    item->work = std::move(work);
    item->isPosted = true;
    {
        const std::lock_guard lock(_mutex);
        if (_isClosed)
            return;
        _items.push_back(item);
    }
    _ticker->tick();
}

bool MainQueue::serveOne() {
    const ItemRef item = takeNext();
    if (!item)
        return false;
    item->work();
    finish(item);
    return true;
}

void MainQueue::finish(const ItemRef& item) {
    {
        const std::lock_guard lock(_mutex);
        item->isDone = true;
        if (item->isPosted)
            _isRunningPosted = false;
    }
    _changed.notify_all();
}

MainQueue::ItemRef MainQueue::takeNext() {
    const std::lock_guard lock(_mutex);
    const auto next = std::find_if(_items.begin(), _items.end(),
                                   [&](const ItemRef& item) { return mayRun(*item); });
    if (next == _items.end())
        return nullptr;
    ItemRef item = *next;
    item->isBegun = true;
    _isRunningPosted = _isRunningPosted || item->isPosted;
    _items.erase(next);
    return item;
}

bool MainQueue::hasWork() const {
    const std::lock_guard lock(_mutex);
    return std::any_of(_items.begin(), _items.end(),
                       [&](const ItemRef& item) { return mayRun(*item); });
}

std::size_t MainQueue::heldBackgroundCallers() const {
    const std::lock_guard lock(_mutex);
    return static_cast<std::size_t>(
        std::count_if(_items.begin(), _items.end(), [&](const ItemRef& item) {
            return item->isCallerInBackground && isHeldBack(*item);
        }));
}

void MainQueue::close() {
    std::deque<ItemRef> dropped; // destroyed after the lock is released
    {
        const std::lock_guard lock(_mutex);
        _isClosed = true;
        dropped.swap(_items);
    }
    _changed.notify_all();
}

void MainQueue::hold() {
    const std::lock_guard lock(_mutex);
    _isHeld = true;
}

void MainQueue::release() {
    {
        const std::lock_guard lock(_mutex);
        _isHeld = false;
    }
    _ticker->tick();
}

bool MainQueue::releaseOne(std::size_t place) {
    {
        const std::lock_guard lock(_mutex);
        std::size_t held = 0;
        const auto item = std::find_if(_items.begin(), _items.end(), [&](const ItemRef& each) {
            return isHeldBack(*each) && held++ == place;
        });
        if (item == _items.end())
            return false;
        (*item)->isLetThrough = true;
    }
    _ticker->tick();
    return true;
}

std::size_t MainQueue::waiting() const {
    const std::lock_guard lock(_mutex);
    return static_cast<std::size_t>(std::count_if(
        _items.begin(), _items.end(), [&](const ItemRef& item) { return isHeldBack(*item); }));
}

} // namespace quarner
