// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/JsonView.h"

#include "tools/quarner/text/JsonLine.h"

namespace quarner::cli {

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

void JsonView::waitsFor(const DiscProblem& problem) {
    record(
        "waitsFor",
        {{"code", signedCode(problem.code)}, {"text", problem.text}, {"advice", problem.advice}});
}

void JsonView::didEnd(ExitStatus status, const std::string& outcome) {
    if (status != ExitStatus::Success && !outcome.empty())
        console().error("quarner: " + outcome);
    console().line(jsonExitLine(static_cast<int>(status)));
}

} // namespace quarner::cli
