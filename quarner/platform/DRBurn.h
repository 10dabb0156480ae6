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

/// One burn on one drive, made by `RecordingService::burnForDevice`. Good for one layout.
///
/// The status of the burn is told through `DRBurnStatusChangedNotification`, sent by this object:
/// see DRKeys.h for the record. The last record's state is Done or Failed, and there is exactly
/// one such record. A burn goes on, and tells of itself, also when its last reference outside of
/// the service is dropped.
class QUARNER_EXPORT DRBurn : public DRObject {
public:
    /// The settings: the DRBurn...Key entries of DRKeys.h. To be given before the layout.
    virtual void setProperties(Dictionary properties) = 0;

    /// Starts the burn and returns at once. Whatever is wrong, now or later, is told by a Failed
    /// record. No record is delivered before the caller has returned to its run loop.
    virtual void writeLayout(DRLayout layout) = 0;

    /// Asks the burn to stop; it then fails with `DRError::UserCanceled`, unless it is over
    /// already. Does nothing on a burn that was not started. Any thread.
    virtual void abort() = 0;
};

} // namespace quarner
