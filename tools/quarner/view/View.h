// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/front/QuarnDelegate.h"
#include "tools/quarner/host/ExitStatus.h"
#include "tools/quarner/text/TrackTable.h"

namespace quarner::cli {

/// Shows what `quarner audio` or `quarner data` does: everything that a burner tells, in the order
/// in which it does, and the two things below. All on the main loop.
class View : public QuarnDelegate {
public:
    /// Once, when the adding of files has ended.
    virtual void compilationIsComplete(const Compilation& compilation) = 0;

    /// Last, once: what has become of it, as a sentence for people (may be empty).
    virtual void didEnd(ExitStatus status, const std::string& outcome) = 0;
};

} // namespace quarner::cli
