// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/worker/JolietProtocol.h"

#include <cstring>
#include <string_view>

namespace quarner {
namespace {

// Texts end with a zero. Each entry is its five numbers, as they are in memory, and its name.

struct Numbers {
    std::uint64_t size;
    std::int64_t modifiedSeconds;
    std::int64_t modifiedNanoseconds;
    std::uint64_t device;
    std::uint64_t inode;
};

void append(std::vector<std::byte>& bytes, const void* from, std::size_t count) {
    const auto* const first = static_cast<const std::byte*>(from);
    bytes.insert(bytes.end(), first, first + count);
}

void append(std::vector<std::byte>& bytes, const std::string& text) {
    append(bytes, text.c_str(), std::strlen(text.c_str()) + 1);
}

std::optional<std::string> takeText(std::span<const std::byte>& bytes) {
    const std::string_view left(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::size_t end = left.find('\0');
    if (end == std::string_view::npos)
        return std::nullopt;
    bytes = bytes.subspan(end + 1);
    return std::string(left.substr(0, end));
}

std::optional<JolietFolder::Entry> takeEntry(std::span<const std::byte>& bytes) {
    Numbers numbers = {};
    if (bytes.size() < sizeof numbers)
        return std::nullopt;
    std::memcpy(&numbers, bytes.data(), sizeof numbers);
    bytes = bytes.subspan(sizeof numbers);
    const std::optional<std::string> name = takeText(bytes);
    if (!name)
        return std::nullopt;
    return JolietFolder::Entry{*name,
                               {numbers.size, numbers.modifiedSeconds, numbers.modifiedNanoseconds,
                                numbers.device, numbers.inode}};
}

} // namespace

Message layOutRequest(std::uint64_t bytes) {
    return {joliet::layOut, {{"version", joliet::version}, {"bytes", bytes}}};
}

std::vector<std::byte> encoded(const JolietFolder& folder) {
    std::vector<std::byte> bytes;
    append(bytes, folder.volumeName);
    for (const auto& [name, stamp] : folder.entries) {
        const Numbers numbers = {stamp.size, stamp.modifiedSeconds, stamp.modifiedNanoseconds,
                                 stamp.device, stamp.inode};
        append(bytes, &numbers, sizeof numbers);
        append(bytes, name);
    }
    return bytes;
}

std::optional<JolietFolder> decodedFolder(std::span<const std::byte> bytes) {
    const std::optional<std::string> volumeName = takeText(bytes);
    if (!volumeName)
        return std::nullopt;
    JolietFolder folder{*volumeName, {}};
    while (!bytes.empty()) {
        std::optional<JolietFolder::Entry> entry = takeEntry(bytes);
        if (!entry)
            return std::nullopt;
        folder.entries.push_back(std::move(*entry));
    }
    return folder;
}

} // namespace quarner
