// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/posix/RegularFile.h"

namespace quarner {

/// A source file that is read at any offset, in chunks that grow where it is read in order. For one
/// thread at a time.
class WindowedFile {
public:
    /// Asked before each read; reading fails after it has returned false.
    using MayContinue = std::function<bool()>;

    /// Opens a file, symbolic links followed. Null if it is missing, not readable or not regular;
    /// `problem` is then set to the reason, without the path.
    static std::unique_ptr<WindowedFile> open(const std::string& path, MayContinue mayContinue = {},
                                              std::string* problem = nullptr);

    WindowedFile(const WindowedFile&) = delete;
    WindowedFile& operator=(const WindowedFile&) = delete;

    /// The size in bytes when the file was opened. Nothing beyond it is read.
    std::uint64_t size() const { return _size; }

    /// Returns `count` bytes from an offset on, fewer at the end of the file, none once
    /// `hasFailed`. They are valid until the next call.
    std::span<const std::uint8_t> view(std::uint64_t offset, std::size_t count);

    /// True after a read failed or was not continued. It stays true.
    bool hasFailed() const { return _hasFailed; }
    /// Why a read failed, without the path; empty if none did, or if it was not continued.
    std::string problem() const;
    /// True if it was `MayContinue` that ended the reading.
    bool wasStopped() const { return _wasStopped; }

    /// Bytes read from the file so far.
    std::uint64_t bytesRead() const { return _bytesRead; }

private:
    struct Window {
        std::uint64_t offset = 0;
        std::uint64_t lastUse = 0;
        std::size_t ahead = 0; // how much was read at once, in order
        std::vector<std::uint8_t> bytes;
        std::uint64_t end() const { return offset + bytes.size(); }
    };

    WindowedFile(const std::string& path, MayContinue mayContinue);
    const Window* windowWith(std::uint64_t offset, std::size_t count);
    Window& windowToReplace(std::uint64_t offset);
    bool fill(Window& window, std::uint64_t offset, std::size_t count);
    bool mayContinue();

    const RegularFile _source;
    const std::uint64_t _size;
    const MayContinue _mayContinue;
    std::array<Window, 4> _windows; // as many places are read in turn at most
    std::uint64_t _uses = 0;
    std::uint64_t _bytesRead = 0;
    int _error = 0; // errno of the read that failed; 0 at an unexpected end
    bool _hasFailed = false;
    bool _wasStopped = false;
};

} // namespace quarner
