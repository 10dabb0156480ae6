// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <type_traits>

#include "quarner/platform/Value.h"

namespace quarner::testing {
namespace {

struct Something {};

template <typename Argument>
constexpr bool makesValue = std::is_constructible_v<Value, Argument>;

// No pointer is a truth value.
static_assert(!makesValue<int*>);
static_assert(!makesValue<const Something*>);
static_assert(!makesValue<void*>);
static_assert(!makesValue<void (*)()>);
static_assert(!makesValue<int Something::*>);
static_assert(!makesValue<std::nullptr_t>);
static_assert(!makesValue<std::shared_ptr<int>>);
static_assert(!std::is_convertible_v<Something*, Value>);

TEST(Value, ATextOfAnyKindIsAText) {
    char characters[] = "abc";
    const char* const constant = "abc";
    EXPECT_EQ(Value(characters), Value("abc"));
    EXPECT_EQ(Value(&characters[0]), Value("abc"));
    EXPECT_EQ(Value(constant), Value(std::string("abc")));
    EXPECT_NE(Value(characters).asString(), nullptr);
}

TEST(Value, ATruthValueIsNeitherAWholeNumberNorAText) {
    EXPECT_EQ(Value(true).description(), "true");
    EXPECT_EQ(Value(1).description(), "1");
    EXPECT_NE(Value(true), Value(1));
    EXPECT_TRUE(Value(true).isNumber());
    EXPECT_EQ(Value(false).asInt64(), 0);
}

template <typename Number>
constexpr Number largest = std::numeric_limits<Number>::max();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Value, ARealNumberIsCutToAWholeOneAndKeptWithinItsRange) {
    constexpr double twoTo63 = 9223372036854775808.0;
    EXPECT_EQ(Value(2.9).asInt64(), 2);
    EXPECT_EQ(Value(-2.9).asInt64(), -2);
    EXPECT_EQ(Value(std::nextafter(twoTo63, 0)).asInt64(), 9223372036854774784);
    EXPECT_EQ(Value(twoTo63).asInt64(), largest<std::int64_t>);
    EXPECT_EQ(Value(infinity).asInt64(), largest<std::int64_t>);
    EXPECT_EQ(Value(std::nextafter(-twoTo63, 0)).asInt64(), -9223372036854774784);
    EXPECT_EQ(Value(-2 * twoTo63).asInt64(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Value(notANumber).asInt64(), 0);
}

TEST(Value, ARealNumberIsCutToAnUnsignedOneAndKeptWithinItsRange) {
    constexpr double twoTo64 = 18446744073709551616.0;
    EXPECT_EQ(Value(0.5).asUInt64(), 0U);
    EXPECT_EQ(Value(1.0).asUInt64(), 1U);
    EXPECT_EQ(Value(1e19).asUInt64(), 10000000000000000000U);
    EXPECT_EQ(Value(twoTo64).asUInt64(), largest<std::uint64_t>);
    EXPECT_EQ(Value(infinity).asUInt64(), largest<std::uint64_t>);
    EXPECT_EQ(Value(-1.0).asUInt64(), 0U);
    EXPECT_EQ(Value(notANumber).asUInt64(), 0U);
    EXPECT_EQ(Value(4294967294.5).asUInt32(), 4294967294U);
    EXPECT_EQ(Value(4294967295.0).asUInt32(), largest<std::uint32_t>);
    EXPECT_EQ(Value(1e19).asUInt32(), largest<std::uint32_t>);
    EXPECT_EQ(Value(-1.0).asUInt32(), 0U);
}

TEST(Value, AWholeNumberKeepsItsBits) {
    EXPECT_EQ(Value(-1).asUInt64(), largest<std::uint64_t>);
    EXPECT_EQ(Value(-1).asUInt32(), largest<std::uint32_t>);
    EXPECT_EQ(Value(true).asInt64(), 1);
    EXPECT_EQ(Value(true).asDouble(), 1.0);
    EXPECT_EQ(Value("1").asInt64(), 0);
}

TEST(Value, ANumberBeyondAFloatIsInfinite) {
    constexpr double most = largest<float>;
    EXPECT_EQ(Value(0.1).asFloat(), 0.1F);
    EXPECT_EQ(Value(most).asFloat(), largest<float>);
    EXPECT_EQ(Value(-most).asFloat(), -largest<float>);
    EXPECT_EQ(Value(std::nextafter(most, infinity)).asFloat(), float(infinity));
    EXPECT_EQ(Value(std::nextafter(-most, -infinity)).asFloat(), float(-infinity));
    EXPECT_EQ(Value(1e300).asFloat(), float(infinity));
    EXPECT_EQ(Value(-1e300).asFloat(), float(-infinity));
}

TEST(Value, DescribesEveryKind) {
    EXPECT_EQ(Value().description(), "null");
    EXPECT_EQ(Value(false).description(), "false");
    EXPECT_EQ(Value(-7).description(), "-7");
    EXPECT_EQ(Value(0.5).description(), "0.500000");
    EXPECT_EQ(Value("a").description(), "\"a\"");
    EXPECT_EQ(Value(Array{}).description(), "()");
    EXPECT_EQ(Value(Array{1, "a", Array{}}).description(), "(1, \"a\", ())");
    EXPECT_EQ(Value(Dictionary{}).description(), "{}");
    EXPECT_EQ(Value(Dictionary{{"a", 1}, {"b", "c"}}).description(), "{a = 1; b = \"c\";}");
    EXPECT_EQ(Value(Icon{}).description(), "<no icon>");
    EXPECT_EQ(Value(Icon{{"audio-x-generic", "audio"}}).description(), "<icon audio-x-generic>");
}

TEST(Value, IsEqualToOneOfTheSameKindAndContent) {
    const Dictionary one = {{"a", 1}};
    EXPECT_EQ(Value(one), Value(Dictionary(one)));
    EXPECT_NE(Value(one), Value(Dictionary{{"a", 2}}));
    EXPECT_NE(Value(one), Value(1));
    EXPECT_NE(Value(1), Value(one));
    EXPECT_NE(Value(Array{1}), Value(1));
    EXPECT_EQ(Value(Icon{{"a"}}), Value(Icon{{"a"}}));
}

TEST(Value, GivesWhatItHoldsAndNothingElse) {
    ASSERT_NE(Value(Icon{{"a"}}).asIcon(), nullptr);
    const Value list(Array{1, 2});
    ASSERT_NE(list.asArray(), nullptr);
    EXPECT_EQ(list.asArray()->size(), 2U);
    EXPECT_EQ(list.asIcon(), nullptr);
    EXPECT_EQ(list.asString(), nullptr);
    EXPECT_EQ(list.asDictionary(), nullptr);
    EXPECT_FALSE(list.isNumber());
}

} // namespace
} // namespace quarner::testing
