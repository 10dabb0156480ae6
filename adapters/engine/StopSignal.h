// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <mutex>
#include <optional>
#include <stop_token>

#include "quarner/platform/DRErrors.h"

namespace quarner {

/// Stops a burn from outside. Every operation may be called on any thread.
class StopSignal {
public:
    /// Requests the burn to stop. Does nothing after an earlier request or after `seal`.
    void request(DRError reason);

    /// Makes all later requests ineffective. Throws `BurnFailure` if there was one before.
    void seal();

    /// Throws `BurnFailure` with the reason if a stop was requested.
    void throwIfRequested() const;

    /// The reason of the request; `std::nullopt` if there was none.
    std::optional<DRError> reason() const;

    /// For waits: a request wakes every thread that waits with this token.
    std::stop_token token() const { return _source.get_token(); }

private:
    mutable std::mutex _mutex;
    std::optional<DRError> _reason;
    bool _isSealed = false;
    std::stop_source _source;
};

} // namespace quarner
