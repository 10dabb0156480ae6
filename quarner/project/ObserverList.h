// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "quarner/project/DiscProjectObserver.h"

namespace quarner {

/// Calls the observers of a project. An event that is sent while another one is being delivered is
/// delivered after it, so that every observer sees all events in the same order. Main thread only.
class ObserverList {
public:
    using Event = std::function<void(DiscProjectObserver&)>;

    void add(std::weak_ptr<DiscProjectObserver> observer);

    /// Delivers an event at once, or after those that are being delivered.
    void send(Event event);
    /// The same for several, between which no other event is delivered.
    void send(std::vector<Event> events);

    /// Drops everything: no observer is called any more.
    void close();

private:
    void queue(Event event);
    void deliverQueue();
    void deliver(const Event& event);

    std::vector<std::weak_ptr<DiscProjectObserver>> _observers;
    std::deque<Event> _events;
    bool _isDelivering = false;
    bool _isClosed = false;
};

} // namespace quarner
