// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "adapters/ffmpeg/FlacNotes.h"
#include "adapters/ffmpeg/MpegTags.h"
#include "adapters/ffmpeg/WindowedFile.h"

extern "C" {
#include <libavformat/avio.h>
}

namespace quarner {

/// A source file as libavformat reads it. Reading fails once more bytes have been read than are
/// allowed since `allow` was called, which bounds the time and the memory that damage costs.
class FileInput {
public:
    /// The file must outlive this object.
    explicit FileInput(WindowedFile& file);
    ~FileInput();
    FileInput(const FileInput&) = delete;
    FileInput& operator=(const FileInput&) = delete;

    /// Null when there was no memory for it.
    AVIOContext* context() const { return _context; }

    /// Presents only some bytes of the file, as if they were all of it, and some with other values.
    void present(ByteRange range, std::vector<ReplacedByte> replaced);

    void allow(std::uint64_t bytes) { _allowed = bytes; }

    /// True after the file could not be read, or more than is allowed was wanted.
    bool hasFailed() const { return _isExhausted || _file.hasFailed(); }

private:
    static int read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* self, std::int64_t offset, int whence);

    WindowedFile& _file;
    AVIOContext* _context = nullptr;
    ByteRange _range; // of the file
    std::vector<ReplacedByte> _replaced;
    std::uint64_t _position = 0; // in the file
    std::uint64_t _allowed = 0;
    bool _isExhausted = false;
};

} // namespace quarner
