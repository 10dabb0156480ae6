// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "adapters/ffmpeg/WindowedFile.h"

namespace quarner {

/// The content of a box of an MP4 file: a range of the file's bytes.
struct Mp4Box {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::uint32_t type = 0;

    static constexpr std::uint32_t code(std::string_view name) {
        std::uint32_t value = 0;
        for (const char letter : name)
            value = value << 8 | static_cast<unsigned char>(letter);
        return value;
    }
    bool is(std::string_view name) const { return type == code(name); }
};

/// Reads boxes and the big-endian numbers in them. A number outside its box is 0, and `hasFailed`.
class Mp4Boxes {
public:
    /// The file must outlive this object.
    explicit Mp4Boxes(WindowedFile& file) : _file(file) {}

    std::uint64_t fileSize() const { return _file.size(); }

    /// Calls `visit` for each box within another one, in order. A size that cannot be right ends
    /// it, and so do boxes within boxes without end.
    void each(const Mp4Box& within, const std::function<void(const Mp4Box&)>& visit);

    /// Reads a box of a usual size in one go, with its header and what libavformat reads behind it.
    void prefetch(const Mp4Box& box);

    std::uint8_t number8(const Mp4Box& box, std::uint64_t offset);
    std::uint32_t number(const Mp4Box& box, std::uint64_t offset);
    std::uint64_t number64(const Mp4Box& box, std::uint64_t offset);

    /// True after a number or a box was not where it should be, or the file could not be read.
    bool hasFailed() const { return _hasFailed || _file.hasFailed(); }

private:
    void eachOfLevel(const Mp4Box& within, const std::function<void(const Mp4Box&)>& visit);
    std::uint64_t read(const Mp4Box& box, std::uint64_t offset, std::size_t size);

    WindowedFile& _file;
    std::uint64_t _visited = 0;
    int _depth = 0;
    bool _hasFailed = false;
};

} // namespace quarner
