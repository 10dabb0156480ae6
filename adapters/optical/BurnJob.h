// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/DiscPlan.h"
#include "adapters/optical/GrabbedDrive.h"
#include "adapters/optical/SectorPipe.h"
#include "adapters/optical/WritingThread.h"

namespace quarner {

/// One session as libburn writes it, session at once, on a thread of its own: every track of the
/// plan, its content taken from a pipe. The pre-gaps are made by the drive and not taken from it.
class BurnJob {
public:
    /// Puts the plan as libburn wants it. Nothing is written yet. The drive and the pipe must
    /// outlive this object. Throws `BurnFailure`, and `std::bad_alloc`.
    BurnJob(const GrabbedDrive& drive, const DiscPlan& plan, const BurnSettings& settings,
            SectorPipe& pipe);
    /// Stops the writing, closes the pipe, and returns when the drive is idle.
    ~BurnJob();
    BurnJob(const BurnJob&) = delete;
    BurnJob& operator=(const BurnJob&) = delete;

    /// Why libburn will not write this plan to the disc in the drive; nothing when it will.
    std::optional<std::string> objection() const;

    void start();
    /// Whether sectors are still being written: before the disc is closed. Any thread.
    bool isWriting() const;
    /// Whether the drive is still at work: writing, or closing the disc. Any thread.
    bool isRunning() const;
    /// Once it is not running any more: whether everything was written.
    bool wroteWell() const;

private:
    class Session;

    burn::burn_drive* const _drive;
    SectorPipe& _pipe;
    WritingThread _thread;
    std::unique_ptr<Session> _session;
};

/// Blanks an erasable disc in the quick way, also one whose last burn was broken off; returns when
/// the drive is idle. Takes a minute or two, in which the drive cannot be stopped. Answers nothing
/// when the disc is blank then, or why it is not.
std::optional<DRError> blankDisc(GrabbedDrive& grabbed);

/// Writes at so many blocks per second, or as fast as drive and disc allow; reads as fast as it
/// can.
void setSpeeds(const GrabbedDrive& drive, std::optional<double> blocksPerSecond);

} // namespace quarner
