// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gtest/gtest.h>

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

} // namespace
} // namespace quarner::testing
