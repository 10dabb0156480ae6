// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/glib/GlibPointers.h"
#include "adapters/glib/GlibServices.h"

namespace quarner {
namespace {

constexpr char logDomain[] = "Quarn";

class GlibLogSink : public LogSink {
public:
    void log(const std::string& line) override {
        const GText text(g_utf8_make_valid(line.data(), static_cast<gssize>(line.size())));
        g_log_structured(logDomain, G_LOG_LEVEL_INFO, "MESSAGE", "%s", text.get());
    }
};

} // namespace

std::shared_ptr<LogSink> makeGlibLogSink() { return std::make_shared<GlibLogSink>(); }

} // namespace quarner
