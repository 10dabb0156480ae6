// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "quarner/device/QuarnerDevice.h"
#include "tools/quarner/host/EventLoop.h"
#include "tools/quarner/host/Terminal.h"

namespace quarner::cli {

/// The question whether the disc in a drive is to be burnt, to somebody at a terminal.
class BurnQuestion : private QuarnerDeviceDelegate {
public:
    enum class Answer {
        No,
        Yes,
        OtherDisc, ///< yes, but not to the disc that is in the drive now
    };

    /// The loop must outlive the question.
    BurnQuestion(EventLoop& loop, Terminal terminal, const std::string& drive,
                 std::optional<std::string> title);

    /// Shows the drive, the disc, what happens to it, the title and the question, and runs the main
    /// loop until a line was typed after that. A loop that ends before means no. Once only.
    Answer ask();

private:
    void deviceStatusDidChanged() override { _hasDiscChanged = true; }
    std::vector<std::string> text() const;
    bool isYesTyped();

    EventLoop& _loop;
    const Terminal _terminal;
    QuarnerDevice _device;
    const std::optional<std::string> _title;
    bool _hasDiscChanged = false;
};

/// Whether an answer is yes; whatever else is typed means no.
bool isYes(const std::string& answer);

} // namespace quarner::cli
