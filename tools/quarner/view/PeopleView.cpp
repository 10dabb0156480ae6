// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/PeopleView.h"

#include <algorithm>
#include <cmath>

#include "tools/quarner/text/CapacityBar.h"
#include "tools/quarner/text/SafeText.h"

namespace quarner::cli {
namespace {

std::string progressText(int tenth, std::optional<std::uint64_t> lefttime) {
    const std::string left = lefttime ? ", " + timeLeftText(*lefttime) + " left" : "";
    return ": " + std::to_string(tenth * 10) + "%" + left;
}

} // namespace

std::string BurnStep::text() const {
    switch (stage) {
    case Stage::Preparing:
        return "Preparing";
    case Stage::Writing:
        return "Writing track " + std::to_string(track) + " of " + std::to_string(of);
    case Stage::Closing:
        return "Closing the disc";
    case Stage::Finishing:
        return "Finishing";
    case Stage::Verifying:
        return "Verifying";
    }
    return {};
}

void PeopleView::addFilesProgressDidCanceled() { _console.status(""); }

void PeopleView::burnProgressDidChanaged(double fraction, std::uint64_t lefttime) {
    _step.fraction = fraction;
    keepTimeLeft(lefttime);
    _hasNewProgress = true;
}

void PeopleView::burnProgressIsPreparing() { enter(BurnStep::Stage::Preparing); }

void PeopleView::burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) {
    enter(BurnStep::Stage::Writing, track, of);
}

void PeopleView::burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) {
    enter(BurnStep::Stage::Writing, track, of);
}

void PeopleView::burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) {
    enter(BurnStep::Stage::Writing, track, of);
}

void PeopleView::burnProgressDidCloseSession() { enter(BurnStep::Stage::Closing); }

void PeopleView::burnProgressIsFinishing() { enter(BurnStep::Stage::Finishing); }

void PeopleView::burnProgressIsVerifying() { enter(BurnStep::Stage::Verifying); }

void PeopleView::enter(BurnStep::Stage stage, std::int64_t track, std::int64_t of) {
    // A progress is told before the state that it belongs to. Without one, a new stage begins at 0.
    if (!_hasNewProgress && stage != _step.stage) {
        _step.fraction = 0;
        keepTimeLeft(0);
    }
    _hasNewProgress = false;
    _step.stage = stage;
    _step.track = track;
    _step.of = of;
    show(_step);
}

void PeopleView::keepTimeLeft(std::uint64_t seconds) {
    if (_step.lefttime)
        _step.lefttime = seconds;
}

void PeopleView::compilationIsComplete(const Compilation& compilation) {
    if (!traitsOf(compilation.kind).tellsTimeLeft)
        _step.lefttime.reset();
    _console.status("");
    if (compilation.items.empty())
        return;
    const std::size_t columns = _console.screen().columns();
    for (const std::string& line : trackList(compilation, columns))
        _console.line(line);
    _console.line(usageLine(compilation, columns, _console.screen().isUtf8));
}

void PeopleView::didEnd(ExitStatus status, const std::string& outcome) {
    _console.status("");
    if (outcome.empty())
        return;
    if (status == ExitStatus::Success)
        _console.line(outcome);
    else
        _console.error("quarner: " + outcome);
}

void PlainView::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                           std::uint64_t of) {
    console().line("Adding " + std::to_string(index) + " of " + std::to_string(of) + ": " +
                   safeText(displayName));
}

void PlainView::show(const BurnStep& step) {
    const std::string text = step.text();
    const double kept = step.fraction > 0 ? std::min(step.fraction, 1.0) : 0.0;
    const int tenth = static_cast<int>(std::floor(kept * 10));
    const bool isNewTenth = step.hasProgress() && tenth > 0 && tenth != _lastTenth;
    if (text == _lastStep && !isNewTenth)
        return;
    _lastStep = text;
    _lastTenth = tenth;
    console().line(isNewTenth ? text + progressText(tenth, step.lefttime) : text);
}

void TerminalView::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                              std::uint64_t of) {
    console().status("Adding " + std::to_string(index) + " of " + std::to_string(of) + ": " +
                     safeText(displayName));
}

void TerminalView::show(const BurnStep& step) {
    const Screen& screen = console().screen();
    const std::size_t columns = std::max<std::size_t>(screen.columns(), 2) - 1;
    console().status(step.hasProgress() ? progressLine(step.text(), step.fraction, step.lefttime,
                                                       columns, screen.isUtf8)
                                        : step.text());
}

} // namespace quarner::cli
