// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/Diagnostics.h"

#include <glib.h>

#include <span>
#include <string>

#include "quarner/display.h"

namespace quarner::cli {
namespace {

constexpr std::string_view frameworkDomain = "Quarn";

std::string_view fieldNamed(std::string_view name, std::span<const GLogField> fields) {
    for (const GLogField& field : fields) {
        if (name != field.key)
            continue;
        const char* const text = static_cast<const char*>(field.value);
        return field.length < 0 ? std::string_view(text)
                                : std::string_view(text, static_cast<std::size_t>(field.length));
    }
    return {};
}

GLogWriterOutput writeLog(GLogLevelFlags level, const GLogField* fields, gsize count,
                          gpointer console) {
    const std::span<const GLogField> all(fields, count);
    if (fieldNamed("GLIB_DOMAIN", all) != frameworkDomain)
        return g_log_writer_default(level, fields, count, nullptr);
    if (console != nullptr)
        static_cast<Console*>(console)->error(safeText(fieldNamed("MESSAGE", all)));
    return G_LOG_WRITER_HANDLED;
}

} // namespace

void routeDiagnostics(Console& console, bool isShown) {
    g_log_set_writer_func(writeLog, isShown ? &console : nullptr, nullptr);
}

} // namespace quarner::cli
