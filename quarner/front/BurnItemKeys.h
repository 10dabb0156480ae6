// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

namespace quarner {

/// The keys of the burn item record, which describes the file of every item of a compilation, audio
/// or data. The path is always the resolved one. Both sizes describe the same byte count, both
/// durations the same count of seconds.

/// Text: the size for display, "4.1 MB".
inline constexpr char kQuarnItemFileSizeKey[] = "itemFileSize";
/// Signed 64-bit: the size in bytes.
inline constexpr char kQuarnItemRealFileSizeKey[] = "itemRealFileSize";
/// Text: the name shown to users.
inline constexpr char kQuarnItemDisplayNameKey[] = "itemName";
/// Text: the path as the host gave it, also if it is relative, or the target if it is an alias. Its
/// bytes are unchanged. It identifies the file.
inline constexpr char kQuarnItemFilePathKey[] = "itemPath";
/// Icon: names in the desktop's icon theme.
inline constexpr char kQuarnItemIconKey[] = "itemIcon";
/// Text: the play time for display, "00:03:25".
inline constexpr char kQuarnItemDurationKey[] = "itemDuration";
/// Signed 64-bit: the play time in whole seconds, truncated.
inline constexpr char kQuarnItemRealDurationKey[] = "itemRealDuration";

} // namespace quarner
