// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

#include "quarner/platform/DRMSF.h"
#include "quarner/platform/DRObject.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// One drive of the disc-recording service. The same object stands for the same drive for as
/// long as it is attached, and goes on answering after it was unplugged. Every query may be made
/// on any thread and never throws; what is unknown is answered with an empty text or dictionary,
/// false, or nothing. A question for the disc asks the drive once for each disc, for which a real
/// drive takes about a second, and as long as the drives that are asked before it; what another
/// program holds is waited for half a second.
class QUARNER_EXPORT DRDevice : public DRObject {
public:
    /// The name that a user sees. Two drives may bear the same.
    virtual std::string displayName() const = 0;

    /// What does not change while the drive is attached: `DRDeviceCanWriteCDKey`.
    virtual Dictionary info() const = 0;
    /// What does: `DRDeviceMediaInfoKey` (only with a disc), `DRStatusCurrentSpeedKey`.
    virtual Dictionary status() const = 0;

    virtual bool mediaIsPresent() const = 0;
    /// A disc is being loaded or examined.
    virtual bool mediaIsTransitioning() const = 0;
    virtual bool mediaIsBlank() const = 0;
    virtual bool mediaIsAppendable() const = 0;
    virtual bool mediaIsErasable() const = 0;
    virtual bool mediaIsOverwritable() const = 0;

    /// The recorded and the free length of the disc; nothing when it is unknown.
    virtual std::optional<DRMSF> mediaSpaceUsed() const = 0;
    virtual std::optional<DRMSF> mediaSpaceFree() const = 0;

    /// Puts the disc out. Answers whether that worked; a drive that is burning refuses.
    virtual bool ejectMedia() = 0;
};

} // namespace quarner
