// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>

namespace quarner {

/// Why a drive could not be opened by its device node, which ended with an error of errno: one
/// sentence in English, without a full stop, that names the group or the permission that is
/// missing. Any thread.
std::string openingProblem(const std::string& node, int error);

/// The same, with what can be done about it, for a drive that is not open in this process: opens
/// its node as a burn does, for reading and writing and for itself alone, and closes it again. One
/// that is busy is waited for half a second. Nothing when it opens. Any thread.
std::optional<std::string> accessProblem(const std::string& node);

} // namespace quarner
