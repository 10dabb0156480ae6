// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/ObserverList.h"

#include <algorithm>
#include <utility>

namespace quarner {

DiscProjectObserver::~DiscProjectObserver() = default;

void ObserverList::add(std::weak_ptr<DiscProjectObserver> observer) {
    if (!_isClosed)
        _observers.push_back(std::move(observer));
}

void ObserverList::send(Event event) {
    queue(std::move(event));
    deliverQueue();
}

void ObserverList::send(std::vector<Event> events) {
    for (Event& event : events)
        queue(std::move(event));
    deliverQueue();
}

void ObserverList::queue(Event event) {
    if (!_isClosed)
        _events.push_back(std::move(event));
}

void ObserverList::deliverQueue() {
    if (_isDelivering)
        return;
    _isDelivering = true;
    while (!_events.empty()) {
        const Event next = std::move(_events.front());
        _events.pop_front();
        deliver(next);
    }
    _isDelivering = false;
}

/// An observer that is added by another one receives the next event first.
void ObserverList::deliver(const Event& event) {
    std::erase_if(_observers, [](const auto& observer) { return observer.expired(); });
    const auto observers = _observers;
    for (const auto& weak : observers) {
        if (_isClosed)
            return;
        if (const auto observer = weak.lock())
            event(*observer);
    }
}

void ObserverList::close() {
    _isClosed = true;
    _observers.clear();
    _events.clear();
}

} // namespace quarner
