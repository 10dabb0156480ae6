// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// A file name as valid UTF-8: what is not becomes U+FFFD, byte by byte, and control characters as
/// well.
std::string readableName(const std::string& name);

} // namespace quarner
