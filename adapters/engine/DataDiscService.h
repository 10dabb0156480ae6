// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "adapters/engine/DiscContent.h"
#include "adapters/engine/StopSignal.h"
#include "quarner/platform/DRFolder.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {

/// Makes file systems for data discs. Any thread.
class DataDiscService {
public:
    DataDiscService() = default;
    virtual ~DataDiscService();
    DataDiscService(const DataDiscService&) = delete;
    DataDiscService& operator=(const DataDiscService&) = delete;

    /// A data track of a folder. Its estimate is the exact number of blocks of the folder's file
    /// system, laid out when the estimate is first asked for; it is 0 if the file system cannot be
    /// laid out then, in which case `contentOf` says why.
    virtual std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) = 0;

    /// Returns the file system of a track made by this service, block by block. Throws
    /// `BurnFailure`: with the reason of `stop` once that was requested.
    virtual DiscContent contentOf(const DRTrack& track, const StopSignal& stop) = 0;
};

} // namespace quarner
