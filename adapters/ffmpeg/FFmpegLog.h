// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// While one of these lives, what FFmpeg reports on this thread as a warning or worse goes to the
/// platform's log with the name of the file, and nothing to the standard error stream. The same
/// message is not repeated within one scope.
class FFmpegLogScope {
public:
    enum class Reports {
        ToLog,
        Nowhere ///< nor from the scopes within this one
    };

    /// The path must outlive the scope.
    explicit FFmpegLogScope(const std::string& path, Reports reports = Reports::ToLog);
    ~FFmpegLogScope();
    FFmpegLogScope(const FFmpegLogScope&) = delete;
    FFmpegLogScope& operator=(const FFmpegLogScope&) = delete;

    /// Passes one message on. Called by FFmpeg's log.
    void report(const std::string& message);

private:
    const std::string& _path;
    FFmpegLogScope* const _outer;
    const bool _isSilent;
    std::string _last;
};

} // namespace quarner
