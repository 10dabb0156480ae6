// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// For people. On a terminal the file being examined, and later the progress bar of the whole burn,
/// are one line that is drawn over and over. Elsewhere there is a line for each file, for each step
/// of the burn, and for every tenth of the whole burn.
class PeopleView : public View {
public:
    using View::View;

    void addingProgress(const std::string& displayName, std::size_t index, std::size_t of) override;
    void burnProgress(const DiscBurnProgress& progress) override;
    void compilationIsComplete(const Compilation& compilation) override;
    void waitsFor(const DiscProblem& problem) override;
    void didEnd(ExitStatus status, const std::string& outcome) override;

private:
    void printStep(const DiscBurnProgress& progress);

    std::string _lastStep;
    int _lastTenth = 0;
};

} // namespace quarner::cli
