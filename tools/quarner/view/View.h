// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/display.h"
#include "quarner/project/DiscProject.h"
#include "quarner/project/DiscProjectRecords.h"
#include "tools/quarner/host/Console.h"
#include "tools/quarner/options/Options.h"
#include "tools/quarner/text/CompilationText.h"

namespace quarner::cli {

/// Shows what `quarner audio` or `quarner data` does: what the project and its burner report, and
/// the operations below. All on the main loop.
class View : public DiscProjectRecords {
public:
    /// The console must outlive the view.
    explicit View(Console& console) : _console(console) {}

    void record(const std::string& /*event*/, const Arguments& /*arguments*/) override {}
    void fileRefused(const std::string& path, RefusalReason reason,
                     const std::string& text) override {
        DiscProjectRecords::fileRefused(path, reason, text);
        _console.error("quarner: " + safeText(text));
    }

    /// Once, when the adding of files has ended.
    virtual void compilationIsComplete(const Compilation& compilation) = 0;

    /// The command waits until this problem is solved. Called again when it has changed.
    virtual void waitsFor(const DiscProblem& problem) = 0;

    /// Nothing is burnt because of this problem, which `didEnd` puts into words.
    virtual void burnIsRefused(const DiscProblem& /*problem*/) {}

    /// The burnt disc was to be ejected. `problem`: why it was not, a sentence; empty if it was.
    virtual void ejectionDidEnd(const std::string& /*driveName*/, const std::string& problem) {
        if (!problem.empty())
            _console.error("quarner: " + safeText(problem));
    }

    /// Last, once: how it ended, as a sentence for people (may be empty).
    virtual void didEnd(ExitStatus status, const std::string& outcome) = 0;

protected:
    Console& console() const { return _console; }

private:
    Console& _console;
};

} // namespace quarner::cli
