// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "adapters/drive/GrabbedDrive.h"
#include "adapters/drive/SectorPipe.h"
#include "adapters/drive/WritingThread.h"
#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/DiscPlan.h"

namespace quarner {

/// One session that libburn writes session-at-once on its own thread: every track of the plan, with
/// its content read from a pipe. The drive makes the pre-gaps; they are not in the pipe.
class BurnJob {
public:
    /// Converts the plan for libburn. Writes nothing. The drive and the pipe must outlive this
    /// object. Throws `BurnFailure` and `std::bad_alloc`.
    BurnJob(const GrabbedDrive& drive, const DiscPlan& plan, const BurnSettings& settings,
            SectorPipe& pipe);
    /// Stops writing, closes the pipe, and waits until the drive is idle.
    ~BurnJob();
    BurnJob(const BurnJob&) = delete;
    BurnJob& operator=(const BurnJob&) = delete;

    /// Returns why libburn refuses to write this plan to the disc in the drive; `std::nullopt` if
    /// it accepts it.
    std::optional<std::string> refusal() const;

    void start();
    /// Whether sectors are still being written, before the disc is closed. Any thread.
    bool isWriting() const;
    /// Whether the drive is still writing or closing the disc. Any thread.
    bool isRunning() const;
    /// After the job has ended: whether everything was written.
    bool wroteWell() const;

private:
    class Session;

    burn::burn_drive* const _drive;
    SectorPipe& _pipe;
    WritingThread _thread;
    std::unique_ptr<Session> _session;
};

/// Blanks an erasable disc quickly, also after an interrupted burn. Waits until the drive is idle,
/// a minute or two, during which it cannot be stopped. Returns `std::nullopt` if the disc is then
/// blank, otherwise the error.
std::optional<DRError> blankDisc(GrabbedDrive& grabbed);

/// Sets the write speed to `blocksPerSecond`, or to the fastest that drive and disc support, and
/// the read speed to the fastest.
void setSpeeds(const GrabbedDrive& drive, std::optional<double> blocksPerSecond);

} // namespace quarner
