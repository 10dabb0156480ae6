// SPDX-License-Identifier: LGPL-2.1-or-later
#include <vector>

#include "adapters/ffmpeg/EncoderTag.h"
#include "fuzz/Input.h"
#include "fuzz/Target.h"

/// The bytes in front of the first frame that is heard.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using quarner::fuzz::require;
    const std::vector<std::uint8_t> frame(data, data + size);
    const auto tag = quarner::encoderTagIn(frame);
    if (!tag)
        return 0;
    constexpr std::uint32_t mostSamples = 0xfff; // 12 bits each
    constexpr std::uint32_t decoderDelay = 529;
    require(tag->delay <= mostSamples + decoderDelay && tag->padding <= mostSamples,
            "delay and padding fit");
    require(tag->frames <= 0xffffffff, "the count of frames fits");
    return 0;
}
