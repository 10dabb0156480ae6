// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// Helpers on the path of a file. They hold no state and may be called on any thread.
class QUARNER_EXPORT Paths {
public:
    /// `realPath` What an alias stands for; every other path comes back exactly as it was given,
    /// whether or not anything exists there. Symbolic links are not followed.
    static std::string realPath(const std::string& path);

    /// `isQuickTimeProtectedFile` Whether the file is copy-protected media, by its extension
    /// (m4p, m4b in any case) or by its type code. A file that cannot be examined counts as
    /// protected.
    static bool isQuickTimeProtectedFile(const std::string& path);

    /// `hfsType` The file's classic type code in its string form; a missing code counts as 0.
    /// Nothing when the file cannot be examined.
    static std::optional<std::string> hfsType(const std::string& path);

    /// The string form of a type code: its four characters, most significant byte first, in
    /// single quotes, as in "'Midi'". The bytes stand as they are.
    static std::string typeStringForCode(std::uint32_t code);

    /// The part after the last dot of the last component, in lower case; empty if there is none.
    /// Only ASCII letters are lowered.
    static std::string lowercaseExtension(const std::string& path);
};

} // namespace quarner
