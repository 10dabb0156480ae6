// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "quarner/front/Quarner.h"
#include "quarner/platform/DRErrors.h"
#include "tools/quarner/command/BurnQuestion.h"
#include "tools/quarner/disc/DiscKind.h"
#include "tools/quarner/host/DelegateRelay.h"
#include "tools/quarner/host/Host.h"
#include "tools/quarner/options/Options.h"
#include "tools/quarner/view/View.h"

namespace quarner::cli {

/// `quarner audio` and `quarner data`: adds files, says what they take, and burns them. For one
/// run.
class BurnCommand : private QuarnDelegate {
public:
    /// The host and the view must outlive the command. Throws `UsageProblem` when there is no
    /// drive to use, and where a question could not be seen.
    BurnCommand(Host& host, BurnOptions options, View& view);
    ~BurnCommand() override;

    /// Runs the main loop until it is over, and tells the view the end.
    ExitStatus run();

private:
    /// How it ended, in a number and in a sentence.
    struct Outcome {
        ExitStatus status;
        std::string text;
    };

    // What the main loop is told (everything else goes to the view alone).
    void addFilesProgressDidEnd(const EndReport& report) override;
    void burnProgressIsVerifying() override;
    void burnProgressDidDone() override;
    void burnProgressDidError(const BurnError& error) override;
    void burnProgressDidCanceled() override;

    void interrupt();
    Outcome performOrEndAtOnce();
    Outcome perform();
    std::optional<Outcome> hindrance(const Compilation& compiled) const;
    bool isAsked() const;
    BurnQuestion::Answer ask();
    void addFiles();
    void refuse(const FileRefusal& refusal);
    Compilation compilation() const;
    Outcome burn(const Compilation& compiled);
    Outcome refusal() const;
    Outcome overflow(const Compilation& compiled) const;
    Outcome cancellation() const;
    const char* leftByCancellation() const;
    Outcome success(const Compilation& compiled) const;
    Outcome failure(const Compilation& compiled) const;

    Host& _host;
    const BurnOptions _options;
    const DiscTraits& _disc;
    View& _view;
    QuarnerDevice _device;
    DelegateRelay _relay;
    const std::shared_ptr<Quarner> _burner;

    bool _isInterrupted = false;
    bool _isAsking = false;
    bool _isStarted = false;   ///< whether the burn was asked for
    bool _isVerifying = false; ///< the disc is complete and closed
    std::size_t _refusedCount = 0;
    enum class BurnEnd { None, Done, Canceled, Error } _burnEnd = BurnEnd::None;
    BurnError _error;
};

} // namespace quarner::cli
