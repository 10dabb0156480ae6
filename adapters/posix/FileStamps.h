// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

#include "quarner/platform/FileStamp.h"

namespace quarner {

/// Returns the stamp of the regular file at a path, following symbolic links; `std::nullopt` if
/// there is none. Any thread.
std::optional<FileStamp> stampOfFile(const std::string& path);

} // namespace quarner
