// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "quarner/front/QuarnDelegate.h"
#include "quarner/platform/Export.h"
#include "quarner/platform/Value.h"
#include "quarner/project/DiscDrive.h"
#include "quarner/project/DiscProjectObserver.h"

namespace quarner {

/// Receives what a project and its burner report as records, in one operation: for a log, a script,
/// or a bridge to another process or language. Give it to `DiscProject::setDelegate`, which then
/// reports every call of the delegate, and to `DiscProject::addObserver`, which adds "fileRefused",
/// "burnProgress" and "burnEnded". The other events of an observer are no records: override them.
class QUARNER_EXPORT DiscProjectRecords : public QuarnDelegate, public DiscProjectObserver {
public:
    /// The arguments of an event by their keys, in their order. A path is followed by its `file:`
    /// URI, which keeps bytes that are not UTF-8. What is missing has no entry.
    using Arguments = std::vector<std::pair<std::string, Value>>;

    /// One event: the name of the operation, and its arguments. Called like any observer.
    virtual void record(const std::string& event, const Arguments& arguments) = 0;

    // --- Calls of the delegate ---

    void allFilesDidCleared() override;
    void burnItemDidDelete(const BurnItemRef& item) override;
    void burnItemsDidDelete(const BurnItemList& items) override;
    void burnItemDidSorted() override;
    void addFilesProgressDidStarted() override;
    void addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                    std::uint64_t of) override;
    void fileDidAdded(const Dictionary& item) override;
    void addFilesProgressDidCanceled() override;
    void addFilesProgressDidEnd(const EndReport& report) override;
    void burnProgressDidStarted() override;
    void burnProgressDidError(const BurnError& error) override;
    void burnProgressDidChanaged(double fraction, std::uint64_t lefttime) override;
    void burnProgressIsPreparing() override;
    void burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) override;
    void burnProgressDidCloseSession() override;
    void burnProgressIsFinishing() override;
    void burnProgressIsVerifying() override;
    void burnProgressDidDone() override;
    void burnProgressDidCanceled() override;

    // --- Calls of the observer ---

    void fileRefused(const std::string& path, RefusalReason reason,
                     const std::string& text) override;
    void burnProgress(const DiscBurnProgress& progress) override;
    void burnEnded(const DiscBurnEnd& end) override;
};

/// What is known of a drive and its disc as a record: "name", "present", "kind", "cd", "blank",
/// "appendable", "erasable", "overwritable", "usedTime" and "freeTime" in seconds, "usedSize" and
/// "freeSize" in bytes, "speeds" in sectors per second. Any thread.
QUARNER_EXPORT DiscProjectRecords::Arguments recordOf(const DiscDrive& drive);

} // namespace quarner
