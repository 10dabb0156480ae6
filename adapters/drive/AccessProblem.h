// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// Returns why opening a drive's device node failed with `error` (an errno): one English sentence
/// without a full stop that names the missing group or permission. Any thread.
std::string openingProblem(const std::string& node, int error);

/// Returns why a drive that is not open in this process cannot be opened, and what can be done
/// about it; `std::nullopt` if it can be opened. Opens its node as a burn does, for reading and
/// writing and exclusively, and closes it again. A busy drive is retried for half a second. Any
/// thread.
std::optional<std::string> accessProblem(const std::string& node);

} // namespace quarner
