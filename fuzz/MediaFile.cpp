// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzz/MediaFile.h"

#include <array>

#include "adapters/ffmpeg/FFmpegServices.h"
#include "adapters/ffmpeg/FileTags.h"
#include "fuzz/Input.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::fuzz {
namespace {

/// A small file may promise years of silence: more than this is not waited for.
constexpr std::uint64_t mostPairs = std::uint64_t(44100) * 120;

/// The pairs that a stream delivers up to its end, or at least `mostPairs`; nothing if it fails
/// before.
std::optional<std::uint64_t> delivered(PCMStream& stream) {
    std::array<std::int16_t, 8192> values = {};
    std::uint64_t pairs = 0;
    for (;;) {
        const auto count = stream.read(values);
        if (!count)
            return std::nullopt;
        require(*count <= values.size() && *count % 2 == 0, "a stream delivers whole pairs");
        pairs += *count / 2;
        if (*count < values.size() || pairs >= mostPairs)
            return pairs;
    }
}

void checkStream(PCMService& service, const std::string& path, const PCMLength& length) {
    const auto stream = service.open(path);
    require(stream != nullptr, "a measured file can be opened");
    const auto pairs = delivered(*stream);
    require(pairs.has_value(), "a measured file plays to its end");
    if (length.discSamples > mostPairs) {
        require(*pairs >= mostPairs, "a long file does not end early");
        return;
    }
    if (*pairs != length.discSamples)
        std::fprintf(stderr, "measured %llu, delivered %llu\n",
                     static_cast<unsigned long long>(length.discSamples),
                     static_cast<unsigned long long>(*pairs));
    require(*pairs == length.discSamples, "what is measured is what is delivered");
}

void checkTagText(const std::string& text) {
    require(text.size() <= MediaTags::mostBytes, "a tag's text is bounded");
    require(shownTagText(text) == text, "a tag's text can be shown");
}

void checkTags(const std::string& path) {
    const MediaTags tags = readTags(path);
    for (const std::string& text : {tags.title, tags.artist, tags.album})
        checkTagText(text);
}

} // namespace

void checkMediaFile(const char* name, const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    const std::string path = folder.write(name, Input(data, size).rest());
    // A new service each time: lengths are remembered by a stamp that is too coarse for a fuzzer.
    const auto service = makeFFmpegPCMService();
    if (const auto length = service->measure(path))
        checkStream(*service, path, *length);
    checkTags(path);
}

} // namespace quarner::fuzz
