// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/Id3Excerpt.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "adapters/ffmpeg/MpegTags.h"

namespace quarner {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t headerSize = 10;
constexpr std::uint64_t mostOfFrame = 16U << 10;        // bytes; longer texts are not of this kind
constexpr std::uint64_t mostUnsynchronised = 64U << 10; // bytes of a tag without frames to walk
constexpr int mostFrames = 2048;
constexpr std::uint64_t id3v1Size = 128;
constexpr std::uint8_t unsynchronised = 0x80;
constexpr std::uint8_t hasExtendedHeader = 0x40;

std::uint64_t number(std::span<const std::uint8_t> bytes, unsigned bitsPerByte) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes)
        value = value << bitsPerByte | byte;
    return value;
}

void putNumber(Bytes& bytes, std::uint64_t value, unsigned count, unsigned bitsPerByte) {
    for (unsigned i = count; i-- > 0;)
        bytes.push_back(
            static_cast<std::uint8_t>(value >> i * bitsPerByte & ((1U << bitsPerByte) - 1)));
}

/// The frames of an ID3 tag of version 2.2, 2.3 or 2.4.
class Frames {
public:
    Frames(WindowedFile& file, std::uint8_t version, std::uint64_t begin, std::uint64_t end)
        : _file(file), _version(version), _at(begin), _end(end) {}

    void skipExtendedHeader() {
        const auto bytes = _file.view(_at, 4);
        if (bytes.size() == 4)
            _at += _version == 3 ? 4 + number(bytes, 8) : number(bytes, 7);
    }

    /// Appends the wanted frames.
    void copyWanted(Bytes& excerpt) {
        for (int i = 0; i < mostFrames && isName(_at); ++i) {
            const std::uint64_t size = contentSize();
            if (isWanted() && size <= mostOfFrame && _at + frameHeader() + size <= _end)
                copy(excerpt, size);
            _at += frameHeader() + size;
        }
    }

private:
    std::size_t nameSize() const { return _version == 2 ? 3 : 4; }
    std::uint64_t frameHeader() const { return _version == 2 ? 6 : 10; }

    bool isName(std::uint64_t at) const {
        if (at + frameHeader() > _end)
            return false;
        const auto name = _file.view(at, nameSize());
        return name.size() == nameSize() && std::all_of(name.begin(), name.end(), [](auto byte) {
                   return (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
               });
    }

    bool isWanted() const {
        constexpr std::array<std::string_view, 8> wanted = {"TIT2", "TPE1", "TALB", "TRCK",
                                                            "TT2",  "TP1",  "TAL",  "TRK"};
        const auto bytes = _file.view(_at, nameSize());
        const std::string_view name(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return std::find(wanted.begin(), wanted.end(), name) != wanted.end();
    }

    /// Some programs write the sizes of version 2.4 as those of 2.3: what leads to another frame or
    /// to the end is right.
    std::uint64_t contentSize() const {
        const std::size_t digits = _version == 2 ? 3 : 4;
        const auto bytes = _file.view(_at + nameSize(), digits);
        const std::uint64_t plain = number(bytes, 8);
        const std::uint64_t safe = number(bytes, 7);
        return _version == 4 && !isBoundary(plain) ? safe
               : _version == 4 && isBoundary(safe) ? safe
                                                   : plain;
    }
    bool isBoundary(std::uint64_t size) const {
        const std::uint64_t next = _at + frameHeader() + size;
        if (next >= _end || isName(next))
            return next <= _end;
        const auto padding = _file.view(next, 1);
        return !padding.empty() && padding[0] == 0;
    }

    void copy(Bytes& excerpt, std::uint64_t size) const {
        const auto name = _file.view(_at, nameSize());
        excerpt.insert(excerpt.end(), name.begin(), name.end());
        putNumber(excerpt, size, _version == 2 ? 3 : 4, _version == 4 ? 7 : 8);
        const std::uint64_t flags = _at + nameSize() + (_version == 2 ? 3 : 4);
        const auto rest =
            _file.view(flags, static_cast<std::size_t>(_at + frameHeader() + size - flags));
        excerpt.insert(excerpt.end(), rest.begin(), rest.end());
    }

    WindowedFile& _file;
    const std::uint8_t _version;
    std::uint64_t _at;
    const std::uint64_t _end;
};

Bytes tagWith(std::uint8_t version, std::uint8_t flags, const Bytes& frames) {
    Bytes tag = {'I', 'D', '3', version, 0, flags};
    putNumber(tag, frames.size(), 4, 7);
    tag.insert(tag.end(), frames.begin(), frames.end());
    return tag;
}

/// The wanted part of the ID3v2 tag in front of a file; empty if there is none.
Bytes front(WindowedFile& file) {
    const auto header = file.view(0, headerSize);
    if (header.size() < headerSize || header[0] != 'I' || header[1] != 'D' || header[2] != '3')
        return {};
    const std::uint8_t version = header[3];
    const std::uint8_t flags = header[5];
    const std::uint64_t end = std::min(tagSizeAt(file, 0), file.size());
    if (version < 2 || version > 4 || end <= headerSize)
        return {};
    Bytes frames;
    if (version < 4 && (flags & unsynchronised) != 0) { // its frames cannot be told apart in place
        const auto size = std::min(end - headerSize, mostUnsynchronised);
        const auto start = file.view(headerSize, static_cast<std::size_t>(size));
        frames.assign(start.begin(), start.end());
        return tagWith(version, flags, frames);
    }
    Frames walk(file, version, headerSize, end);
    if (version > 2 && (flags & hasExtendedHeader) != 0)
        walk.skipExtendedHeader();
    walk.copyWanted(frames);
    return tagWith(version, flags & unsynchronised, frames);
}

/// Libavformat takes an MP3 file without sound for no MP3 file.
void appendSilence(Bytes& excerpt) {
    constexpr std::size_t frameSize = 417; // 128 kbit/s at 44.1 kHz
    for (int i = 0; i < 3; ++i) {
        excerpt.insert(excerpt.end(), {0xFF, 0xFB, 0x90, 0x00});
        excerpt.resize(excerpt.size() + frameSize - 4);
    }
}

} // namespace

std::optional<std::vector<std::uint8_t>> id3Excerpt(WindowedFile& file) {
    Bytes excerpt = front(file);
    const std::uint64_t behind = file.size() - std::min(file.size(), id3v1Size);
    const auto last = file.view(behind, id3v1Size);
    const bool hasLast =
        last.size() == id3v1Size && last[0] == 'T' && last[1] == 'A' && last[2] == 'G';
    if (excerpt.empty() && !hasLast)
        return std::nullopt;
    appendSilence(excerpt);
    if (hasLast)
        excerpt.insert(excerpt.end(), last.begin(), last.end());
    return excerpt;
}

} // namespace quarner
