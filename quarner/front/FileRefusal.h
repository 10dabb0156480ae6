// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// Why a burner does not add a file.
enum class RefusalReason {
    Missing,         ///< there is no file at the path
    Unreadable,      ///< the file cannot be opened or read
    NotAFile,        ///< a folder, a device or the like
    UnsupportedType, ///< neither the extension nor the type code is supported
    Protected,       ///< copy-protected media; never of a data burner
    NoSound,         ///< no sound that can be decoded was found in it
    TooShort,        ///< it plays for less than a second
    Damaged,         ///< too much of it is damaged
    AlreadyInList    ///< the list has this file; it is in neither list of the end report
};

/// A file that a burner has refused.
struct FileRefusal {
    /// As in the end report: as the caller wrote it if the file was refused before the run began,
    /// otherwise resolved.
    std::string path = {};
    RefusalReason reason = RefusalReason::Missing; ///< why, for programs
    /// What the system or the decoder says, in a few English words without the path: "Permission
    /// denied". May be empty.
    std::string detail = {};

    /// Compares every member.
    bool operator==(const FileRefusal&) const = default;
};

} // namespace quarner
