// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <vector>

#include "quarner/platform/DRObject.h"
#include "quarner/platform/DRTrack.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// The tracks of a disc, in order.
using DRLayout = std::vector<std::shared_ptr<const DRTrack>>;

/// One burn on one drive, made by `RecordingService::burnForDevice`. A burn writes one layout.
///
/// The burn reports its status with `DRBurnStatusChangedNotification`, whose object is the burn
/// itself: see DRKeys.h for the record. Exactly one record has the state Done or Failed, and it is
/// the last. A burn continues and keeps reporting after its caller has dropped the last reference.
class QUARNER_EXPORT DRBurn : public DRObject {
public:
    /// Sets the DRBurn...Key entries of DRKeys.h. Call it before `writeLayout`.
    virtual void setProperties(Dictionary properties) = 0;

    /// Starts the burn and returns at once. Every error, now or later, is reported by a Failed
    /// record. No record is delivered before the caller has returned to its run loop.
    virtual void writeLayout(DRLayout layout) = 0;

    /// Requests the burn to stop. It then fails with `DRError::UserCanceled`, unless it is over
    /// already. Does nothing on a burn that was not started. Any thread.
    virtual void abort() = 0;
};

} // namespace quarner
