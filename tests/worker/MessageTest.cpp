// SPDX-License-Identifier: LGPL-2.1-or-later
#include <glib.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "adapters/worker/Message.h"

namespace quarner {
namespace {

std::optional<Message> sent(const Message& message) { return decoded(encoded(message)); }

/// What another program may send: a message of the right type with any values.
std::vector<std::byte> bytesOf(const char* text) {
    GVariant* const variant =
        g_variant_parse(G_VARIANT_TYPE("(sa{sv})"), text, nullptr, nullptr, nullptr);
    std::vector<std::byte> bytes(g_variant_get_size(variant));
    g_variant_store(variant, bytes.data());
    g_variant_unref(variant);
    return bytes;
}

TEST(AMessage, KeepsValuesOfEveryKind) {
    const Message message = {"name",
                             {{"null", Value()},
                              {"true", true},
                              {"false", false},
                              {"one", 1},
                              {"lowest", std::numeric_limits<std::int64_t>::min()},
                              {"unsigned", std::numeric_limits<std::uint64_t>::max()},
                              {"real", 0.5},
                              {"whole real", 1.0},
                              {"infinite", std::numeric_limits<double>::infinity()},
                              {"text", "text"},
                              {"no text", ""},
                              {"no UTF-8", "\xFF\xFE"},
                              {"zero inside", std::string("a\0b", 3)},
                              {"list", Array{1, "two", Array{}, Dictionary{}, Value()}},
                              {"dictionary", Dictionary{{"key", Dictionary{{"", true}}}}}}};
    EXPECT_EQ(sent(message), message);
    EXPECT_EQ(sent({""}), Message{""});
}

TEST(AMessage, KeepsANumberThatIsNone) {
    const auto message = sent({"", {{"x", std::numeric_limits<double>::quiet_NaN()}}});
    ASSERT_TRUE(message);
    EXPECT_TRUE(std::isnan(valueFor(message->fields, "x").asDouble()));
}

TEST(AMessage, IsNotReadFromOtherBytes) {
    const std::vector<std::byte> whole = encoded({"name", {{"key", "text"}}});
    EXPECT_FALSE(decoded({}));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(decoded(std::span(whole).first(size))) << size;
    EXPECT_FALSE(decoded(std::vector<std::byte>(100, std::byte(0xFF))));
}

TEST(AMessage, OfTypesThatAreNotSentIsNotRead) {
    EXPECT_TRUE(decoded(bytesOf("('name', {'key': <int64 1>})")));
    EXPECT_FALSE(decoded(bytesOf("('name', {'key': <uint32 1>})")));
    EXPECT_FALSE(decoded(bytesOf("('name', {'key': <'text'>})")));
    EXPECT_FALSE(decoded(bytesOf("('name', {'key': <[<byte 1>]>})")));
}

TEST(AMessage, WithAKeyTwiceIsNotRead) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    for (int i = 0; i < 2; ++i)
        g_variant_builder_add(&builder, "{sv}", "key", g_variant_new_int64(i));
    GVariant* const variant =
        g_variant_ref_sink(g_variant_new("(s@a{sv})", "name", g_variant_builder_end(&builder)));
    std::vector<std::byte> bytes(g_variant_get_size(variant));
    g_variant_store(variant, bytes.data());
    g_variant_unref(variant);
    EXPECT_FALSE(decoded(bytes));
}

TEST(AMessage, ThatIsNestedVeryDeepIsNotRead) {
    Value value;
    for (int depth = 0; depth < 200; ++depth)
        value = Array{value};
    EXPECT_FALSE(sent({"name", {{"key", value}}}));
}

} // namespace
} // namespace quarner
