// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <array>
#include <cstdlib>

// A mutant may be what the warnings warn of.
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wnarrowing"
#pragma GCC diagnostic ignored "-Wparentheses"
#pragma GCC diagnostic ignored "-Wreturn-type"
#pragma GCC diagnostic ignored "-Wempty-body"
#pragma GCC diagnostic ignored "-Wdangling-else"
#pragma GCC diagnostic ignored "-Wmisleading-indentation"
#pragma GCC diagnostic ignored "-Wunused-value"
#pragma GCC diagnostic ignored "-Wfloat-equal"
#pragma GCC diagnostic ignored "-Wbool-compare"
#pragma GCC diagnostic ignored "-Wint-in-bool-context"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

/// The switch between the mutants that scripts/mutate compiles into one program. Each function
/// returns what the original expression gives, unless the mutant of its number is selected.
/// A function with several mutants takes the number of the first.
namespace mutant {

/// Which mutants were reached since `forgetReached`. A byte each: threads write the same value.
inline std::array<unsigned char, 65536> reached = {};

/// The number in the environment; 0 selects the original program.
inline int selected() {
    static const int number = [] {
        const char* const text = std::getenv("QUARNER_MUTANT");
        return text == nullptr ? 0 : std::atoi(text);
    }();
    return number;
}

inline bool on(int number) {
    reached[static_cast<std::size_t>(number)] = 1;
    return selected() == number;
}

/// Forced true, forced false.
inline bool forced(int number, bool value) { return on(number) || (!on(number + 1) && value); }

inline bool negated(int number, bool value) { return value != on(number); }

/// One more, one less.
template <typename Number>
Number number(int number, Number value) {
    if (on(number))
        return static_cast<Number>(value + 1);
    return on(number + 1) ? static_cast<Number>(value - 1) : value;
}

// Each takes the operands of an operator. Relations have their boundary moved, or are negated.
template <typename Left, typename Right>
bool less(int number, const Left& left, const Right& right) {
    if (on(number))
        return left <= right;
    return negated(number + 1, left < right);
}
template <typename Left, typename Right>
bool lessEqual(int number, const Left& left, const Right& right) {
    if (on(number))
        return left < right;
    return negated(number + 1, left <= right);
}
template <typename Left, typename Right>
bool greater(int number, const Left& left, const Right& right) {
    if (on(number))
        return left >= right;
    return negated(number + 1, left > right);
}
template <typename Left, typename Right>
bool greaterEqual(int number, const Left& left, const Right& right) {
    if (on(number))
        return left > right;
    return negated(number + 1, left >= right);
}
template <typename Left, typename Right>
bool equal(int number, const Left& left, const Right& right) {
    return negated(number, left == right);
}
template <typename Left, typename Right>
bool unequal(int number, const Left& left, const Right& right) {
    return negated(number, left != right);
}

// Arithmetic operators become their opposites.
template <typename Left, typename Right>
auto sum(int number, Left left, Right right) {
    return on(number) ? left - right : left + right;
}
template <typename Left, typename Right>
auto difference(int number, Left left, Right right) {
    return on(number) ? left + right : left - right;
}
template <typename Left, typename Right>
auto product(int number, Left left, Right right) {
    return on(number) ? left / right : left * right;
}
template <typename Left, typename Right>
auto quotient(int number, Left left, Right right) {
    return on(number) ? left * right : left / right;
}
template <typename Left, typename Right>
auto remainder(int number, Left left, Right right) {
    return on(number) ? left * right : left % right;
}
template <typename Left, typename Right>
auto shiftedLeft(int number, Left left, Right right) {
    return on(number) ? left >> right : left << right;
}
template <typename Left, typename Right>
auto shiftedRight(int number, Left left, Right right) {
    return on(number) ? left << right : left >> right;
}
template <typename Left, typename Right>
auto bitAnd(int number, Left left, Right right) {
    return on(number) ? left | right : left & right;
}
template <typename Left, typename Right>
auto bitOr(int number, Left left, Right right) {
    return on(number) ? left & right : left | right;
}

/// The right side of += or -=: the other sign.
template <typename Number>
Number opposite(int number, Number value) {
    return on(number) ? static_cast<Number>(Number{} - value) : value;
}

template <typename Counter>
Counter& increment(int number, Counter& counter) {
    return on(number) ? --counter : ++counter;
}
template <typename Counter>
Counter& decrement(int number, Counter& counter) {
    return on(number) ? ++counter : --counter;
}
template <typename Counter>
Counter postIncrement(int number, Counter& counter) {
    return on(number) ? counter-- : counter++;
}
template <typename Counter>
Counter postDecrement(int number, Counter& counter) {
    return on(number) ? counter++ : counter--;
}

} // namespace mutant
