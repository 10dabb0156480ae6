// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// The platform's standard diagnostic log.
class QUARNER_EXPORT LogSink {
public:
    LogSink() = default;
    virtual ~LogSink();
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;

    /// Writes one line, given without a line end. Any thread, also one that holds a lock: an
    /// implementation must not query a drive.
    virtual void log(const std::string& line) = 0;
};

} // namespace quarner
