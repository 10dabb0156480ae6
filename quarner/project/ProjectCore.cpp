// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/ProjectCore.h"

#include <algorithm>
#include <utility>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/platform/Platform.h"
#include "quarner/platform/Texts.h"
#include "quarner/project/BurnTexts.h"
#include "quarner/project/RefusalTexts.h"

namespace quarner {
namespace {

std::shared_ptr<Quarner> makeBurner(DiscProject::Kind kind) {
    return kind == DiscProject::Kind::Audio ? Quarner::audioCDBurner() : Quarner::dataCDBurner();
}

} // namespace

ProjectCore::ProjectCore(DiscProject::Kind kind) : _kind(kind), _burner(makeBurner(kind)) {}

void ProjectCore::start() {
    _relay = std::make_shared<ProjectRelay>(weak_from_this());
    _burner->setSharedDelegate(_relay);
    _burner->readTags(true);
    _burner->recordChanges([relay = _relay] { relay->listDidChange(); });
    _burner->reportRefusals(
        [relay = _relay](const FileRefusal& refusal) { relay->fileDidRefuse(refusal); });
    const auto whenChanged = [weak = weak_from_this()](void (ProjectCore::*report)()) {
        return [weak, report] {
            if (const auto core = weak.lock())
                (*core.*report)();
        };
    };
    if (_kind == DiscProject::Kind::Data)
        _dataSize = std::make_shared<DataSize>(whenChanged(&ProjectCore::capacityDidChange));
    _drives = std::make_shared<DriveBoard>(whenChanged(&ProjectCore::drivesDidChange));
    _drives->start();
}

void ProjectCore::close() {
    _isClosed = true;
    _observers.close();
    _delegate.reset();
    _burner->recordChanges(nullptr);
    _burner->cancelToAddFiles();
    _burner->stopBurn();
}

// --- The list ---

/// Applies what the burner's list has gone through since the last call.
void ProjectCore::applyChanges() {
    const std::vector<ListChange> changes = _burner->takeChanges();
    if (changes.empty())
        return;
    _observers.send(_rows.apply(changes));
    if (_dataSize)
        _dataSize->setItems(_burner->items());
    capacityDidChange();
}

void ProjectCore::remove(const std::set<std::size_t>& rows) {
    const BurnItemList items = _rows.itemsIn(rows);
    if (items.empty())
        return;
    _burner->removeItems(items);
    applyChanges();
}

void ProjectCore::move(const std::set<std::size_t>& rows, std::size_t to) {
    if (rows.empty() || *rows.rbegin() >= _rows.size())
        return;
    const std::size_t end = std::min(to, _rows.size());
    _burner->moveItems(_rows.itemsIn(rows), end == 0 ? nullptr : _rows[end - 1]->item);
    applyChanges();
}

void ProjectCore::clear() {
    _burner->clearAll();
    applyChanges();
}

// --- Adding files ---

/// The burner would revive the runs that are being cancelled, so a new one waits for their end.
bool ProjectCore::isDeferred(std::function<void()> add) {
    if (_isCanceling)
        _deferredAdds.push_back(std::move(add));
    return _isCanceling;
}

void ProjectCore::add(const std::vector<std::string>& paths, std::optional<std::size_t> row) {
    if (isDeferred([this, paths, row] { add(paths, row); }))
        return;
    if (!row) {
        beginRun(_burner->addFilesInOrder(paths));
        return;
    }
    applyChanges();
    const bool isAtEnd = *row >= _rows.size();
    const std::size_t before = std::min(*row, _rows.size());
    if (isAtEnd)
        beginRun(_burner->addFilesInOrder(paths, _burner->items().size()));
    else
        beginRun(_burner->addFilesBehind(paths, before == 0 ? nullptr : _rows[before - 1]->item));
}

void ProjectCore::addSorted(const std::vector<std::string>& paths) {
    if (isDeferred([this, paths] { addSorted(paths); }))
        return;
    beginRun(_burner->addFiles(paths));
}

/// A run in which no file was accepted reports no end, so its end is reported for it.
void ProjectCore::beginRun(bool isAnyAccepted) {
    ++_startedRuns;
    if (!isAnyAccepted)
        _relay->emptyRunDidEnd();
}

void ProjectCore::cancelAdding() {
    _deferredAdds.clear();
    _isCanceling = _startedRuns != 0;
    _burner->cancelToAddFiles();
}

void ProjectCore::runDidStart(Run run) { _runs[run] = {}; }

void ProjectCore::runDidProceed(Run run, const std::string& displayName, std::size_t index,
                                std::size_t of) {
    _runs[run] = {index, of};
    RunProgress sum = _endedRuns;
    for (const auto& [thread, progress] : _runs) {
        sum.index += progress.index;
        sum.of += progress.of;
    }
    tell([displayName, sum](DiscProjectObserver& observer) {
        observer.addingProgress(displayName, sum.index, sum.of);
    });
}

void ProjectCore::runDidEnd(Run run) {
    if (const auto ended = _runs.extract(run)) {
        _endedRuns.index += ended.mapped().of;
        _endedRuns.of += ended.mapped().of;
    }
    applyChanges();
    if (--_startedRuns != 0)
        return;
    _endedRuns = {};
    const bool isCanceled = std::exchange(_isAddingCanceled, false);
    _isCanceling = false;
    const std::vector<std::function<void()>> adds = std::exchange(_deferredAdds, {});
    tell([isCanceled](DiscProjectObserver& observer) { observer.addingEnded(isCanceled); });
    for (const auto& add : adds)
        if (!_isClosed)
            add();
}

void ProjectCore::refuse(const FileRefusal& refusal) {
    tell([refusal](DiscProjectObserver& observer) {
        observer.fileRefused(refusal.path, refusal.reason, textForRefusal(refusal));
    });
}

// --- Drives and capacity ---

void ProjectCore::drivesDidChange() {
    tell([](DiscProjectObserver& observer) { observer.drivesChanged(); });
    capacityDidChange();
}

void ProjectCore::capacityDidChange() {
    tell([](DiscProjectObserver& observer) { observer.capacityChanged(); });
}

/// A call for the host, which is dropped once the project is closed.
template <typename... Arguments>
std::function<void(Arguments...)> ProjectCore::whileOpen(std::function<void(Arguments...)> call) {
    return [weak = weak_from_this(), call = std::move(call)](Arguments... arguments) {
        const auto core = weak.lock();
        if (core && !core->_isClosed && call)
            call(arguments...);
    };
}

void ProjectCore::examine(DiscDrive::Id id, std::function<void()> done) {
    _drives->examine(id, whileOpen(std::move(done)));
}

void ProjectCore::eject(DiscDrive::Id id, std::function<void(const std::string&)> done) {
    const auto dispatch = currentPlatform()->dispatch;
    const auto device = _drives->device(id);
    dispatch->asyncGlobal([=, report = whileOpen(std::move(done))] {
        dispatch->asyncMain([report, problem = ejectDisc(device)] { report(problem); });
    });
}

ContentSize ProjectCore::contentSize() const {
    const auto blocks = _dataSize ? _dataSize->blocks() : std::nullopt;
    return measureContent(_kind, _burner->items(), blocks);
}

DiscCapacity ProjectCore::capacity(std::optional<DiscDrive::Id> drive) const {
    return capacityOf(contentSize(), drive ? _drives->drive(*drive) : std::nullopt);
}

std::vector<DiscProblem> ProjectCore::problems(DiscDrive::Id drive) const {
    return problemsOf(contentSize(), _drives->drive(drive), _isBurning);
}

// --- The burn ---

bool ProjectCore::burn(DiscDrive::Id drive, const std::string& title) {
    if (std::exchange(_isBurning, true))
        return false;
    const auto self = shared_from_this(); // an observer may destroy the project
    _burnedDrive = drive;
    _progress = {};
    _newFraction.reset();
    _overall = {};
    _isCancelWanted = false;
    applyChanges();
    capacityDidChange(); // the drive is busy now
    reportProgress();
    if (!_isClosed)
        beginBurn(title);
    return true;
}

void ProjectCore::beginBurn(const std::string& title) {
    const auto name = title.empty() ? std::nullopt : std::optional(title);
    const auto drive = _drives->drive(_burnedDrive);
    if (_isCancelWanted) {
        endBurn({.outcome = DiscBurnEnd::Outcome::Canceled});
    } else if (!drive) {
        fail(DRError::DeviceVanished, {});
    } else if (!drive->canWrite) { // the recording service would try
        refuseBurn({});
    } else if (_rows.size() == 0) { // the burner of data CDs would burn an empty disc
        fail(DRError::EmptyLayout, {});
    } else {
        _burner->burnWithDevice(QuarnerDevice(_drives->device(_burnedDrive)), name);
        if (_isClosed || _isCancelWanted) // during the call
            _burner->stopBurn();
    }
}

void ProjectCore::cancelBurn() {
    _isCancelWanted = _isBurning;
    _burner->stopBurn();
}

void ProjectCore::burnDidEnter(DiscBurnProgress::Phase phase, std::int64_t track, std::int64_t of) {
    const bool isOtherPhase = phase != _progress.phase;
    const auto fraction = std::exchange(_newFraction, std::nullopt);
    _progress.phase = phase;
    _progress.track = track;
    _progress.trackCount = of;
    if (fraction || isOtherPhase)
        _progress.phaseFraction = fraction.value_or(0);
    reportProgress();
}

/// The burner reports the fraction first and then the phase that it is of.
void ProjectCore::burnDidProceed(double fraction) { _newFraction = fraction; }

void ProjectCore::reportProgress() {
    _progress.phaseSecondsLeft.reset();
    _overall.update(_progress, OverallProgress::Clock::now());
    _progress.text = textForBurnStep(_progress);
    _progress.timeLeftText = _progress.secondsLeft ? textForTimeLeft(*_progress.secondsLeft) : "";
    tell(
        [progress = _progress](DiscProjectObserver& observer) { observer.burnProgress(progress); });
}

/// Code 0 stands for a burn that was refused before it began.
void ProjectCore::burnDidFail(const BurnError& error) {
    if (error.code == 0)
        refuseBurn(error.info);
    else
        fail(static_cast<DRError>(static_cast<std::uint32_t>(error.code)), error.info);
}

/// Ends a burn that was refused before it began, with what stands in its way.
void ProjectCore::refuseBurn(const BurnErrorInfo& info) {
    const auto drive = _drives->drive(_burnedDrive);
    const auto problems = problemsOf(contentSize(), drive, false);
    if (problems.empty()) // so the drive is attached, as one that is not would be a problem
        return fail(drive->hasDisc ? DRError::MediaTooSmall : DRError::MediaNotPresent, info);
    endBurn({.outcome = DiscBurnEnd::Outcome::Failed,
             .code = problems.front().code,
             .text = problems.front().text,
             .info = info,
             .advice = problems.front().advice});
}

void ProjectCore::fail(DRError code, const BurnErrorInfo& info) {
    endBurn({.outcome = DiscBurnEnd::Outcome::Failed,
             .code = code,
             .text = textForBurnError(code),
             .info = info,
             .advice = adviceForBurnError(code, contentSize().imageBytes())});
}

void ProjectCore::endBurn(DiscBurnEnd end) {
    if (!_isBurning)
        return;
    if (end.outcome == DiscBurnEnd::Outcome::Done) {
        _progress.phaseFraction = 1;
        reportProgress();
        end.text = text("The disc is burnt and verified.");
    } else if (end.outcome == DiscBurnEnd::Outcome::Canceled) {
        end.text = textForBurnError(DRError::UserCanceled);
    }
    _isBurning = false;
    tell([end = std::move(end)](DiscProjectObserver& observer) { observer.burnEnded(end); });
    capacityDidChange();
}

} // namespace quarner
