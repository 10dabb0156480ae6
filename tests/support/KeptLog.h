// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "quarner/platform/LogSink.h"

namespace quarner {

/// Keeps the lines of the diagnostic log.
class KeptLog : public LogSink {
public:
    void log(const std::string& line) override {
        const std::lock_guard lock(_mutex);
        _lines.push_back(line);
    }
    std::vector<std::string> lines() const {
        const std::lock_guard lock(_mutex);
        return _lines;
    }

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _lines;
};

} // namespace quarner
