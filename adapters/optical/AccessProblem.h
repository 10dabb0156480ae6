// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// One sentence in English, without a full stop, that says why this user may not open a drive by
/// its device node, naming the group or the permission that is missing. Nothing when the node may
/// be opened for reading and writing, and when it is not there at all. Does not open the node. Any
/// thread.
std::optional<std::string> accessProblem(const std::string& node);

} // namespace quarner
