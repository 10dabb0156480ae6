// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>

#include "quarner/platform/Export.h"

namespace quarner {

/// A dispatch queue that can be held, so that a test decides when each piece of work begins. Any
/// thread.
class QUARNER_EXPORT ScriptedQueue {
public:
    ScriptedQueue() = default;
    virtual ~ScriptedQueue();
    ScriptedQueue(const ScriptedQueue&) = delete;
    ScriptedQueue& operator=(const ScriptedQueue&) = delete;

    /// From now on work waits; work that has begun goes on.
    virtual void hold() = 0;

    /// Lets everything that waits go, and holds no more.
    virtual void release() = 0;

    /// Lets one piece of waiting work go, by its place in the line. False when there is none.
    virtual bool releaseOne(std::size_t place = 0) = 0;

    /// How many pieces of work are held back.
    virtual std::size_t waiting() const = 0;
};

} // namespace quarner
