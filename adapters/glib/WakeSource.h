// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>

#include <functional>
#include <memory>

namespace quarner {

/// A source of a GMainContext that carries nothing: waking it makes the loop call one function.
/// What there is to do waits elsewhere, under a mutex of its owner.
class WakeSource {
public:
    enum class Nesting {
        No, ///< not called by a loop that runs within the function itself
        Yes
    };

    /// Does a little and answers whether there is more to do. Must not throw.
    using Turn = std::function<bool()>;
    /// Told that the context has come to its end, on the thread that let go of it. May destroy
    /// the source. Must not throw.
    using ContextEnded = std::function<void()>;

    /// Attaches to the context, which is not kept alive by that. `turn` is called once for each
    /// turn of the loop that follows one or more calls of `wake`, or a call that answered true, on
    /// the thread that runs the loop.
    WakeSource(GMainContext* context, Nesting nesting, Turn turn,
               ContextEnded contextEnded = nullptr);
    /// `turn` is not called afterwards; on another thread than the loop's, a call may still be
    /// under way, and `turn` itself is destroyed after that.
    ~WakeSource();
    WakeSource(const WakeSource&) = delete;
    WakeSource& operator=(const WakeSource&) = delete;

    void wake(); ///< Any thread. Nothing happens once the context has ended.

private:
    struct Attachment;
    struct Callback;

    static gboolean callTurn(gpointer callback) noexcept;
    static void deleteCallback(gpointer callback) noexcept;

    const std::shared_ptr<Attachment> _attachment;
    GSource* const _source;
};

} // namespace quarner
