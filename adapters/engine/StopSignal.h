// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <mutex>
#include <optional>
#include <stop_token>

#include "quarner/platform/DRErrors.h"

namespace quarner {

/// The one way to stop a burn from outside. Every operation may be called on any thread.
class StopSignal {
public:
    /// Asks the burn to stop. The first reason stands; after `seal` nothing happens.
    void request(DRError reason);

    /// The point of no return: from here on no request has any effect. Throws `BurnFailure` when
    /// there was one before.
    void seal();

    /// Throws `BurnFailure` with the reason when a stop was requested.
    void throwIfRequested() const;

    /// To wait with: a thread that waits on it wakes up at the request.
    std::stop_token token() const { return _source.get_token(); }

private:
    mutable std::mutex _mutex;
    std::optional<DRError> _reason;
    bool _isSealed = false;
    std::stop_source _source;
};

} // namespace quarner
