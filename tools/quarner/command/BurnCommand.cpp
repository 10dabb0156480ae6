// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/BurnCommand.h"

#include <algorithm>
#include <utility>

#include "quarner/platform/DRErrors.h"
#include "quarner/platform/DiscFormat.h"
#include "tools/quarner/command/BurnProblems.h"
#include "tools/quarner/command/DriveChoice.h"
#include "tools/quarner/command/Refusals.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {

BurnCommand::BurnCommand(Host& host, BurnOptions options, View& view)
    : _host(host), _options(std::move(options)), _disc(traitsOf(_options.kind)), _view(view),
      _device(chooseUsableDrive(host, _options.target, _options.kind)),
      _relay(host.loop, {&view, this}), _burner(_disc.makeBurner()) {
    if (isAsked() && !_host.terminal->show && !_options.dryRun)
        throw UsageProblem("the question cannot be shown; --yes burns without asking");
    _burner->setDelegate(&_relay);
    _burner->reportRefusals([this](const FileRefusal& refused) {
        _host.loop.post([this, refused] { refuse(refused); });
    });
}

BurnCommand::~BurnCommand() {
    _host.onInterruption(nullptr);
    _burner->setDelegate(nullptr);
    _burner->reportRefusals(nullptr);
}

ExitStatus BurnCommand::run() {
    _host.onInterruption([this] { interrupt(); });
    const Outcome outcome = performOrEndAtOnce();
    _view.didEnd(outcome.status, outcome.text);
    return outcome.status;
}

BurnCommand::Outcome BurnCommand::performOrEndAtOnce() {
    try {
        return perform();
    } catch (const EndedAtOnce&) {
        _host.endPlatform(); // a run that adds files must not outlive its delegate
        return cancellation();
    }
}

BurnCommand::Outcome BurnCommand::perform() {
    addFiles();
    Compilation compiled = compilation();
    _view.compilationIsComplete(compiled);
    if (_isInterrupted)
        return cancellation();
    if (compiled.items.empty() || (_refusedCount > 0 && !_options.keepGoing))
        return refusal();
    if (const auto outcome = hindrance(compiled))
        return *outcome;
    if (_options.dryRun)
        return {ExitStatus::Success, "Dry run: nothing was written."};
    auto answer = ask();
    while (answer == BurnQuestion::Answer::OtherDisc) {
        compiled = compilation();
        if (const auto outcome = hindrance(compiled))
            return *outcome;
        _host.terminal->show("The disc was changed.");
        answer = ask();
    }
    const bool isAllowed = answer == BurnQuestion::Answer::Yes && !_isInterrupted;
    return isAllowed ? burn(compiled) : cancellation();
}

/// The end where the burn need not be begun.
std::optional<BurnCommand::Outcome> BurnCommand::hindrance(const Compilation& compiled) const {
    const std::string problem = _options.target.image ? std::string() : discProblem(_host, _device);
    if (!problem.empty())
        return Outcome{ExitStatus::Failed, "nothing was burnt: " + problem};
    if (compiled.overflow)
        return overflow(compiled);
    if (_options.kind == DiscKind::Audio && compiled.items.size() > mostTracks)
        return Outcome{ExitStatus::DoesNotFit,
                       "a disc holds at most " + std::to_string(mostTracks) +
                           " tracks, but there are " + std::to_string(compiled.items.size())};
    return std::nullopt;
}

/// Whether somebody is there to be asked before a disc is used up.
bool BurnCommand::isAsked() const {
    return _host.terminal && !_options.yes && !_options.target.image;
}

BurnQuestion::Answer BurnCommand::ask() {
    if (!isAsked())
        return BurnQuestion::Answer::Yes;
    _isAsking = true;
    BurnQuestion question(_host.loop, *_host.terminal, _device.deviceName().value_or(""),
                          _options.title);
    const BurnQuestion::Answer answer = question.ask();
    _isAsking = false;
    return answer;
}

// Neither call does anything unless there is something to stop.
void BurnCommand::interrupt() {
    _isInterrupted = true;
    _burner->cancelToAddFiles();
    _burner->stopBurn();
    if (_isAsking)
        _host.loop.quit();
}

void BurnCommand::addFiles() {
    if (!_burner->addFiles(_options.files)) // which then reports no end
        _host.loop.post([this] { _host.loop.quit(); });
    _host.loop.run();
}

void BurnCommand::addFilesProgressDidEnd(const EndReport& /*report*/) { _host.loop.quit(); }

void BurnCommand::refuse(const FileRefusal& refusal) {
    ++_refusedCount;
    _host.console.error("quarner: " + safeText(refusal.path) + ": " +
                        reasonText(refusal, *_burner));
}

Compilation BurnCommand::compilation() const {
    Compilation compiled;
    compiled.kind = _options.kind;
    const std::uint64_t count = _burner->numberOfChildrenOfBurnItem(nullptr);
    for (std::uint64_t i = 0; i < count; ++i)
        compiled.items.push_back(*_burner->propertyOfBurnItem(_burner->child(i, nullptr)));
    compiled.used = _burner->usedCapacity();
    compiled.free = _disc.freeCapacity(_device);
    compiled.hasDisc = _device.isDiscInDevice();
    compiled.overflow = _burner->isContentOverflowForDevice(_device);
    return compiled;
}

BurnCommand::Outcome BurnCommand::burn(const Compilation& compiled) {
    if (_device.device()) {
        _isStarted = true;
        _burner->burnWithDevice(_device, _options.title);
        _host.loop.run();
    } else { // of which a burner of data discs says nothing
        _error.code = signedCode(DRError::DeviceVanished);
    }
    switch (_burnEnd) {
    case BurnEnd::Done:
        return success(compiled);
    case BurnEnd::Canceled:
        return cancellation();
    default:
        return failure(compiled);
    }
}

void BurnCommand::burnProgressIsVerifying() { _isVerifying = true; }

void BurnCommand::burnProgressDidDone() {
    _burnEnd = BurnEnd::Done;
    _host.loop.quit();
}

void BurnCommand::burnProgressDidCanceled() {
    _burnEnd = BurnEnd::Canceled;
    _host.loop.quit();
}

void BurnCommand::burnProgressDidError(const BurnError& error) {
    _burnEnd = BurnEnd::Error;
    _error = error;
    _host.loop.quit();
}

BurnCommand::Outcome BurnCommand::refusal() const {
    const std::size_t count = _options.files.size();
    if (_refusedCount >= count)
        return {ExitStatus::Refused, "nothing is left to burn"};
    return {ExitStatus::Refused, counted(_refusedCount, "file") + " of " + std::to_string(count) +
                                     " refused, so nothing was burnt; --keep-going burns the rest"};
}

BurnCommand::Outcome BurnCommand::overflow(const Compilation& compiled) const {
    const std::size_t count = compiled.items.size();
    const std::string items = "the " + _disc.items(count) + _disc.pauses(count);
    const std::string excess =
        compiled.used > compiled.free
            ? _disc.capacityText(compiled.used - compiled.free) + " " + _disc.excess
            : _disc.overhead;
    return {ExitStatus::DoesNotFit,
            items + (count == 1 && _disc.pauses(count).empty() ? " takes " : " take ") +
                _disc.capacityText(compiled.used) + ", and the disc has room for " +
                _disc.capacityText(compiled.free) + ": " + excess};
}

BurnCommand::Outcome BurnCommand::cancellation() const {
    return {ExitStatus::Canceled, std::string("cancelled; ") + leftByCancellation()};
}

const char* BurnCommand::leftByCancellation() const {
    // A burn that was ended at once reports its end to nobody, and may have ended before.
    const bool isUnknown = _isStarted && _burnEnd == BurnEnd::None;
    if (!_isStarted || _options.target.image)
        return isUnknown ? "nothing was written, unless the image was complete already"
                         : "nothing was written";
    if (_isVerifying)
        return "the disc is complete, but was not verified";
    return isUnknown ? "the disc may not be usable" : "the disc is not usable";
}

BurnCommand::Outcome BurnCommand::success(const Compilation& compiled) const {
    const std::string place = safeText(_options.target.image.value_or(*_device.deviceName()));
    return {ExitStatus::Success,
            "Burnt and verified: " + counted(compiled.items.size(), _disc.oneItem) + ", " +
                _disc.capacityText(compiled.used) + ", on " + place};
}

BurnCommand::Outcome BurnCommand::failure(const Compilation& compiled) const {
    if (_error.code == signedCode(DRError::MediaTooSmall) || (_error.code == 0 && compiled.hasDisc))
        return overflow(compiled);
    const std::int64_t code = _error.code == 0 ? signedCode(DRError::MediaNotPresent) : _error.code;
    return {ExitStatus::Failed,
            "the burn failed: " +
                explainedFailure(code, _error.info.message, _disc.imageBytes(compiled.used))};
}

} // namespace quarner::cli
