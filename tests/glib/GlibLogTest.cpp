// SPDX-License-Identifier: LGPL-2.1-or-later
#include <glib.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "adapters/glib/GlibServices.h"

namespace quarner {
namespace {

struct Logged {
    GLogLevelFlags level;
    std::map<std::string, std::string> fields;
};

std::vector<Logged> logged;

GLogWriterOutput collect(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer) {
    Logged line{level, {}};
    for (gsize i = 0; i < count; ++i)
        if (fields[i].length < 0)
            line.fields[fields[i].key] = static_cast<const char*>(fields[i].value);
    logged.push_back(line);
    return G_LOG_WRITER_HANDLED;
}

TEST(GlibLog, ALineArrivesInTheStructuredLogWhateverItsBytes) {
    static const bool isSet = (g_log_set_writer_func(collect, nullptr, nullptr), true); // only once
    ASSERT_TRUE(isSet);
    logged.clear();
    const auto log = makeGlibLogSink();
    log->log("100% %s %n of \"Grüße\"");
    log->log("so\xFFng");
    ASSERT_EQ(logged.size(), 2U);
    EXPECT_EQ(logged[0].fields["MESSAGE"], "100% %s %n of \"Grüße\"");
    EXPECT_EQ(logged[0].fields["GLIB_DOMAIN"], "Quarn");
    EXPECT_EQ(logged[0].level, G_LOG_LEVEL_INFO);
    EXPECT_EQ(logged[1].fields["MESSAGE"], "so\uFFFDng");
}

TEST(GlibLog, ALineGoesToTheHostThatWantsItSafeToShow) {
    std::vector<std::string> lines;
    makeGlibLogSink([&](const std::string& line) {
        lines.push_back(line);
    })->log("so\xFFng\x1b[2J");
    EXPECT_EQ(lines, std::vector<std::string>{"so\uFFFDng\uFFFD[2J"});
}

} // namespace
} // namespace quarner
