// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace quarner::cli {

/// Waits for one line that somebody types, while the main loop runs.
class LineReader {
public:
    /// `handler` is called once on the main loop, and must not throw: with the line, without its
    /// end, or with nothing when the descriptor has come to its end. It may not destroy the reader.
    LineReader(int descriptor, std::function<void(std::optional<std::string>)> handler);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

private:
    bool readSome();

    const int _descriptor;
    const std::function<void(std::optional<std::string>)> _handler;
    std::string _line;
    unsigned _source = 0; ///< 0 once the handler was called
};

} // namespace quarner::cli
