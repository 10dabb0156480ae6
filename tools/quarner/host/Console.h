// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

namespace quarner::cli {

/// What the output is shown on.
struct Screen {
    bool isTerminal = false; ///< one that can erase a line
    bool isUtf8 = false;     ///< whether block characters can be shown
    std::function<std::size_t()> columns = [] {
        return std::size_t{80};
    }; ///< asked again each time
};

/// The screen on which the standard output of this process is shown.
Screen screenOfStandardOutput();

/// The output of the program: whole lines to the output and to the error stream, and on a terminal
/// one line at the bottom that is drawn over and over. Any thread; lines never mix. What cannot
/// be written is lost silently; see `outputError`.
class Console {
public:
    /// The streams must outlive the console.
    Console(std::ostream& out, std::ostream& err, Screen screen);

    /// Prints one or more lines, given without the last one's end.
    void line(std::string_view text);
    void error(std::string_view text);

    /// Shows a text in the bottom line, in place of the one before; an empty text takes the line
    /// away. Nothing is shown unless the output is a terminal.
    void status(std::string_view text);

    /// Whether the output can be written no more, its reader gone for one.
    bool isBroken() const { return outputError() != 0; }

    /// The number of the error (`errno`) for which the output could not be written; 0 if it could.
    int outputError() const;

    const Screen& screen() const { return _screen; }

private:
    void print(std::ostream& stream, std::string_view text);
    void write(std::ostream& stream, std::string_view text);
    void erase();
    void draw();

    std::ostream& _out;
    std::ostream& _err;
    const Screen _screen;
    mutable std::mutex _mutex;
    std::string _status;
    int _outputError = 0;
};

} // namespace quarner::cli
