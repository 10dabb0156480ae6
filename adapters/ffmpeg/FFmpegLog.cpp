// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/FFmpegLog.h"

#include <array>
#include <cstdarg>
#include <mutex>

#include "quarner/platform/Platform.h"

extern "C" {
#include <libavutil/log.h>
}

namespace quarner {

namespace {

thread_local FFmpegLogScope* currentScope = nullptr;

/// FFmpeg has one log for the whole process; messages of other users of FFmpeg are left unchanged.
void receive(void* context, int level, const char* format, std::va_list arguments) {
    if (currentScope == nullptr)
        return av_log_default_callback(context, level, format, arguments);
    if ((level & 0xff) > AV_LOG_WARNING)
        return;
    std::array<char, 1024> line = {};
    int isLineStart = 0; // without the address of the sender
    av_log_format_line2(context, level, format, arguments, line.data(), line.size(), &isLineStart);
    currentScope->report(line.data());
}

} // namespace

FFmpegLogScope::FFmpegLogScope(const std::string& path, Reports reports)
    : _path(path), _outer(currentScope),
      _isSilent(reports == Reports::Nowhere || (_outer != nullptr && _outer->_isSilent)) {
    static std::once_flag isInstalled;
    std::call_once(isInstalled, [] { av_log_set_callback(receive); });
    currentScope = this;
}

FFmpegLogScope::~FFmpegLogScope() { currentScope = _outer; }

void FFmpegLogScope::report(const std::string& message) try {
    if (_isSilent)
        return;
    const std::string line = message.substr(0, message.find_last_not_of("\r\n") + 1);
    if (line.empty() || line == _last)
        return;
    _last = line;
    currentPlatform()->log->log(_path + ": " + line);
} catch (...) { // an exception must not unwind through C code
}

} // namespace quarner
