// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// What the two views for people have in common.
class PeopleView : public View {
public:
    using View::View;

    void compilationIsComplete(const Compilation& compilation) override;
    void waitsFor(const DiscProblem& problem) override;
    void didEnd(ExitStatus status, const std::string& outcome) override;
};

/// For a file or a pipe: a line for each file that is examined, for each step of the burn, and for
/// every tenth of the whole burn.
class PlainView : public PeopleView {
public:
    using PeopleView::PeopleView;

    void addingProgress(const std::string& displayName, std::size_t index, std::size_t of) override;
    void burnProgress(const DiscBurnProgress& progress) override;

private:
    std::string _lastStep;
    int _lastTenth = 0;
};

/// For a terminal: the file being examined, and later the progress bar of the whole burn, in one
/// line that is drawn over and over.
class TerminalView : public PeopleView {
public:
    using PeopleView::PeopleView;

    void addingProgress(const std::string& displayName, std::size_t index, std::size_t of) override;
    void burnProgress(const DiscBurnProgress& progress) override;
};

} // namespace quarner::cli
