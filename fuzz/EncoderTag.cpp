// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/EncoderTag.h"

#include "fuzz/Input.h"
#include "fuzz/Target.h"

/// The bytes in front of the first frame that is heard.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using quarner::fuzz::require;
    const std::string bytes = quarner::fuzz::Input(data, size).rest();
    const auto tag = quarner::encoderTagIn(bytes);
    if (!tag)
        return 0;
    constexpr std::uint32_t mostSamples = 0xfff; // 12 bits each
    require(tag->delay <= mostSamples && tag->padding <= mostSamples, "delay and padding fit");
    require(tag->frames <= 0xffffffff, "the count of frames fits");
    return 0;
}
