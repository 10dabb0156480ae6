// SPDX-License-Identifier: LGPL-2.1-or-later
#include <utility>

#include "adapters/glib/GlibPointers.h"
#include "adapters/glib/GlibServices.h"
#include "quarner/display.h"

namespace quarner {
namespace {

constexpr char logDomain[] = "Quarn";

class GlibLogSink : public LogSink {
public:
    explicit GlibLogSink(std::function<void(const std::string&)> log) : _log(std::move(log)) {}

    void log(const std::string& line) override {
        if (_log) {
            _log(safeText(line));
            return;
        }
        const GText text(g_utf8_make_valid(line.data(), static_cast<gssize>(line.size())));
        g_log_structured(logDomain, G_LOG_LEVEL_INFO, "MESSAGE", "%s", text.get());
    }

private:
    const std::function<void(const std::string&)> _log;
};

} // namespace

std::shared_ptr<LogSink> makeGlibLogSink(std::function<void(const std::string&)> log) {
    return std::make_shared<GlibLogSink>(std::move(log));
}

} // namespace quarner
