// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/EventLoop.h"

#include <glib.h>

#include <utility>

namespace quarner::cli {

/// A GSource that is ready whenever the queue is not empty.
struct EventLoop::Source {
    explicit Source(EventLoop& owner);
    ~Source();

    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    GSource* source = nullptr;
};

EventLoop::Source::Source(EventLoop& owner) {
    static GSourceFuncs functions = {
        nullptr,
        nullptr,
        [](GSource* ready, GSourceFunc callback, gpointer data) -> gboolean {
            g_source_set_ready_time(ready, -1);
            return callback(data);
        },
        nullptr,
        nullptr,
        nullptr};
    source = g_source_new(&functions, sizeof(GSource));
    const auto run = [](gpointer data) -> gboolean {
        static_cast<EventLoop*>(data)->runOne();
        return G_SOURCE_CONTINUE;
    };
    g_source_set_callback(source, run, &owner, nullptr);
    g_source_attach(source, nullptr);
}

EventLoop::Source::~Source() {
    g_source_destroy(source);
    g_source_unref(source);
    g_main_loop_unref(loop);
}

EventLoop::EventLoop() : _source(std::make_unique<Source>(*this)) {}

EventLoop::~EventLoop() = default;

void EventLoop::post(std::function<void()> work) {
    {
        const std::lock_guard lock(_mutex);
        _queue.push_back(std::move(work));
    }
    g_source_set_ready_time(_source->source, 0);
}

void EventLoop::run() {
    g_main_loop_run(_source->loop);
    if (_failure)
        std::rethrow_exception(std::exchange(_failure, nullptr));
}

void EventLoop::quit() { g_main_loop_quit(_source->loop); }

void EventLoop::runOne() {
    const std::function<void()> work = take();
    if (!work)
        return;
    try { // no exception may pass through the C code that calls this
        work();
    } catch (...) {
        _failure = std::current_exception();
        quit();
    }
}

std::function<void()> EventLoop::take() {
    const std::lock_guard lock(_mutex);
    if (_queue.empty())
        return nullptr;
    std::function<void()> work = std::move(_queue.front());
    _queue.pop_front();
    if (!_queue.empty())
        g_source_set_ready_time(_source->source, 0);
    return work;
}

} // namespace quarner::cli
