// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/PeopleView.h"

#include <algorithm>
#include <cmath>

#include "quarner/display.h"
#include "tools/quarner/text/CompilationText.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

/// A step of the burn with how much of the whole burn is done.
std::string tenthText(int tenth, const DiscBurnProgress& progress) {
    const char* const message = progress.timeLeftText.empty()
                                    ? translatable("{step}: {percent}%")
                                    : translatable("{step}: {percent}%, {time} left");
    return _(message, {{"step", progress.text},
                       {"percent", std::to_string(tenth * 10)},
                       {"time", progress.timeLeftText}});
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
    console().error("quarner: " + _("waiting. {problem} {advice}",
                                    {{"problem", problem.text}, {"advice", problem.advice}}));
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

void PeopleView::addingProgress(const std::string& displayName, std::size_t index, std::size_t of) {
    const std::string text =
        _("Adding {index} of {count}: {name}",
          {{"index", std::to_string(index)}, {"count", std::to_string(of)}, {"name", displayName}});
    console().screen().isTerminal ? console().status(text) : console().line(text);
}

void PeopleView::burnProgress(const DiscBurnProgress& progress) {
    const Screen& screen = console().screen();
    const std::size_t columns = std::max<std::size_t>(screen.columns(), 2) - 1;
    if (screen.isTerminal)
        console().status(progressLine(progress, columns, screen.isUtf8));
    else
        printStep(progress);
}

void PeopleView::printStep(const DiscBurnProgress& progress) {
    const int tenth = static_cast<int>(std::floor(progress.fraction * 10));
    const bool isNewTenth = tenth != _lastTenth;
    if (progress.text != _lastStep || isNewTenth)
        console().line(isNewTenth ? tenthText(tenth, progress) : progress.text);
    _lastStep = progress.text;
    _lastTenth = tenth;
}

} // namespace quarner::cli
