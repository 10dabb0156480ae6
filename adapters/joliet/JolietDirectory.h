// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>

namespace quarner {

/// The extent of a file of the Joliet root directory.
struct JolietRecord {
    std::uint32_t firstBlock = 0;
    std::uint32_t size = 0; ///< bytes
};

/// Reads the root directory of the Joliet tree from the first blocks of a file system. Returns the
/// records of its files by name (UTF-16 in this machine's byte order); an empty map if the blocks
/// hold no such directory. Never reads beyond the blocks.
///
/// A supplementary volume descriptor (ECMA-119, 8.5) has type 2 and the Joliet escape sequence; its
/// bytes 156 to 189 are the record of the root directory. A directory record (9.1) has its length
/// in byte 0, the extent's block in bytes 2 to 5 and its size in bytes 10 to 13, both little-endian
/// (and again big-endian), flags in byte 25, the length of the name in byte 32, and the name, in
/// big-endian UCS-2, from byte 33. Records do not cross blocks: a length of 0 ends the block.
std::map<std::u16string, JolietRecord> jolietRootDirectory(std::span<const std::byte> head);

} // namespace quarner
