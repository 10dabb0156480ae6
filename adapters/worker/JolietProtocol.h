// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/worker/Message.h"
#include "quarner/platform/FileStamp.h"

namespace quarner {

/// The program that lays out one file system.
constexpr char jolietProgram[] = "quarner-joliet";

/// A flat folder of files.
struct JolietFolder {
    /// A file under its name on the disc. Entries with the same device and inode share their
    /// content on the disc.
    struct Entry {
        std::string name;
        FileStamp stamp;

        bool operator==(const Entry&) const = default;
    };
    std::string volumeName;
    std::vector<Entry> entries;

    bool operator==(const JolietFolder&) const = default;
};

/// What the library and the program say: `layOut` with the version of this protocol and the number
/// of bytes of the folder, which follow in the stream; then `done` with the number of blocks of the
/// disc and of bytes of its head, which follow in the stream; or `failed` with a text.
namespace joliet {
constexpr char layOut[] = "lay-out";
constexpr std::int64_t version = 1;
constexpr std::chrono::seconds timeout{60};
/// The largest folder and head, in bytes: enough for a million files.
constexpr std::uint64_t mostBytes = std::uint64_t(512) * 1024 * 1024;
} // namespace joliet

/// The request to lay out a folder of this number of bytes.
Message layOutRequest(std::uint64_t bytes);

/// A folder as bytes, and from bytes that nobody has checked.
std::vector<std::byte> encoded(const JolietFolder& folder);
std::optional<JolietFolder> decodedFolder(std::span<const std::byte> bytes);

} // namespace quarner
