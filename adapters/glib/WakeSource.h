// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>

#include <functional>
#include <memory>

namespace quarner {

/// A source of a GMainContext without data of its own: `wake` makes the loop call one function. The
/// data is queued elsewhere, under its owner's mutex.
class WakeSource {
public:
    enum class Nesting {
        No, ///< not called by a loop that runs inside the function itself
        Yes
    };

    /// Does a part of the work and returns whether there is more. Must not throw.
    using Turn = std::function<bool()>;
    /// Called when the context ends, on the thread that released it. May destroy the source. Must
    /// not throw.
    using ContextEnded = std::function<void()>;

    /// Attaches to the context without keeping it alive. The loop's thread calls `turn` once per
    /// turn of the loop, after one or more calls of `wake` or after a call that returned true.
    WakeSource(GMainContext* context, Nesting nesting, Turn turn,
               ContextEnded contextEnded = nullptr);
    /// `turn` is not called afterwards. On a thread other than the loop's, a call may still be
    /// running; `turn` itself is destroyed after it.
    ~WakeSource();
    WakeSource(const WakeSource&) = delete;
    WakeSource& operator=(const WakeSource&) = delete;

    void wake(); ///< Any thread. Does nothing once the context has ended.

private:
    struct Attachment;
    struct Callback;

    static gboolean callTurn(gpointer callback) noexcept;
    static void deleteCallback(gpointer callback) noexcept;

    const std::shared_ptr<Attachment> _attachment;
    GSource* const _source;
};

} // namespace quarner
