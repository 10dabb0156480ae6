// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/EventLoop.h"

#include <glib.h>

#include <utility>

namespace quarner::cli {

void EventLoop::post(std::function<void()> work) {
    {
        const std::lock_guard lock(_mutex);
        _queue.push_back(std::move(work));
    }
    g_main_context_wakeup(nullptr);
}

void EventLoop::endAtOnce() {
    _isEnding = true;
    g_main_context_wakeup(nullptr);
}

void EventLoop::runUntil(const std::function<bool()>& isOver) {
    while (!isOver()) {
        if (_isEnding.exchange(false))
            throw EndedAtOnce();
        if (const auto work = take())
            work();
        else
            g_main_context_iteration(nullptr, TRUE);
    }
}

std::function<void()> EventLoop::take() {
    const std::lock_guard lock(_mutex);
    if (_queue.empty())
        return nullptr;
    auto work = std::move(_queue.front());
    _queue.pop_front();
    return work;
}

} // namespace quarner::cli
