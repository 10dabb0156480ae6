// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace quarner::fuzz {

/// Reads numbers and texts from the bytes of one fuzzer input, front to back. Behind the end every
/// number is 0 and every text is empty. Does not own the bytes.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : _bytes(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return _bytes.empty(); }

    std::uint8_t byte() { return number<std::uint8_t>(); }

    /// A number in the byte order of this machine.
    template <typename Number>
    requires(std::is_arithmetic_v<Number>) Number number() {
        Number number = 0;
        const std::string_view bytes = take(sizeof number);
        if (bytes.size() == sizeof number)
            std::memcpy(&number, bytes.data(), sizeof number);
        return number;
    }

    /// A text of up to 255 bytes that follows its length in one byte.
    std::string text() {
        const std::size_t length = byte();
        return std::string(take(length));
    }

    /// All bytes that are left.
    std::string rest() { return std::string(take(_bytes.size())); }

private:
    std::string_view take(std::size_t count) {
        const std::string_view taken = _bytes.substr(0, count);
        _bytes.remove_prefix(taken.size());
        return taken;
    }

    std::string_view _bytes;
};

/// Ends the program with a message if a property does not hold. The fuzzer then keeps the input.
inline void require(bool holds, const char* property) {
    if (holds)
        return;
    std::fprintf(stderr, "The property does not hold: %s\n", property);
    std::abort();
}

} // namespace quarner::fuzz
