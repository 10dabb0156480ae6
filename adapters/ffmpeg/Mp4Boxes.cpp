// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/Mp4Boxes.h"

#include <algorithm>

namespace quarner {

namespace {

constexpr std::uint64_t mostBoxes = 100'000; // in one file
constexpr int deepestBox = 16;               // boxes around one; real files have about six

} // namespace

void Mp4Boxes::each(const Mp4Box& within, const std::function<void(const Mp4Box&)>& visit) {
    _hasFailed = _hasFailed || _depth == deepestBox;
    ++_depth;
    eachOfLevel(within, visit);
    --_depth;
}

void Mp4Boxes::eachOfLevel(const Mp4Box& within, const std::function<void(const Mp4Box&)>& visit) {
    constexpr std::uint64_t headerSize = 8;
    std::uint64_t at = within.begin;
    while (at + headerSize <= within.end && !hasFailed()) {
        const Mp4Box header = {at, within.end, 0};
        std::uint64_t size = number(header, 0);
        Mp4Box box = {at + headerSize, within.end, number(header, 4)};
        if (size == 1 && at + 2 * headerSize <= within.end) {
            size = number64(header, 8);
            box.begin += headerSize;
        } else if (size == 0) {
            size = within.end - at; // to the end
        }
        _hasFailed = _hasFailed || ++_visited > mostBoxes;
        if (size < box.begin - at || size > within.end - at || _hasFailed)
            return;
        box.end = at + size;
        visit(box);
        at = box.end;
    }
}

void Mp4Boxes::prefetch(const Mp4Box& box) {
    constexpr std::uint64_t largest = 1U << 20;
    constexpr std::size_t behind = 4096; // libavformat reads this much at once
    const std::uint64_t begin = box.begin - std::min<std::uint64_t>(box.begin, 16);
    if (box.end - begin <= largest)
        _file.view(begin, static_cast<std::size_t>(box.end - begin) + behind);
}

std::uint8_t Mp4Boxes::number8(const Mp4Box& box, std::uint64_t offset) {
    return static_cast<std::uint8_t>(read(box, offset, 1));
}

std::uint32_t Mp4Boxes::number(const Mp4Box& box, std::uint64_t offset) {
    return static_cast<std::uint32_t>(read(box, offset, 4));
}

std::uint64_t Mp4Boxes::number64(const Mp4Box& box, std::uint64_t offset) {
    return read(box, offset, 8);
}

std::uint64_t Mp4Boxes::read(const Mp4Box& box, std::uint64_t offset, std::size_t size) {
    const bool isInside = box.end - box.begin >= size && offset <= box.end - box.begin - size;
    const auto bytes =
        isInside ? _file.view(box.begin + offset, size) : std::span<const std::uint8_t>();
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes)
        value = value << 8 | byte;
    _hasFailed = _hasFailed || bytes.size() != size;
    return value;
}

} // namespace quarner
