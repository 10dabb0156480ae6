// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietDirectory.h"

#include <algorithm>

#include "quarner/platform/DiscFormat.h"

namespace quarner {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t firstDescriptor = 16;
constexpr std::size_t rootRecordOffset = 156;
constexpr std::size_t nameOffset = 33;

std::uint32_t byteAt(Bytes bytes, std::size_t at) {
    return std::to_integer<std::uint32_t>(bytes[at]);
}

std::uint32_t littleEndian32(Bytes bytes, std::size_t at) {
    return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8 | byteAt(bytes, at + 2) << 16 |
           byteAt(bytes, at + 3) << 24;
}

Bytes blocksFrom(Bytes head, std::size_t block, std::size_t size) {
    const std::size_t start = block * dataBlockSize;
    return start > head.size() || head.size() - start < size ? Bytes{} : head.subspan(start, size);
}

bool isJolietDescriptor(Bytes descriptor) {
    constexpr std::uint32_t supplementary = 2;
    constexpr std::size_t escapeOffset = 88; // "%/@", "%/C" or "%/E": UCS-2 level 1, 2, 3
    return byteAt(descriptor, 0) == supplementary && byteAt(descriptor, escapeOffset) == '%' &&
           byteAt(descriptor, escapeOffset + 1) == '/';
}

Bytes rootDirectory(Bytes head) {
    constexpr std::uint32_t terminator = 255;
    for (std::size_t block = firstDescriptor;; ++block) {
        const Bytes descriptor = blocksFrom(head, block, dataBlockSize);
        if (descriptor.empty() || byteAt(descriptor, 0) == terminator)
            return {};
        if (isJolietDescriptor(descriptor))
            return blocksFrom(head, littleEndian32(descriptor, rootRecordOffset + 2),
                              littleEndian32(descriptor, rootRecordOffset + 10));
    }
}

std::u16string nameOf(Bytes record) {
    const std::size_t length = byteAt(record, nameOffset - 1);
    std::u16string name;
    for (std::size_t at = nameOffset; at + 1 < nameOffset + length; at += 2)
        name += static_cast<char16_t>(byteAt(record, at) << 8 | byteAt(record, at + 1));
    return name;
}

bool isWhole(Bytes record) {
    return record.size() > nameOffset &&
           record.size() >= nameOffset + byteAt(record, nameOffset - 1);
}

} // namespace

std::map<std::u16string, JolietRecord> jolietRootDirectory(Bytes head) {
    const Bytes directory = rootDirectory(head);
    std::map<std::u16string, JolietRecord> records;
    for (std::size_t at = 0; at < directory.size();) {
        const std::size_t length = byteAt(directory, at);
        if (length == 0) {
            at = (at / dataBlockSize + 1) * dataBlockSize;
            continue;
        }
        const Bytes record = directory.subspan(at, std::min(length, directory.size() - at));
        at += length;
        // The directory itself and its parent have names of one byte.
        if (isWhole(record) && byteAt(record, nameOffset - 1) > 1)
            records[nameOf(record)] = {littleEndian32(record, 2), littleEndian32(record, 10)};
    }
    return records;
}

} // namespace quarner
