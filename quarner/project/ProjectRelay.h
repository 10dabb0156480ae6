// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "quarner/front/FileRefusal.h"
#include "quarner/front/QuarnDelegate.h"
#include "quarner/project/DiscBurn.h"

namespace quarner {

class ProjectCore;

/// The delegate of a project's burner. Forwards every call to the host's delegate. Hands what comes
/// on the threads of runs to the main loop, in order and all that has come by then at once, so that
/// a run of many small files does not keep the loop busy. The burner owns it, so it outlives every
/// run.
class ProjectRelay : public QuarnDelegate, public std::enable_shared_from_this<ProjectRelay> {
public:
    explicit ProjectRelay(std::weak_ptr<ProjectCore> core) : _core(std::move(core)) {}

    /// Called by the burner when its list has changed. Any thread.
    void listDidChange();
    /// Called by the burner when it has refused a file. Any thread.
    void fileDidRefuse(const FileRefusal& refusal);

    /// Of a run in which no file was accepted, whose end the burner does not report.
    void emptyRunDidEnd();

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

private:
    using Report = std::function<void(ProjectCore&)>;

    template <auto operation, typename... Arguments>
    void pass(const Arguments&... arguments);
    template <auto operation, typename... Arguments>
    void passOnMain(const Arguments&... arguments);
    void post(Report report);
    void deliver();
    void tellCore(const Report& report);
    void enter(DiscBurnProgress::Phase phase, std::int64_t track = 0, std::int64_t of = 0);

    const std::weak_ptr<ProjectCore> _core;
    std::mutex _mutex;
    std::deque<Report> _reports;
    bool _isPosted = false;
};

} // namespace quarner
