// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzz/MediaFile.h"
#include "fuzz/Target.h"

/// A whole file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quarner::fuzz::checkMediaFile("input.mp3", data, size);
    return 0;
}
