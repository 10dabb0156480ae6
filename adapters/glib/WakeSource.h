// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>

#include <functional>
#include <memory>

#include "adapters/runloop/LoopSource.h"

namespace quarner {

/// A source of a GMainContext.
class WakeSource : public LoopSource {
public:
    /// Called when the context ends, on the thread that released it. May destroy the source. Must
    /// not throw.
    using ContextEnded = std::function<void()>;

    /// Attaches to the context without keeping it alive.
    WakeSource(GMainContext* context, Nesting nesting, Turn turn,
               ContextEnded contextEnded = nullptr);
    /// If a call of `turn` is still running on another thread, `turn` is destroyed after it.
    ~WakeSource() override;

    void wake() override; ///< Does nothing once the context has ended.

private:
    struct Attachment;
    struct Callback;

    static gboolean callTurn(gpointer callback) noexcept;
    static void deleteCallback(gpointer callback) noexcept;

    const std::shared_ptr<Attachment> _attachment;
    GSource* const _source;
};

} // namespace quarner
