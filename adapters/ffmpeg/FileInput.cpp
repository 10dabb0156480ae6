// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/FileInput.h"

#include <algorithm>
#include <cstdio>
#include <utility>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace quarner {

namespace {

constexpr int bufferSize = 4096; // the file has a larger one

} // namespace

FileInput::FileInput(WindowedFile& file) : _file(file), _range{0, file.size()} {
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

void FileInput::present(ByteRange range, std::vector<ReplacedByte> replaced) {
    _range = range;
    _position = range.begin;
    _replaced = std::move(replaced);
}

int FileInput::read(void* self, std::uint8_t* buffer, int size) try {
    auto& input = *static_cast<FileInput*>(self);
    const std::uint64_t left = input._range.end - std::min(input._range.end, input._position);
    const auto wanted = std::min<std::uint64_t>(left, static_cast<std::uint64_t>(size));
    const auto bytes = input._file.view(input._position, static_cast<std::size_t>(wanted));
    if (input._file.hasFailed())
        return AVERROR(EIO);
    if (bytes.empty())
        return AVERROR_EOF;
    if (bytes.size() > input._allowed) {
        input._isExhausted = true;
        return AVERROR(EIO);
    }
    std::copy(bytes.begin(), bytes.end(), buffer);
    for (const ReplacedByte& byte : input._replaced)
        if (byte.offset >= input._position && byte.offset - input._position < bytes.size())
            buffer[byte.offset - input._position] = byte.value;
    input._allowed -= bytes.size();
    input._position += bytes.size();
    return static_cast<int>(bytes.size());
} catch (...) { // nothing may unwind through C code
    return AVERROR(ENOMEM);
}

std::int64_t FileInput::seek(void* self, std::int64_t offset, int whence) {
    auto& input = *static_cast<FileInput*>(self);
    const auto size = static_cast<std::int64_t>(input._range.end - input._range.begin);
    if (whence == AVSEEK_SIZE)
        return size;
    if (whence == SEEK_CUR)
        offset += static_cast<std::int64_t>(input._position - input._range.begin);
    else if (whence == SEEK_END)
        offset += size;
    if (offset < 0)
        return AVERROR(EINVAL);
    input._position = input._range.begin + static_cast<std::uint64_t>(offset);
    return offset;
}

} // namespace quarner
