// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/JsonView.h"

#include "tools/quarner/text/JsonLine.h"

namespace quarner::cli {
namespace {

DiscProjectRecords::Arguments argumentsOf(const DiscProblem& problem) {
    DiscProjectRecords::Arguments arguments = {{"code", signedCode(problem.code)},
                                               {"text", problem.text}};
    if (!problem.advice.empty())
        arguments.emplace_back("advice", problem.advice);
    return arguments;
}

} // namespace

void JsonView::record(const std::string& event, const Arguments& arguments) {
    console().line(jsonLine(event, arguments));
}

void JsonView::compilationIsComplete(const Compilation& compilation) {
    const DiscCapacity& capacity = compilation.capacity;
    const bool isAudio = compilation.kind == DiscKind::Audio;
    record("compilation", {{"items", compilation.items->size()},
                           {"usedCapacity", isAudio ? capacity.used : capacity.fileBytes},
                           {"overflow", !capacity.fits}});
}

void JsonView::waitsFor(const DiscProblem& problem) { record("waitsFor", argumentsOf(problem)); }

void JsonView::burnIsRefused(const DiscProblem& problem) {
    record("burnRefused", argumentsOf(problem));
}

void JsonView::ejectionDidEnd(const std::string& driveName, const std::string& problem) {
    View::ejectionDidEnd(driveName, problem);
    Arguments arguments = {{"name", driveName}, {"ejected", problem.empty()}};
    if (!problem.empty())
        arguments.emplace_back("text", problem);
    record("eject", arguments);
}

void JsonView::didEnd(ExitStatus status, const std::string& outcome) {
    if (status != ExitStatus::Success && !outcome.empty())
        console().error("quarner: " + outcome);
    console().line(jsonExitLine(static_cast<int>(status)));
}

} // namespace quarner::cli
