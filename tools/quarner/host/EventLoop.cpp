// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/EventLoop.h"

#include <glib.h>

#include <memory>
#include <utility>

namespace quarner::cli {

using Work = std::function<void()>;

void EventLoop::post(Work work) {
    auto owned = std::make_unique<Work>(std::move(work));
    GSource* const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(
        source,
        [](gpointer data) -> gboolean {
            (*static_cast<Work*>(data))();
            return G_SOURCE_REMOVE;
        },
        owned.release(),
        [](gpointer data) { const std::unique_ptr<Work> done(static_cast<Work*>(data)); });
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

void EventLoop::endAtOnce() {
    _isEnding = true;
    g_main_context_wakeup(nullptr);
}

void EventLoop::runUntil(const std::function<bool()>& isOver) {
    while (!isOver()) {
        if (_isEnding.exchange(false))
            throw EndedAtOnce();
        g_main_context_iteration(nullptr, TRUE);
    }
}

} // namespace quarner::cli
