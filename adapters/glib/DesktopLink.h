// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// Returns the target of a desktop entry of type Link: the path of its URL, whether it exists or
/// not. Returns `std::nullopt` for any other file, for a URL that is not a local file, and for a
/// symbolic link. Any thread.
std::optional<std::string> targetOfDesktopLink(const std::string& path);

} // namespace quarner
