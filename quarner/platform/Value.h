// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "quarner/platform/Export.h"

namespace quarner {

class Value;

/// An ordered list of values.
using Array = std::vector<Value>;

/// A property dictionary: strings to values. Look an entry up with `valueFor`, which returns an
/// empty value if there is no entry, or with the map's own `find`.
using Dictionary = std::map<std::string, Value, std::less<>>;

/// A file's icon as names in the desktop's icon theme, the best match first. A host looks them up
/// in this order in its own toolkit. Empty if the file's type is unknown.
struct Icon {
    std::vector<std::string> names; ///< by the Icon Naming Specification: "audio-x-generic"

    /// True for the same names in the same order.
    bool operator==(const Icon&) const = default;
};

/// One value of a property dictionary: empty, a truth value, a whole number, a real number, a text
/// (UTF-8 by convention, but file names keep their bytes), an icon, a list or a dictionary. A plain
/// value type: copying it is safe on any thread.
class QUARNER_EXPORT Value {
public:
    /// The empty value.
    Value() = default;
    /// Only a `bool` itself: no pointer is taken for a truth value.
    template <std::same_as<bool> Truth>
    Value(Truth value) : _value(value) {}
    /// A whole number. One above 2^63 - 1 keeps its bits: read it with `asUInt64`.
    template <typename Integer>
    requires(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>) Value(Integer value)
        : _value(static_cast<std::int64_t>(value)) {}
    /// A real number.
    Value(double value) : _value(value) {}
    /// A real number, kept in double precision.
    Value(float value) : _value(static_cast<double>(value)) {}
    /// A text, which must not be null and is copied.
    Value(const char* text) : _value(std::string(text)) {}
    Value(std::nullptr_t) = delete;
    /// A text, which is copied; its bytes are kept, also if they are not UTF-8.
    Value(std::string_view text) : _value(std::string(text)) {}
    /// A text.
    Value(std::string text) : _value(std::move(text)) {}
    /// An icon.
    Value(Icon icon) : _value(std::move(icon)) {}
    /// A list.
    Value(Array list) : _value(std::move(list)) {}
    /// A dictionary, which copies of this value share.
    Value(Dictionary dictionary);

    /// True for the empty value only.
    bool isNull() const;
    bool isNumber() const; ///< A whole number, a real number or a truth value.

    /// @name Numbers
    /// Each returns 0 (false) for a value that is not a number, and never converts out of range: a
    /// real number too large for the type gives the type's nearest limit, a NaN gives 0. A whole
    /// number is taken modulo the width of the type, as a signed or an unsigned reading of the same
    /// bits.
    /// @{
    bool asBool() const;            ///< False for 0, true for any other number.
    std::int64_t asInt64() const;   ///< Real numbers are truncated towards 0, as in the next two.
    std::uint64_t asUInt64() const; ///< 64 bits without a sign.
    std::uint32_t asUInt32() const; ///< 32 bits without a sign.
    double asDouble() const;        ///< Double precision; a large whole number is rounded.
    float asFloat() const; ///< Single precision; beyond its range an infinity of the same sign.
    /// @}

    /// @name Other kinds
    /// What is returned is owned by this value, and valid until the value is changed or destroyed.
    /// @{
    const std::string* asString() const;    ///< Null if this is no text.
    const Array* asArray() const;           ///< Null if this is no list.
    const Dictionary* asDictionary() const; ///< Null if this is no dictionary.
    const Icon* asIcon() const;             ///< Null if this is no icon.
    /// @}

    /// Deep equality. A whole number equals a real number only if both are of the same kind.
    bool operator==(const Value& other) const;

    /// Returns a readable text on one line: texts in double quotes, lists as (a, b), dictionaries
    /// as {key = value; ...} in the order of their keys. Meant for the diagnostic log.
    std::string description() const;

private:
    std::variant<std::monostate, bool, std::int64_t, double, std::string, Icon, Array,
                 std::shared_ptr<const Dictionary>>
        _value;
};

/// Returns the entry under a key, or an empty value (valid for ever) if there is none.
QUARNER_EXPORT const Value& valueFor(const Dictionary& dictionary, std::string_view key);

} // namespace quarner
