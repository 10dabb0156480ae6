// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tools/quarner/text/JsonLine.h"

namespace quarner::cli {
namespace {

TEST(JsonLine, BeginsWithTheEventAndKeepsTheOrderOfTheArguments) {
    EXPECT_EQ(jsonLine("e", {{"of", 2}, {"index", 1}}), R"({"event":"e","of":2,"index":1})");
    EXPECT_EQ(jsonLine("e"), R"({"event":"e"})");
}

TEST(JsonLine, EveryKindOfValueHasItsForm) {
    const Dictionary item = {{"icon", Icon{{"audio-mpeg", "audio"}}}, {"name", "a"}};
    EXPECT_EQ(
        jsonLine("e", {{"list", Array{"x", 1, 0.5, true}}, {"item", item}, {"none", Value()}}),
        R"({"event":"e","list":["x",1,0.5,true],)"
        R"("item":{"icon":["audio-mpeg","audio"],"name":"a"},"none":null})");
}

TEST(JsonLine, NumbersKeepTheirRange) {
    EXPECT_EQ(jsonLine("e", {{"code", std::int64_t(-2147287003)},
                             {"left", std::numeric_limits<std::int64_t>::max()}}),
              R"({"event":"e","code":-2147287003,"left":9223372036854775807})");
    EXPECT_EQ(jsonLine("e", {{"fraction", std::nan("")}}), R"({"event":"e","fraction":null})");
}

TEST(JsonLine, TextsAreEscapedAndInvalidBytesReplaced) {
    EXPECT_EQ(jsonLine("e", {{"name", "\"q\"\n音\xff"}}),
              "{\"event\":\"e\",\"name\":\"\\\"q\\\"\\n音\uFFFD\"}");
}

} // namespace
} // namespace quarner::cli
