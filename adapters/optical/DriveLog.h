// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <initializer_list>
#include <string_view>

namespace quarner {

/// Writes one line, made of these parts, to the host's log. A line that the log does not take, or
/// for which there is no memory, is lost: no query and no burn fails for it. Any thread.
void logLine(std::initializer_list<std::string_view> parts) noexcept;

} // namespace quarner
