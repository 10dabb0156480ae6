// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// Where a desktop entry of type Link points to: the path of its URL, which exists or not. Nothing
/// for any other file, for a URL that is not a local file, and for a symbolic link. Any thread.
std::optional<std::string> targetOfDesktopLink(const std::string& path);

} // namespace quarner
