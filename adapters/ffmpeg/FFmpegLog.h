// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// While such an object exists, FFmpeg's warnings and errors on this thread go to the platform's
/// log with the name of the file, and not to the standard error stream. A message is not repeated
/// within one scope.
class FFmpegLogScope {
public:
    enum class Reports {
        ToLog,
        Nowhere ///< also for scopes inside this one
    };

    /// The path must outlive the scope.
    explicit FFmpegLogScope(const std::string& path, Reports reports = Reports::ToLog);
    ~FFmpegLogScope();
    FFmpegLogScope(const FFmpegLogScope&) = delete;
    FFmpegLogScope& operator=(const FFmpegLogScope&) = delete;

    /// Forwards one message. Called by FFmpeg's log.
    void report(const std::string& message);

private:
    const std::string& _path;
    FFmpegLogScope* const _outer;
    const bool _isSilent;
    std::string _last;
};

} // namespace quarner
