// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "quarner/project/DiscProject.h"
#include "tools/quarner/command/BurnQuestion.h"
#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"
#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// Joins what is said of a failure, a line each; an empty text is left out.
std::string explained(const std::string& text, const std::string& detail,
                      const std::string& advice);

/// `quarner audio` and `quarner data`: adds files, says what they take, and burns them. For one
/// run.
class BurnCommand {
public:
    /// The host must outlive the command. Throws `UsageProblem` when there is no drive to use, and
    /// where a question could not be seen.
    BurnCommand(Host& host, BurnOptions options, std::shared_ptr<View> view);
    ~BurnCommand();
    BurnCommand(const BurnCommand&) = delete;
    BurnCommand& operator=(const BurnCommand&) = delete;

    /// Runs the main loop until it is over, and tells the view the end. Throws `UsageProblem` when
    /// the drive turns out not to be usable.
    ExitStatus run();

private:
    /// How it ended, in a number and in a sentence.
    struct Outcome {
        ExitStatus status;
        std::string text;
    };
    /// What the project has reported.
    struct Reports;

    Outcome performOrEndAtOnce();
    Outcome perform();
    void interrupt();
    void runUntil(const std::function<bool()>& isOver);
    void addFiles();
    void waitForDrive();
    void waitForDisc();
    std::optional<DiscProblem> firstProblem() const;
    Compilation compilation() const;
    bool isAsked() const;
    BurnQuestion::Answer ask();
    Outcome burn();
    void ejectDisc();
    Outcome refusal() const;
    Outcome refusal(const DiscProblem& problem) const;
    Outcome cancellation() const;
    const char* leftByCancellation() const;

    Host& _host;
    const BurnOptions _options;
    const std::shared_ptr<View> _view;
    const std::string _driveName;
    const std::shared_ptr<Reports> _reports;
    DiscProject _project;
    const DiscDrive::Id _drive; ///< 0 if it is gone already
    bool _isInterrupted = false;
};

} // namespace quarner::cli
