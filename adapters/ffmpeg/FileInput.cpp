// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/FileInput.h"

#include <algorithm>
#include <cstdio>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace quarner {

namespace {

constexpr int bufferSize = 4096; // the file has a larger one

} // namespace

FileInput::FileInput(WindowedFile& file) : _file(file) {
    auto* const buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    if (buffer != nullptr)
        _context = avio_alloc_context(buffer, bufferSize, 0, this, read, nullptr, seek);
    if (_context == nullptr)
        av_free(buffer);
}

FileInput::~FileInput() {
    if (_context != nullptr)
        av_freep(&_context->buffer);
    avio_context_free(&_context);
}

int FileInput::read(void* self, std::uint8_t* buffer, int size) try {
    auto& input = *static_cast<FileInput*>(self);
    const auto bytes = input._file.view(input._position, static_cast<std::size_t>(size));
    if (input._file.hasFailed())
        return AVERROR(EIO);
    if (bytes.empty())
        return AVERROR_EOF;
    if (bytes.size() > input._allowed) {
        input._isExhausted = true;
        return AVERROR(EIO);
    }
    input._allowed -= bytes.size();
    input._position += bytes.size();
    std::copy(bytes.begin(), bytes.end(), buffer);
    return static_cast<int>(bytes.size());
} catch (...) { // nothing may unwind through C code
    return AVERROR(ENOMEM);
}

std::int64_t FileInput::seek(void* self, std::int64_t offset, int whence) {
    auto& input = *static_cast<FileInput*>(self);
    const auto size = static_cast<std::int64_t>(input._file.size());
    if (whence == AVSEEK_SIZE)
        return size;
    if (whence == SEEK_CUR)
        offset += static_cast<std::int64_t>(input._position);
    else if (whence == SEEK_END)
        offset += size;
    if (offset < 0)
        return AVERROR(EINVAL);
    input._position = static_cast<std::uint64_t>(offset);
    return offset;
}

} // namespace quarner
