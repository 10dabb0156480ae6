// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <string>

#include "quarner/front/FileRefusal.h"
#include "quarner/platform/Export.h"
#include "quarner/project/DiscBurn.h"
#include "quarner/project/DiscItem.h"

namespace quarner {

/// The reports of a `DiscProject`. Every operation does nothing by default.
///
/// All calls come on the main thread, one at a time, and in the order of the events: a change that
/// an operation makes inside a call is reported after that call has returned. A row event is what a
/// copy of the list needs to stay equal to `DiscProject::items`: apply each to the copy, in the
/// order in which they come. `items` itself may already contain later changes.
///
/// An operation must return soon: while it runs a loop of its own, such as that of a modal
/// dialogue, nothing else is reported.
///
/// A project holds its observers weakly. It calls none that is gone, and none after the project was
/// destroyed. An operation must not throw.
class QUARNER_EXPORT DiscProjectObserver {
public:
    DiscProjectObserver() = default;
    virtual ~DiscProjectObserver();
    DiscProjectObserver(const DiscProjectObserver&) = delete;
    DiscProjectObserver& operator=(const DiscProjectObserver&) = delete;

    // --- The list ---

    /// `items` were inserted, so that the first of them is now at row `first`.
    virtual void rowsInserted(std::size_t /*first*/, const DiscItems& /*items*/) {}
    /// `count` rows from `first` on were removed.
    virtual void rowsRemoved(std::size_t /*first*/, std::size_t /*count*/) {}
    /// `count` rows from `first` on were moved to before the row that was at `to`, which is outside
    /// of them; `to` may be the length of the list. All numbers are those before the move.
    virtual void rowsMoved(std::size_t /*first*/, std::size_t /*count*/, std::size_t /*to*/) {}

    // --- Adding files ---

    /// A file was not added. The path is as `add` was given it if the file was refused at once,
    /// otherwise resolved. The text names the file, and says what the user can do.
    virtual void fileRefused(const std::string& /*path*/, RefusalReason /*reason*/,
                             const std::string& /*text*/) {}
    /// Examining file number `index`, from 1, of `of`, summed over all calls of `add` that are
    /// under way.
    virtual void addingProgress(const std::string& /*displayName*/, std::size_t /*index*/,
                                std::size_t /*of*/) {}
    /// No file is being added any more. `isCanceled`: `cancelAdding` left files out.
    virtual void addingEnded(bool /*isCanceled*/) {}

    // --- Drives and capacity ---

    /// `DiscProject::capacity` or `problems` may return something else now.
    virtual void capacityChanged() {}
    /// `DiscProject::drives` returns something else now.
    virtual void drivesChanged() {}

    // --- The burn. The last call of a burn is `burnEnded`. ---

    /// The burn has made progress: at most some ten times a second, and at each new step.
    virtual void burnProgress(const DiscBurnProgress& /*progress*/) {}
    /// The burn is over. Called once for each `DiscProject::burn` that returned true.
    virtual void burnEnded(const DiscBurnEnd& /*end*/) {}
};

} // namespace quarner
