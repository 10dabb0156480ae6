// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/Commands.h"

#include <memory>
#include <optional>
#include <stop_token>
#include <thread>
#include <utility>

#include "quarner/display.h"
#include "quarner/playlist.h"
#include "quarner/project/DiscProject.h"
#include "tools/quarner/command/BurnQuestion.h"
#include "tools/quarner/command/DriveChoice.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;
using Phase = DiscBurnProgress::Phase;

/// What the project has reported.
struct Reports : DiscProjectObserver {
    void fileRefused(const std::string& /*path*/, RefusalReason /*reason*/,
                     const std::string& /*text*/) override {
        ++refusedCount;
    }
    void burnProgress(const DiscBurnProgress& progress) override { phase = progress.phase; }
    void burnEnded(const DiscBurnEnd& burnEnd) override { end = burnEnd; }

    std::size_t refusedCount = 0;
    std::optional<Phase> phase; // of the burn, once it has begun
    std::optional<DiscBurnEnd> end;
};

ExitStatus statusFor(DRError code) {
    const bool isOfSize = code == DRError::MediaTooSmall || code == DRError::TooManyTracks;
    return isOfSize ? ExitStatus::DoesNotFit : ExitStatus::Failed;
}

/// Whether another disc in the drive would solve a problem.
bool isOfDisc(DRError code) {
    return code == DRError::MediaNotPresent || code == DRError::MediaNotWritable ||
           code == DRError::WrongMedia || code == DRError::MediaTooSmall;
}

/// For one run.
class BurnCommand {
public:
    BurnCommand(Host& host, BurnOptions options, std::shared_ptr<View> view);
    ~BurnCommand();
    ExitStatus run();

private:
    /// How it ended, in a number and in a sentence.
    struct Outcome {
        ExitStatus status = ExitStatus::Canceled;
        std::string text;
    };

    Outcome perform();
    void interrupt();
    void runUntil(const std::function<bool()>& isOver);
    std::vector<std::string> findFiles();
    void addFiles();
    void waitForDrive();
    void waitForDisc();
    std::optional<DiscProblem> firstProblem() const;
    Compilation compilation() const;
    bool isAsked() const;
    BurnAnswer ask();
    Outcome burn();
    void ejectDisc();
    Outcome refusal() const;
    Outcome cancellation() const;
    const char* messageOfCancellation() const;

    Host& _host;
    const BurnOptions _options;
    const std::shared_ptr<View> _view;
    const std::string _driveName;
    const std::shared_ptr<Reports> _reports;
    DiscProject _project;
    const DiscDrive::Id _drive; ///< 0 if it is gone already
    bool _isInterrupted = false;
};

BurnCommand::BurnCommand(Host& host, BurnOptions options, std::shared_ptr<View> view)
    : _host(host), _options(std::move(options)), _view(std::move(view)),
      _driveName(chooseDrive(host, _options.target, _options.kind)),
      _reports(std::make_shared<Reports>()), _project(_options.kind),
      _drive(_project.driveNamed(_driveName).value_or(0)) {
    if (isAsked() && !_host.terminal->show && !_options.dryRun)
        throw UsageProblem(_("the question cannot be shown; --yes burns without asking"));
    _project.setDelegate(_view);
    _project.addObserver(_view);
    _project.addObserver(_reports);
}

BurnCommand::~BurnCommand() { _host.onInterruption(nullptr); }

ExitStatus BurnCommand::run() {
    _host.onInterruption([this] { interrupt(); });
    Outcome outcome;
    try {
        outcome = perform();
    } catch (const EndedAtOnce&) {
        _host.endPlatform(); // may wait for a drive: the process is ended then, and says so
        outcome = cancellation();
    }
    _view->didEnd(outcome.status, outcome.text);
    return outcome.status;
}

BurnCommand::Outcome BurnCommand::perform() {
    addFiles();
    if (_options.wait)
        waitForDisc();
    const Compilation compiled = compilation();
    _view->compilationIsComplete(compiled);
    if (_isInterrupted)
        return cancellation();
    if (compiled.items->empty() || (_reports->refusedCount > 0 && !_options.keepGoing))
        return refusal();
    auto answer = BurnAnswer::OtherDisc;
    for (bool isFirst = true; answer == BurnAnswer::OtherDisc; isFirst = false) {
        if (isAsked()) // about the disc as it is now
            examineDisc(_project, _drive, [this](const auto& isOver) { runUntil(isOver); });
        if (const auto problem = firstProblem()) {
            _view->burnIsRefused(*problem);
            return {statusFor(problem->code), explained(problem->text, "", problem->advice)};
        }
        if (_options.dryRun)
            return {ExitStatus::Success, _("Dry run: nothing was written.")};
        if (!isFirst)
            _host.terminal->show(_("The disc was changed."));
        answer = ask();
    }
    return answer == BurnAnswer::Yes && !_isInterrupted ? burn() : cancellation();
}

/// Waits until `isOver` or Ctrl-C. Not for the adding of files and the burn: Ctrl-C cancels these,
/// and they end soon.
void BurnCommand::runUntil(const std::function<bool()>& isOver) {
    _host.loop.runUntil([&] { return _isInterrupted || isOver(); });
}

void BurnCommand::interrupt() {
    _isInterrupted = true;
    _project.cancelAdding();
    _project.cancelBurn();
}

// --- Files ---

/// In the background, as folders may be large.
std::vector<std::string> BurnCommand::findFiles() {
    const auto searched =
        _options.recursive ? DiscProject::fileExtensions() : std::vector<std::string>();
    std::vector<std::string> files;
    const auto isDone = std::make_shared<bool>(false); // the loop may outlive an interrupted search
    {
        const std::jthread search(
            [&](const std::stop_token& stop) { // stops at the end of its scope
                files = filesToAdd(_options.files, searched, stop);
                _host.loop.post([isDone] { *isDone = true; });
            });
        runUntil([&] { return *isDone; });
    }
    return files;
}

void BurnCommand::addFiles() {
    const std::vector<std::string> files = findFiles();
    if (_isInterrupted)
        return;
    _options.sort ? _project.addSorted(files) : _project.add(files);
    waitForDrive();
    _host.loop.runUntil([this] { return !_project.isAdding(); });
    runUntil([this] { return _project.capacity(_drive).isExact; });
}

Compilation BurnCommand::compilation() const {
    return {_options.kind, _project.items(), _project.capacity(_drive)};
}

BurnCommand::Outcome BurnCommand::refusal() const {
    if (_project.items()->empty())
        return {ExitStatus::Refused, _reports->refusedCount == 0
                                         ? _("there is nothing to burn: no audio file was found")
                                         : _("nothing is left to burn")};
    return {ExitStatus::Refused,
            _("files were refused, so nothing was burnt; --keep-going burns the rest")};
}

// --- The drive and its disc ---

/// A drive that cannot be opened need not wait for the files.
void BurnCommand::waitForDrive() {
    std::optional<DiscDrive> drive;
    runUntil([&] {
        drive = _project.drive(_drive);
        return !drive || drive->isExamined;
    });
    if (drive && !drive->problem.empty())
        throw UsageProblem(safeText(textForUnusableDrive(*drive)));
}

void BurnCommand::waitForDisc() {
    std::optional<DiscProblem> shown;
    runUntil([&] {
        const auto problem = firstProblem();
        if (!problem || !isOfDisc(problem->code))
            return true;
        if (problem != shown)
            _view->waitsFor(*problem);
        shown = problem;
        return false;
    });
}

std::optional<DiscProblem> BurnCommand::firstProblem() const {
    const std::vector<DiscProblem> problems = _project.problems(_drive);
    return problems.empty() ? std::nullopt : std::optional(problems.front());
}

/// Whether somebody is there to be asked before a disc is used up.
bool BurnCommand::isAsked() const {
    return _host.terminal && !_options.yes && !_options.target.image;
}

BurnAnswer BurnCommand::ask() {
    if (!isAsked())
        return BurnAnswer::Yes;
    return askToBurn(_project, _drive, *_host.terminal, _options.title.value_or(""),
                     [this](const auto& isOver) { runUntil(isOver); });
}

// --- The burn ---

BurnCommand::Outcome BurnCommand::burn() {
    _project.burn(_drive, _options.title.value_or(""));
    _host.loop.runUntil([this] { return _reports->end.has_value(); });
    const DiscBurnEnd& end = *_reports->end;
    switch (end.outcome) {
    case DiscBurnEnd::Outcome::Done:
        if (_options.eject)
            ejectDisc();
        return {ExitStatus::Success, end.text};
    case DiscBurnEnd::Outcome::Canceled:
        return cancellation();
    case DiscBurnEnd::Outcome::Failed:
        break;
    }
    const DRError code = end.code.value_or(DRError::Internal);
    return {statusFor(code), explained(end.text, end.info.message, end.advice)};
}

/// A disc that stays in the drive is burnt all the same.
void BurnCommand::ejectDisc() {
    const auto problem = std::make_shared<std::optional<std::string>>();
    _project.eject(_drive, [problem](const std::string& text) { *problem = text; });
    _host.loop.runUntil([&] { return problem->has_value(); });
    if (*problem)
        _view->ejectionDidEnd(_driveName, **problem);
}

BurnCommand::Outcome BurnCommand::cancellation() const {
    return {ExitStatus::Canceled, _(messageOfCancellation())};
}

const char* BurnCommand::messageOfCancellation() const {
    // A burn that was ended at once reports its end to nobody, and may have ended before.
    const bool isUnknown = _reports->phase && !_reports->end;
    if (!_reports->phase || _options.target.image)
        return isUnknown
                   ? translatable(
                         "cancelled; nothing was written, unless the image was complete already")
                   : translatable("cancelled; nothing was written");
    if (_reports->phase == Phase::Verifying)
        return translatable("cancelled; the disc is complete, but was not verified");
    return isUnknown ? translatable("cancelled; the disc may not be usable")
                     : translatable("cancelled; the disc is not usable");
}

} // namespace

ExitStatus burn(Host& host, const BurnOptions& options, const std::shared_ptr<View>& view) {
    return BurnCommand(host, options, view).run();
}

std::string explained(const std::string& text, const std::string& detail,
                      const std::string& advice) {
    std::string all = text;
    for (const std::string* more : {&detail, &advice})
        if (!more->empty())
            all += "\n" + safeText(*more);
    return all;
}

} // namespace quarner::cli
