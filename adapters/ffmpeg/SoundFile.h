// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "adapters/ffmpeg/FFmpegPCMStream.h"
#include "adapters/ffmpeg/WindowedFile.h"

namespace quarner {

/// Opens a file for decoding. Null if it holds no sound, or none that there is a decoder for. With
/// a length in pairs the stream delivers exactly that. `problem` is set to why it could not be
/// read.
std::unique_ptr<FFmpegPCMStream> openSound(const std::string& path,
                                           std::optional<std::uint64_t> length = std::nullopt,
                                           WindowedFile::MayContinue mayContinue = {},
                                           std::string* problem = nullptr);

/// What measuring a file found.
struct Measurement {
    std::optional<PCMLength> length;
    bool wasStopped = false; ///< by `mayContinue`, before the length was known
    std::string problem;     ///< why there is no length; empty if no sound was found
    bool isDamaged = false;  ///< whether the problem is damage in the file
};

/// Measures a file by the cheapest of three ways that is certain:
///
/// 1. The header proves the length: nothing else is read.
/// 2. The headers of all frames are read, if there is nothing unusual about them.
/// 3. The file is decoded as for a burn, and the samples are counted.
Measurement measureSound(const std::string& path, const WindowedFile::MayContinue& mayContinue);

} // namespace quarner
