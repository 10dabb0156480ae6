// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/PeopleView.h"

#include <algorithm>
#include <cmath>

#include "quarner/display.h"
#include "tools/quarner/text/CapacityBar.h"

namespace quarner::cli {
namespace {

std::string addingText(const std::string& displayName, std::size_t index, std::size_t of) {
    return "Adding " + std::to_string(index) + " of " + std::to_string(of) + ": " +
           safeText(displayName);
}

std::string tenthText(int tenth, const DiscBurnProgress& progress) {
    const std::string& time = progress.timeLeftText;
    const std::string left = time.empty() ? "" : ", " + time + " left";
    return ": " + std::to_string(tenth * 10) + "%" + left;
}

} // namespace

void PeopleView::compilationIsComplete(const Compilation& compilation) {
    console().status("");
    if (compilation.items->empty())
        return;
    const std::size_t columns = console().screen().columns();
    for (const std::string& line : trackList(compilation, columns))
        console().line(line);
    console().line(usageLine(compilation.capacity, columns, console().screen().isUtf8));
}

void PeopleView::waitsFor(const DiscProblem& problem) {
    console().error("quarner: waiting. " + safeText(problem.text + " " + problem.advice));
}

void PeopleView::didEnd(ExitStatus status, const std::string& outcome) {
    console().status("");
    if (outcome.empty())
        return;
    if (status == ExitStatus::Success)
        console().line(outcome);
    else
        console().error("quarner: " + outcome);
}

void PlainView::addingProgress(const std::string& displayName, std::size_t index, std::size_t of) {
    console().line(addingText(displayName, index, of));
}

void PlainView::burnProgress(const DiscBurnProgress& progress) {
    const int tenth = static_cast<int>(std::floor(progress.fraction * 10));
    if (progress.text == _lastStep && tenth == _lastTenth)
        return;
    const bool isNewTenth = tenth != _lastTenth;
    _lastStep = progress.text;
    _lastTenth = tenth;
    console().line(progress.text + (isNewTenth ? tenthText(tenth, progress) : ""));
}

void TerminalView::addingProgress(const std::string& displayName, std::size_t index,
                                  std::size_t of) {
    console().status(addingText(displayName, index, of));
}

void TerminalView::burnProgress(const DiscBurnProgress& progress) {
    const Screen& screen = console().screen();
    const std::size_t columns = std::max<std::size_t>(screen.columns(), 2) - 1;
    console().status(progressLine(progress, columns, screen.isUtf8));
}

} // namespace quarner::cli
