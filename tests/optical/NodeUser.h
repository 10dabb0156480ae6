// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

#include "adapters/posix/FileDescriptor.h"

namespace quarner {

/// A process that has tried to open a drive exclusively. It makes system calls until it is killed
/// or this object is destroyed. One thread.
class NodeUser {
public:
    /// Returns when it has tried.
    explicit NodeUser(const std::string& node);
    /// Closes its input and waits for its end.
    ~NodeUser();
    NodeUser(const NodeUser&) = delete;
    NodeUser& operator=(const NodeUser&) = delete;

    /// 0, or the negated error of opening the node.
    int opening() const { return _opening; }

    // Each returns the result of a system call, or its negated error.
    int status() { return ask("status"); }
    int sendCommand() { return ask("command"); }

    /// Makes it ask for the status, or send a command. Its answer comes later.
    void startStatus() const { start("status"); }
    void startCommand() const { start("command"); }
    /// Whether the answer comes within a time.
    bool answersWithin(std::chrono::milliseconds time) const;
    /// Waits for the answer; `std::nullopt` if the process ends without one.
    std::optional<int> answer() const;

    /// Kills it without waiting for its end.
    void kill() const;
    /// Waits for its end after `kill`. Returns the signal that has ended it, or 0.
    int wait();

private:
    void start(const std::string& call) const;
    int ask(const std::string& call) const;

    pid_t _process = -1;
    FileDescriptor _input;
    FileDescriptor _output;
    int _opening = 0;
};

} // namespace quarner
