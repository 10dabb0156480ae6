// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/ffmpeg/WindowedFile.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "quarner/platform/Texts.h"

namespace quarner {

namespace {

constexpr std::size_t smallestRead = 4096;
constexpr std::size_t largestReadAhead = 128U << 10;

} // namespace

std::unique_ptr<WindowedFile> WindowedFile::open(const std::string& path, MayContinue mayContinue,
                                                 std::string* problem) {
    std::unique_ptr<WindowedFile> file(new WindowedFile(path, std::move(mayContinue)));
    if (file->_source.isOpen())
        return file;
    if (problem != nullptr)
        *problem = file->_source.problem();
    return nullptr;
}

std::string WindowedFile::problem() const {
    if (!_hasFailed || _wasStopped)
        return {};
    return _error == 0 ? text("unexpected end of the file")
                       : std::generic_category().message(_error);
}

WindowedFile::WindowedFile(const std::string& path, MayContinue mayContinue)
    : _source(path), _size(_source.stamp().size), _mayContinue(std::move(mayContinue)) {}

std::span<const std::uint8_t> WindowedFile::view(std::uint64_t offset, std::size_t count) {
    if (_hasFailed || offset >= _size)
        return {};
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, _size - offset));
    const Window* window = windowWith(offset, count);
    if (window == nullptr || offset >= window->end())
        return {};
    const auto start = static_cast<std::size_t>(offset - window->offset);
    return std::span(window->bytes).subspan(start, std::min(count, window->bytes.size() - start));
}

/// The window that holds a range, read if there is none.
const WindowedFile::Window* WindowedFile::windowWith(std::uint64_t offset, std::size_t count) {
    ++_uses;
    for (Window& window : _windows)
        if (offset >= window.offset && offset + count <= window.end()) {
            window.lastUse = _uses;
            return &window;
        }
    Window& window = windowToReplace(offset);
    const bool goesOn = offset >= window.offset && offset <= window.end();
    window.ahead =
        goesOn ? std::clamp(2 * window.ahead, smallestRead, largestReadAhead) : smallestRead;
    window.lastUse = _uses;
    return fill(window, offset, std::max(count, window.ahead)) ? &window : nullptr;
}

/// The window that ends where the range begins, so that reading on takes one window; otherwise the
/// one that was not used for the longest time.
WindowedFile::Window& WindowedFile::windowToReplace(std::uint64_t offset) {
    for (Window& window : _windows)
        if (!window.bytes.empty() && offset >= window.offset && offset <= window.end())
            return window;
    return *std::min_element(
        _windows.begin(), _windows.end(),
        [](const Window& one, const Window& other) { return one.lastUse < other.lastUse; });
}

bool WindowedFile::fill(Window& window, std::uint64_t offset, std::size_t count) {
    window.offset = offset;
    window.bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(count, _size - offset)));
    std::size_t filled = 0;
    while (filled < window.bytes.size() && mayContinue()) {
        const ssize_t got = uninterrupted([&] {
            return pread(_source.number(), window.bytes.data() + filled,
                         window.bytes.size() - filled, static_cast<off_t>(offset + filled));
        });
        if (got <= 0) { // 0: the file has become shorter
            _hasFailed = true;
            _error = got < 0 ? errno : 0;
            break;
        }
        filled += static_cast<std::size_t>(got);
    }
    _bytesRead += filled;
    window.bytes.resize(filled);
    return !_hasFailed;
}

bool WindowedFile::mayContinue() {
    if (!_mayContinue || _mayContinue())
        return true;
    _wasStopped = true;
    _hasFailed = true;
    return false;
}

} // namespace quarner
