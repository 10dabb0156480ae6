// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/types.h>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

namespace quarner::testing {

/// How a run of the program quarner ended, and what it wrote.
struct HostEnd {
    int status = -1; ///< the exit status; 128 and the signal's number after a signal
    std::string out;
    std::string err; ///< empty on a terminal, where both streams are one
};

/// How to run it.
struct HostSettings {
    std::string program = QUARNER_PROGRAM;
    std::string folder = ".";         ///< the working directory
    std::vector<std::string> wrapper; ///< a program that runs it, with arguments: setpriv, prlimit
    unsigned terminalColumns = 0;     ///< above 0: on a terminal as wide as this
    bool isTypedTo = false;           ///< its input is that terminal: see `type`
    std::vector<std::string> environment = {"LC_ALL=C.UTF-8", "TERM=xterm"};
    /// Libraries that come before its own. The first shows it the drives of an `OpticalBed` that
    /// this process has, and none of this machine; the second ends the delays of libburn early.
    std::vector<std::string> preloads = {"libumockdev-preload.so.0", QUICK_SLEEP};
};

/// The real program, running as a process of its own. It is killed if it is still there when this
/// object goes.
class HostProgram {
public:
    explicit HostProgram(const std::vector<std::string>& arguments, const HostSettings& = {});
    ~HostProgram();
    HostProgram(const HostProgram&) = delete;
    HostProgram& operator=(const HostProgram&) = delete;

    /// Reads until a text has appeared in the output; false when that has not come within half a
    /// minute, or the program has closed its output.
    bool waitForOutput(const std::string& text);

    /// What has been read so far.
    const std::string& output() const { return _end.out; }

    /// Types on its terminal.
    void type(const std::string& text) const;
    void signal(int number) const;
    pid_t process() const { return _process; }
    /// Closes the reading end of its output.
    void stopReading();

    /// Reads all that comes and waits for the end. A program that does not end within a minute is
    /// killed.
    HostEnd wait();

private:
    void readUntil(const std::function<bool()>& condition, int milliseconds);
    static void readSome(int& descriptor, std::string& text);

    std::atomic<pid_t> _process = -1; ///< a thread may send signals to it
    int _out = -1;
    int _err = -1;
    HostEnd _end;
};

/// Runs the program to its end.
HostEnd runHost(const std::vector<std::string>& arguments, const HostSettings& settings = {});

} // namespace quarner::testing
