// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "quarner/platform/Value.h"

namespace quarner {

/// What the library and one of its worker processes say to each other: a name, and values that the
/// name gives a meaning. docs/worker.md has the list.
struct Message {
    std::string name;
    Dictionary fields = {};

    bool operator==(const Message&) const = default;
};

/// The largest message in bytes. What is larger goes through the stream of the channel.
constexpr std::size_t mostMessageBytes = std::size_t(64) * 1024;

/// Returns the bytes of a message: a GVariant of the type (sa{sv}) in the byte order of the
/// machine. Texts are byte strings, because file names need not be UTF-8. Icons are left out.
std::vector<std::byte> encoded(const Message& message);

/// Reads a message from bytes that nobody has checked; `std::nullopt` unless `encoded` can have
/// made them.
std::optional<Message> decoded(std::span<const std::byte> bytes);

} // namespace quarner
