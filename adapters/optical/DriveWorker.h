// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "adapters/engine/StopSignal.h"
#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/WorkerProcess.h"

namespace quarner {

/// A process that has one drive open for a question or a burn, seen from the library. Nothing that
/// the drive or the process does can hold the caller longer than the timeouts in DriveProtocol.h: a
/// process that does not reply in time is killed, and another one unlocks the tray.
///
/// Every operation may be called on any thread, by one at a time. Those that wait throw
/// `BurnFailure`: with the reason of `stop` (which may be null) once that was requested,
/// `DRError::DeviceHanging` if the drive does not respond, `DRError::Internal` if the process has
/// ended, and whatever the process reports.
class DriveWorker {
public:
    /// Called with the disc that a claim has found, while that is awaited.
    using DiscHandler = std::function<void(const DiscFacts&)>;
    /// Starts a process. Throws `BurnFailure`.
    using Starter = std::function<std::unique_ptr<WorkerProcess>()>;

    /// Starts the process. `name` is the drive's, for the log. `isGone` returns whether the drive
    /// was unplugged, which stops every request. It is asked often, by the waiting thread. Throws
    /// `BurnFailure`.
    DriveWorker(DriveRecord record, std::string name, DiscHandler handleDisc = {},
                Starter start = startDriveProgram, std::function<bool()> isGone = {});
    /// Ends the process, and with it whatever it does.
    ~DriveWorker();
    DriveWorker(const DriveWorker&) = delete;
    DriveWorker& operator=(const DriveWorker&) = delete;

    /// Sends a request and returns the fields of its reply. A request whose reply is still to come
    /// is stopped before.
    Dictionary ask(const DriveRequest& request, const Dictionary& fields, const StopSignal* stop);
    Dictionary ask(const DriveRequest& request, const StopSignal* stop) {
        return ask(request, {}, stop);
    }
    /// The two halves of `ask`. A request that is too large throws `DRError::Internal`.
    void tell(const DriveRequest& request, const Dictionary& fields, const StopSignal* stop);
    Dictionary await(const DriveRequest& request, const StopSignal* stop);

    /// Sends bytes that belong to a request whose reply is still to come.
    void give(std::span<const std::byte> bytes, const DriveRequest& request,
              const StopSignal* stop);
    /// Fills the buffer with bytes that follow a reply.
    void take(std::span<std::byte> buffer, const DriveRequest& request, const StopSignal* stop);

    /// Whether the drive has not responded in time. It will not be asked by this process again.
    bool hasHung() const { return _hasHung; }

    /// Multiplies all timeouts from now on. For tests.
    static void scaleTimeouts(double factor);

    static std::unique_ptr<WorkerProcess> startDriveProgram();

private:
    class Deadline;

    void settle(const StopSignal* stop);
    std::optional<DRError> reasonToStop(const StopSignal* stop) const;
    void tellToStop(DRError reason, const StopSignal* stop);
    bool isAwaited(const DriveRequest& request) const;
    bool takeMessage(Deadline& deadline, const StopSignal* stop);
    bool check(Channel::Result result, const Message& message, Deadline& deadline,
               const StopSignal* stop);
    bool handle(const Message& message, Deadline& deadline);
    [[noreturn]] void giveUpEnded(const StopSignal* stop);
    [[noreturn]] void giveUpHanging(const StopSignal* stop);
    [[noreturn]] void giveUp(DRError error, const std::string& problem, const StopSignal* stop);
    void unlockTray() const;

    const DriveRecord _record;
    const std::string _name;
    const DiscHandler _handleDisc;
    const Starter _start;
    const std::function<bool()> _isGone;
    const std::unique_ptr<WorkerProcess> _process;
    std::optional<DriveRequest> _awaited; ///< the request whose reply is still to come
    /// The end of the current request, whatever signs of life there are.
    Channel::Clock::time_point _latest = {};
    bool _isLost = false;    ///< killed or ended
    bool _hasHung = false;   ///< killed because the drive did not respond
    bool _isStopped = false; ///< was told to stop
};

} // namespace quarner
