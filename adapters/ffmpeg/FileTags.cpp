// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/FileTags.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "adapters/ffmpeg/ContainerSource.h"
#include "adapters/ffmpeg/FFmpegLog.h"
#include "adapters/ffmpeg/Id3Excerpt.h"

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/mem.h>
}

namespace quarner {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Bytes in memory as libavformat reads them.
class MemoryInput {
public:
    explicit MemoryInput(Bytes bytes) : _bytes(std::move(bytes)) {
        constexpr int bufferSize = 4096;
        auto* const buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
        if (buffer != nullptr)
            _context = avio_alloc_context(buffer, bufferSize, 0, this, read, nullptr, seek);
        if (_context == nullptr)
            av_free(buffer);
    }
    ~MemoryInput() {
        if (_context != nullptr)
            av_freep(&_context->buffer);
        avio_context_free(&_context);
    }
    MemoryInput(const MemoryInput&) = delete;
    MemoryInput& operator=(const MemoryInput&) = delete;

    AVIOContext* context() const { return _context; }

private:
    static int read(void* self, std::uint8_t* buffer, int size) {
        auto& input = *static_cast<MemoryInput*>(self);
        const auto left = std::span(input._bytes).subspan(input._position);
        const std::size_t count = std::min(left.size(), static_cast<std::size_t>(size));
        std::copy_n(left.begin(), count, buffer);
        input._position += count;
        return count == 0 ? AVERROR_EOF : static_cast<int>(count);
    }
    static std::int64_t seek(void* self, std::int64_t offset, int whence) {
        auto& input = *static_cast<MemoryInput*>(self);
        const auto size = static_cast<std::int64_t>(input._bytes.size());
        if (whence == AVSEEK_SIZE)
            return size;
        if (whence == SEEK_CUR)
            offset += static_cast<std::int64_t>(input._position);
        else if (whence == SEEK_END)
            offset += size;
        input._position = static_cast<std::size_t>(std::clamp<std::int64_t>(offset, 0, size));
        return static_cast<std::int64_t>(input._position);
    }

    const Bytes _bytes;
    std::size_t _position = 0;
    AVIOContext* _context = nullptr;
};

std::string entry(const AVDictionary* notes, const char* key) {
    const AVDictionaryEntry* const found = av_dict_get(notes, key, nullptr, 0);
    return found == nullptr ? std::string() : shownTagText(found->value);
}

std::uint32_t leadingNumber(const std::string& text) {
    std::uint32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

MediaTags tagsIn(const AVDictionary* notes) {
    return {.title = entry(notes, "title"),
            .artist = entry(notes, "artist"),
            .album = entry(notes, "album"),
            .track = leadingNumber(entry(notes, "track"))};
}

MediaTags tagsOfMp3(Bytes excerpt) {
    const AVInputFormat* const format = av_find_input_format("mp3");
    const MemoryInput input(std::move(excerpt));
    AVFormatContext* context = avformat_alloc_context();
    if (format == nullptr || context == nullptr || input.context() == nullptr) {
        avformat_free_context(context);
        return {};
    }
    context->pb = input.context();
    if (avformat_open_input(&context, "", format, nullptr) != 0)
        return {};
    MediaTags tags = tagsIn(context->metadata);
    avformat_close_input(&context);
    return tags;
}

/// Calls `see` with each character of a text. Returns false if it is not UTF-8.
template <typename See>
bool decode(const std::string& text, const See& see) {
    const auto* at = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto* const end = at + text.size();
    while (at < end) {
        std::int32_t character = 0;
        if (av_utf8_decode(&character, &at, end, 0) < 0)
            return false;
        see(static_cast<std::uint32_t>(character));
    }
    return true;
}

void append(std::string& text, std::uint32_t character) {
    const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto addTail = [&](unsigned shift) { add(0x80U | (character >> shift & 0x3FU)); };
    if (character < 0x80) {
        add(character);
    } else if (character < 0x800) {
        add(0xC0U | character >> 6);
        addTail(0);
    } else if (character < 0x10000) {
        add(0xE0U | character >> 12);
        addTail(6);
        addTail(0);
    } else {
        add(0xF0U | character >> 18);
        addTail(12);
        addTail(6);
        addTail(0);
    }
}

void appendShown(std::string& text, std::uint32_t character) {
    constexpr std::size_t longestCharacter = 4;
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0) ||
                           character == 0x2028 || character == 0x2029;
    if (text.size() + longestCharacter <= MediaTags::mostBytes)
        append(text, isControl ? ' ' : character);
}

std::string withoutOuterSpaces(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? std::string()
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace

std::string shownTagText(const std::string& text) {
    std::string shown;
    if (!decode(text, [&](std::uint32_t character) { appendShown(shown, character); })) {
        shown.clear();
        for (const char byte : text)
            appendShown(shown, static_cast<unsigned char>(byte));
    }
    return withoutOuterSpaces(shown);
}

MediaTags readTags(const std::string& path) try {
    const auto file = WindowedFile::open(path);
    if (!file)
        return {};
    const FFmpegLogScope scope(path, FFmpegLogScope::Reports::Nowhere);
    if (const std::optional<Bytes> excerpt = id3Excerpt(*file))
        return tagsOfMp3(*excerpt);
    const auto container = ContainerSource::open(*file);
    return container ? tagsIn(container->notes()) : MediaTags();
} catch (...) {
    return {};
}

} // namespace quarner
