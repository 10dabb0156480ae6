// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner::cli {

/// Returns the `file:` URI (RFC 8089) of a path: ASCII, with every other byte percent-encoded, so
/// that a path that is not UTF-8 survives. A relative path is resolved against the current working
/// directory; returns an empty text if that does not exist any more.
std::string fileUri(const std::string& path);

} // namespace quarner::cli
