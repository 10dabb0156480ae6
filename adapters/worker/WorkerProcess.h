// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <string>
#include <utility>

#include "adapters/worker/Channel.h"

namespace quarner {

/// A program of this library that runs as a process of its own, connected to this one by a channel.
/// It ends when the channel is closed, and so when this process ends, however that happens.
///
/// The process is started without a shell, in a session of its own, so that no key of a terminal
/// reaches it, with no descriptors but its end of the channel and the standard error, and with the
/// default handling of all signals.
class WorkerProcess {
public:
    /// Starts one of the programs in the folder of workers, by its name. Throws `BurnFailure` if
    /// that fails.
    explicit WorkerProcess(const std::string& name);
    /// Stands in for a process that has ended: only the channel is there. For tests, which have its
    /// other end.
    explicit WorkerProcess(Channel channel) : _channel(std::move(channel)) {}
    /// Closes the channel, gives the process half a second to end, and kills it then, unless it is
    /// detached. Does not wait for a process that the kernel does not let go.
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    Channel& channel() { return _channel; }

    /// Kills it at once. A process that waits in the kernel ends when the kernel lets it. Any
    /// thread.
    void kill() const;

    /// Lets the process end by itself: the destructor neither waits for it nor kills it. What it
    /// was sent it executes first.
    void detach() { _isDetached = true; }

    /// Waits until the process has ended, at most for this time. Returns whether it has.
    bool waitForEnd(std::chrono::milliseconds most) const;

    int pid() const { return _pid; }

private:
    Channel _channel{FileDescriptor(), FileDescriptor()};
    int _pid = -1;
    bool _isDetached = false;
    FileDescriptor _process; ///< a descriptor of the process: its number may be given away
};

/// The folder that the programs are in: that which the environment variable QUARNER_WORKERS names,
/// or of the tree that this library is in, or else of the installation. In a program with more
/// rights than its user only that of the installation.
std::string workerFolder();

} // namespace quarner
