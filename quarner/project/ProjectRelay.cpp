// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/ProjectRelay.h"

#include <utility>

#include "quarner/platform/Platform.h"
#include "quarner/project/ProjectCore.h"

namespace quarner {

using Phase = DiscBurnProgress::Phase;

/// Queues a report for the main loop. One posted call delivers all that have come by then.
void ProjectRelay::post(Report report) {
    {
        const std::lock_guard lock(_mutex);
        _reports.push_back(std::move(report));
        if (std::exchange(_isPosted, true))
            return;
    }
    currentPlatform()->dispatch->asyncMain([weak = weak_from_this()] {
        if (const auto relay = weak.lock())
            relay->deliver();
    });
}

void ProjectRelay::deliver() {
    std::deque<Report> reports;
    {
        const std::lock_guard lock(_mutex);
        _isPosted = false;
        reports.swap(_reports);
    }
    const auto core = _core.lock();
    for (const Report& report : reports)
        if (core)
            report(*core);
}

/// Calls the host's delegate. Main thread.
template <auto operation, typename... Arguments>
void ProjectRelay::pass(const Arguments&... arguments) {
    tellCore([&](ProjectCore& core) {
        if (const auto delegate = core.delegate())
            (delegate.get()->*operation)(arguments...);
    });
}

/// Calls the host's delegate on the main loop. Any thread.
template <auto operation, typename... Arguments>
void ProjectRelay::passOnMain(const Arguments&... arguments) {
    post([this, arguments...](ProjectCore&) { pass<operation>(arguments...); });
}

// --- On the threads of the runs ---

void ProjectRelay::listDidChange() {
    post([](ProjectCore& core) { core.applyChanges(); });
}

void ProjectRelay::addFilesProgressDidStarted() {
    passOnMain<&QuarnDelegate::addFilesProgressDidStarted>();
    post([run = std::this_thread::get_id()](ProjectCore& core) { core.runDidStart(run); });
}

void ProjectRelay::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                              std::uint64_t of) {
    passOnMain<&QuarnDelegate::addFilesProgressDidChanged>(displayName, index, of);
    post([run = std::this_thread::get_id(), displayName, index, of](ProjectCore& core) {
        core.runDidProceed(run, displayName, static_cast<std::size_t>(index),
                           static_cast<std::size_t>(of));
    });
}

void ProjectRelay::fileDidAdded(const Dictionary& item) {
    passOnMain<&QuarnDelegate::fileDidAdded>(item);
}

void ProjectRelay::fileDidRefuse(const FileRefusal& refusal) {
    post([refusal](ProjectCore& core) { core.refuse(refusal); });
}

void ProjectRelay::addFilesProgressDidCanceled() {
    passOnMain<&QuarnDelegate::addFilesProgressDidCanceled>();
    post([](ProjectCore& core) { core.runDidCancel(); });
}

void ProjectRelay::addFilesProgressDidEnd(const EndReport& report) {
    passOnMain<&QuarnDelegate::addFilesProgressDidEnd>(report);
    emptyRunDidEnd();
}

void ProjectRelay::emptyRunDidEnd() {
    post([run = std::this_thread::get_id()](ProjectCore& core) { core.runDidEnd(run); });
}

// --- On the main thread ---

void ProjectRelay::tellCore(const Report& report) {
    if (const auto core = _core.lock())
        report(*core);
}

void ProjectRelay::allFilesDidCleared() { pass<&QuarnDelegate::allFilesDidCleared>(); }

void ProjectRelay::burnItemDidDelete(const BurnItemRef& item) {
    pass<&QuarnDelegate::burnItemDidDelete>(item);
}

void ProjectRelay::burnItemsDidDelete(const BurnItemList& items) {
    pass<&QuarnDelegate::burnItemsDidDelete>(items);
}

void ProjectRelay::burnItemDidSorted() { pass<&QuarnDelegate::burnItemDidSorted>(); }

void ProjectRelay::enter(Phase phase, std::int64_t track, std::int64_t of) {
    tellCore([&](ProjectCore& core) { core.burnDidEnter(phase, track, of); });
}

void ProjectRelay::burnProgressDidStarted() { pass<&QuarnDelegate::burnProgressDidStarted>(); }

void ProjectRelay::burnProgressDidError(const BurnError& error) {
    pass<&QuarnDelegate::burnProgressDidError>(error);
    tellCore([&](ProjectCore& core) { core.burnDidFail(error); });
}

void ProjectRelay::burnProgressDidChanaged(double fraction, std::uint64_t lefttime) {
    pass<&QuarnDelegate::burnProgressDidChanaged>(fraction, lefttime);
    tellCore([&](ProjectCore& core) { core.burnDidProceed(fraction); });
}

void ProjectRelay::burnProgressIsPreparing() {
    pass<&QuarnDelegate::burnProgressIsPreparing>();
    enter(Phase::Preparing);
}

void ProjectRelay::burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) {
    pass<&QuarnDelegate::burnProgressIsOpeningTrack>(track, of);
    enter(Phase::Writing, track, of);
}

void ProjectRelay::burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) {
    pass<&QuarnDelegate::burnProgressIsWriteingTrack>(track, of);
    enter(Phase::Writing, track, of);
}

void ProjectRelay::burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) {
    pass<&QuarnDelegate::burnProgressDidCloseTrack>(track, of);
}

void ProjectRelay::burnProgressDidCloseSession() {
    pass<&QuarnDelegate::burnProgressDidCloseSession>();
    enter(Phase::Closing);
}

void ProjectRelay::burnProgressIsFinishing() {
    pass<&QuarnDelegate::burnProgressIsFinishing>();
    enter(Phase::Finishing);
}

void ProjectRelay::burnProgressIsVerifying() {
    pass<&QuarnDelegate::burnProgressIsVerifying>();
    enter(Phase::Verifying);
}

void ProjectRelay::burnProgressDidDone() {
    pass<&QuarnDelegate::burnProgressDidDone>();
    tellCore([](ProjectCore& core) { core.endBurn({.outcome = DiscBurnEnd::Outcome::Done}); });
}

void ProjectRelay::burnProgressDidCanceled() {
    pass<&QuarnDelegate::burnProgressDidCanceled>();
    tellCore([](ProjectCore& core) { core.endBurn({.outcome = DiscBurnEnd::Outcome::Canceled}); });
}

} // namespace quarner
