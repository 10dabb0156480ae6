// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <glib.h>

#include <functional>

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

    /// Attaches to the context and keeps it alive. `turn` is called once for each turn of the
    /// loop that follows one or more calls of `wake`, or a call that answered true, on the thread
    /// that runs the loop.
    WakeSource(GMainContext* context, Nesting nesting, Turn turn);
    /// `turn` is not called afterwards; on another thread than the loop's, a call may still be
    /// under way, and `turn` itself is destroyed after that.
    ~WakeSource();
    WakeSource(const WakeSource&) = delete;
    WakeSource& operator=(const WakeSource&) = delete;

    void wake(); ///< Any thread.

private:
    GMainContext* const _context;
    GSource* const _source;
};

} // namespace quarner
