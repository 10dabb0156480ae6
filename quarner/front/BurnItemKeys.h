// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

namespace quarner {

/// The burn item record: the keys under which every item of a compilation, audio or data, carries
/// what is known of its file. The path is always the resolved one; both sizes describe the same
/// byte count, both durations the same count of seconds.

/// Text: the size for display, "4.1 MB".
inline constexpr char kQuarnItemFileSizeKey[] = "itemFileSize";
/// Signed 64-bit: the size in bytes.
inline constexpr char kQuarnItemRealFileSizeKey[] = "itemRealFileSize";
/// Text: the name as a user sees it.
inline constexpr char kQuarnItemDisplayNameKey[] = "itemName";
/// Text: the path as the host gave it, a relative one left relative, but what an alias stands for
/// in its place. Whatever bytes it has. It identifies the file.
inline constexpr char kQuarnItemFilePathKey[] = "itemPath";
/// Icon: names in the desktop's icon theme.
inline constexpr char kQuarnItemIconKey[] = "itemIcon";
/// Text: the play time for display, "00:03:25".
inline constexpr char kQuarnItemDurationKey[] = "itemDuration";
/// Signed 64-bit: the play time in whole seconds, truncated.
inline constexpr char kQuarnItemRealDurationKey[] = "itemRealDuration";

} // namespace quarner
