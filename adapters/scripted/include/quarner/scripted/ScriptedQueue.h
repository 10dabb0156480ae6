// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>

#include "quarner/platform/Export.h"

namespace quarner {

/// A dispatch queue that a test can hold, to decide when each item of work begins. Any thread.
class QUARNER_EXPORT ScriptedQueue {
public:
    ScriptedQueue() = default;
    virtual ~ScriptedQueue();
    ScriptedQueue(const ScriptedQueue&) = delete;
    ScriptedQueue& operator=(const ScriptedQueue&) = delete;

    /// Holds all work that has not begun.
    virtual void hold() = 0;

    /// Releases all held work and stops holding.
    virtual void release() = 0;

    /// Releases one item of held work by its position in the queue. Returns false if there is none.
    virtual bool releaseOne(std::size_t place = 0) = 0;

    /// The number of items that are held.
    virtual std::size_t waiting() const = 0;
};

} // namespace quarner
