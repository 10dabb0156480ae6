// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// Functions on the path of a file. Stateless; any thread.
class QUARNER_EXPORT Paths {
public:
    /// `realPath` Returns the target of an alias. Any other path is returned unchanged, whether or
    /// not the file exists. Symbolic links are not followed.
    static std::string realPath(const std::string& path);

    /// `isQuickTimeProtectedFile` Returns whether the file is copy-protected media, by its
    /// extension (m4p, m4b, ignoring case) or by its type code. A file that cannot be examined
    /// counts as protected.
    static bool isQuickTimeProtectedFile(const std::string& path);

    /// `hfsType` Returns the string form of the file's classic type code; a missing code counts as
    /// 0. Returns `std::nullopt` if the file cannot be examined.
    static std::optional<std::string> hfsType(const std::string& path);

    /// Returns the string form of a type code: its four characters, most significant byte first, in
    /// single quotes, as in "'Midi'". The bytes are unchanged.
    static std::string typeStringForCode(std::uint32_t code);

    /// Returns the part after the last dot of the last component, in lower case; empty if there is
    /// none. Only ASCII letters are lowered.
    static std::string lowercaseExtension(const std::string& path);

    /// Returns the `file:` URI (RFC 8089) of a path: ASCII, with every other byte percent-encoded,
    /// so that a path that is not UTF-8 survives. A relative path is resolved against the current
    /// working directory; returns an empty text if that does not exist any more.
    static std::string fileUri(const std::string& path);
};

} // namespace quarner
