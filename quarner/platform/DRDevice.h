// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

#include "quarner/platform/DRMSF.h"
#include "quarner/platform/DRObject.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// One drive of the disc-recording service. A drive has one object for as long as it is attached;
/// the object still returns values after the drive was unplugged. Every query may be called on any
/// thread and never throws. An unknown value is returned as an empty text or dictionary, as false
/// or as `std::nullopt`.
///
/// A query about the disc reads the drive once for each disc. That takes a real drive about a
/// second, plus the time of the queries before it. A drive that another program has open is retried
/// for half a second.
class QUARNER_EXPORT DRDevice : public DRObject {
public:
    /// The name shown to users. Two drives may have the same name.
    virtual std::string displayName() const = 0;

    /// Properties that do not change while the drive is attached: `DRDeviceCanWriteCDKey`.
    virtual Dictionary info() const = 0;
    /// Properties that change: `DRDeviceMediaInfoKey` (only with a disc),
    /// `DRStatusCurrentSpeedKey`.
    virtual Dictionary status() const = 0;

    /// True if a disc is in the drive and was examined.
    virtual bool mediaIsPresent() const = 0;
    /// True while a disc is being loaded or examined.
    virtual bool mediaIsTransitioning() const = 0;
    /// True if nothing is recorded on the disc. False without a disc, as in the next three.
    virtual bool mediaIsBlank() const = 0;
    /// True if a session can be written to the disc: it is blank, or was left open.
    virtual bool mediaIsAppendable() const = 0;
    /// True if the disc can be blanked, as a CD-RW can.
    virtual bool mediaIsErasable() const = 0;
    /// True if the disc can be written again without being blanked. No CD can.
    virtual bool mediaIsOverwritable() const = 0;

    /// The recorded length of the disc; `std::nullopt` if unknown.
    virtual std::optional<DRMSF> mediaSpaceUsed() const = 0;
    /// The length that can still be recorded; `std::nullopt` if unknown.
    virtual std::optional<DRMSF> mediaSpaceFree() const = 0;

    /// Ejects the disc. Returns whether that worked; false while a burn uses the drive.
    virtual bool ejectMedia() = 0;

    /// Returns why the drive cannot be used now, in one English sentence without a full stop, and
    /// in brackets what can be done; empty if it can be used, or if nothing is known. May take half
    /// a second. The default returns an empty text.
    virtual std::string accessProblem() const;
};

} // namespace quarner
