// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/glib/WakeSource.h"

#include <mutex>
#include <utility>

namespace quarner {
namespace {

gboolean dispatch(GSource* source, GSourceFunc callback, gpointer data) {
    g_source_set_ready_time(source,
                            -1); // before the turn, so that a wake during the turn is not lost
    if (callback(data))
        g_source_set_ready_time(source, 0);
    return G_SOURCE_CONTINUE;
}

GSource* newSource() {
    static GSourceFuncs functions = {nullptr, nullptr, dispatch, nullptr, nullptr, nullptr};
    return g_source_new(&functions, sizeof(GSource));
}

} // namespace

/// Whether the source may still use its context. A context that ends first destroys the callbacks
/// of its sources, and must wait for a thread that holds the mutex.
struct WakeSource::Attachment {
    std::recursive_mutex mutex; // recursive: destroying the source destroys the callback
    bool isAttached = true;

    bool end() {
        const std::lock_guard lock(mutex);
        return std::exchange(isAttached, false);
    }
};

struct WakeSource::Callback {
    Turn turn;
    ContextEnded contextEnded;
    std::shared_ptr<Attachment> attachment;
};

WakeSource::WakeSource(GMainContext* context, Nesting nesting, Turn turn, ContextEnded contextEnded)
    : _attachment(std::make_shared<Attachment>()), _source(newSource()) {
    auto* const callback = new Callback{std::move(turn), std::move(contextEnded), _attachment};
    g_source_set_callback(_source, callTurn, callback, deleteCallback);
    g_source_set_can_recurse(_source, nesting == Nesting::Yes);
    g_source_attach(_source, context);
}

WakeSource::~WakeSource() {
    {
        const std::lock_guard lock(_attachment->mutex);
        if (_attachment->end())
            g_source_destroy(_source);
    }
    g_source_unref(_source);
}

void WakeSource::wake() {
    const std::lock_guard lock(_attachment->mutex);
    if (_attachment->isAttached)
        g_source_set_ready_time(_source, 0);
}

gboolean WakeSource::callTurn(gpointer callback) noexcept {
    return static_cast<const Callback*>(callback)->turn();
}

void WakeSource::deleteCallback(gpointer callback) noexcept {
    const std::unique_ptr<const Callback> own(static_cast<const Callback*>(callback));
    const bool isContextEnded = own->attachment->end();
    if (isContextEnded && own->contextEnded)
        own->contextEnded();
}

} // namespace quarner
