// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/ProjectRelay.h"

#include <utility>

#include "quarner/platform/Platform.h"
#include "quarner/project/ProjectCore.h"

namespace quarner {

using Phase = DiscBurnProgress::Phase;

/// Queues a report for the main loop. One posted call delivers all that have come by then.
void ProjectRelay::post(Report report) {
    const std::lock_guard lock(_mutex);
    _reports.push_back(std::move(report));
    if (std::exchange(_isPosted, true))
        return;
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

// --- On the threads of the runs ---

void ProjectRelay::listDidChange() {
    post([](ProjectCore& core) { core.applyChanges(); });
}

void ProjectRelay::addFilesProgressDidStarted() {
    post([run = std::this_thread::get_id()](ProjectCore& core) { core.runDidStart(run); });
}

void ProjectRelay::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                              std::uint64_t of) {
    post([run = std::this_thread::get_id(), displayName, index, of](ProjectCore& core) {
        core.runDidProceed(run, displayName, static_cast<std::size_t>(index),
                           static_cast<std::size_t>(of));
    });
}

void ProjectRelay::fileDidRefuse(const FileRefusal& refusal) {
    post([refusal](ProjectCore& core) { core.refuse(refusal); });
}

void ProjectRelay::addFilesProgressDidCanceled() {
    post([](ProjectCore& core) { core.runDidCancel(); });
}

void ProjectRelay::addFilesProgressDidEnd(const EndReport& /*report*/) {
    post([run = std::this_thread::get_id()](ProjectCore& core) { core.runDidEnd(run); });
}

// --- On the main thread ---

void ProjectRelay::tellCore(const Report& report) {
    if (const auto core = _core.lock())
        report(*core);
}

void ProjectRelay::enter(Phase phase, std::int64_t track, std::int64_t of) {
    tellCore([&](ProjectCore& core) { core.burnDidEnter(phase, track, of); });
}

void ProjectRelay::burnProgressDidError(const BurnError& error) {
    tellCore([&](ProjectCore& core) { core.burnDidFail(error); });
}

void ProjectRelay::burnProgressDidChanaged(double fraction, std::uint64_t /*lefttime*/) {
    tellCore([&](ProjectCore& core) { core.burnDidProceed(fraction); });
}

void ProjectRelay::burnProgressIsPreparing() { enter(Phase::Preparing); }

void ProjectRelay::burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) {
    enter(Phase::Writing, track, of);
}

void ProjectRelay::burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) {
    enter(Phase::Writing, track, of);
}

void ProjectRelay::burnProgressDidCloseSession() { enter(Phase::Closing); }

void ProjectRelay::burnProgressIsFinishing() { enter(Phase::Finishing); }

void ProjectRelay::burnProgressIsVerifying() { enter(Phase::Verifying); }

void ProjectRelay::burnProgressDidDone() {
    tellCore([](ProjectCore& core) { core.endBurn({.outcome = DiscBurnEnd::Outcome::Done}); });
}

void ProjectRelay::burnProgressDidCanceled() {
    tellCore([](ProjectCore& core) { core.endBurn({.outcome = DiscBurnEnd::Outcome::Canceled}); });
}

} // namespace quarner
