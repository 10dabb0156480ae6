// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>

namespace quarner {

/// A source of a loop without data of its own: `wake` makes the loop call one function, the turn.
/// The data is queued elsewhere, under its owner's mutex. After the destructor the turn is not
/// called; on a thread other than the loop's, a call may still be running then.
class LoopSource {
public:
    enum class Nesting {
        No, ///< not called by a loop that runs inside the turn itself
        Yes
    };

    /// Does a part of the work and returns whether there is more. Must not throw.
    using Turn = std::function<bool()>;

    LoopSource() = default;
    virtual ~LoopSource();
    LoopSource(const LoopSource&) = delete;
    LoopSource& operator=(const LoopSource&) = delete;

    /// The loop's thread calls the turn once per turn of the loop, after one or more calls of
    /// `wake` or after a call that returned true. Any thread.
    virtual void wake() = 0;
};

/// Makes a source of one certain loop.
using MakeLoopSource =
    std::function<std::unique_ptr<LoopSource>(LoopSource::Nesting, LoopSource::Turn)>;

/// Runs a function on the thread of a loop, in a later turn of it, in the order of the calls. May
/// be called on any thread, that of the loop included, and must not run the function at once.
using PostToLoop = std::function<void(std::function<void()>)>;

/// Makes sources of a loop of which only its `post` is known.
MakeLoopSource postedSources(PostToLoop post);

} // namespace quarner
