// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

#include "quarner/platform/MediaService.h"

namespace quarner {

/// Reads the tags of an MP3 or MP4 file: ID3 in front and behind, and the notes of an MP4 file. Of
/// a tag with pictures, only what is not a picture is read. Nothing throws.
MediaTags readTags(const std::string& path);

/// Returns a text of a tag as it may be shown: as UTF-8 (what is not UTF-8 is taken as Latin-1),
/// with spaces for control characters, none at the ends, and at most `MediaTags::mostBytes` bytes.
std::string shownTagText(const std::string& text);

} // namespace quarner
