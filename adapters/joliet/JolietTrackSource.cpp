// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietTrackSource.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/posix/RegularFile.h"
#include "quarner/platform/Texts.h"

namespace quarner {

/// A source file, read once from start to end.
class JolietTrackSource::OpenFile {
public:
    explicit OpenFile(const JolietImage::Extent& extent)
        : _path(extent.path), _stamp(extent.stamp), _file(extent.path) {
        if (!_file.isOpen())
            throw BurnFailure(DRError::SourceMissing, _path + ": " + _file.problem(), _path);
        if (_file.stamp() != _stamp)
            throw changed();
        posix_fadvise(_file.number(), 0, 0, POSIX_FADV_SEQUENTIAL);
    }

    std::size_t read(std::span<std::byte> buffer) {
        const ssize_t count = _file.read(buffer);
        if (count < 0)
            throw unreadable(std::generic_category().message(errno));
        if (count == 0)
            throw stampOfFile(_path) != _stamp ? changed()
                                               : unreadable(text("unexpected end of the file"));
        return static_cast<std::size_t>(count);
    }

private:
    BurnFailure changed() const {
        return {DRError::SourceChanged,
                text("{path}: changed since it was added", {{"path", _path}})};
    }
    BurnFailure unreadable(const std::string& problem) const {
        return {DRError::SourceUnreadable, _path + ": " + problem};
    }

    const std::string _path;
    const FileStamp _stamp;
    const RegularFile _file;
};

JolietTrackSource::JolietTrackSource(std::shared_ptr<const DRFolder> folder,
                                     std::unique_ptr<const JolietImage> image)
    : _folder(std::move(folder)), _image(std::move(image)) {}

JolietTrackSource::~JolietTrackSource() = default;

void JolietTrackSource::check() { checkFiles(*_folder); }

void JolietTrackSource::close() { _file.reset(); }

void JolietTrackSource::read(std::span<std::byte> buffer) {
    while (!buffer.empty()) {
        const std::size_t count = readSome(buffer);
        _position += count;
        buffer = buffer.subspan(count);
    }
}

/// Reads up to the end of the current part of the disc: the head, a file, or the zeros up to the
/// next file.
std::size_t JolietTrackSource::readSome(std::span<std::byte> buffer) {
    if (_position < _image->head().size())
        return readHead(buffer);
    const auto& extents = _image->extents();
    const std::uint64_t next = _nextExtent < extents.size()
                                   ? std::uint64_t(extents[_nextExtent].firstBlock) * dataBlockSize
                                   : _image->blocks() * dataBlockSize;
    if (_position >= next && _nextExtent < extents.size())
        return readFile(extents[_nextExtent], buffer);
    const auto zeros =
        buffer.first(std::size_t(std::min<std::uint64_t>(buffer.size(), next - _position)));
    std::fill(zeros.begin(), zeros.end(), std::byte());
    return zeros.size();
}

std::size_t JolietTrackSource::readHead(std::span<std::byte> buffer) const {
    const auto rest = std::span(_image->head()).subspan(std::size_t(_position));
    const auto part = rest.first(std::min(rest.size(), buffer.size()));
    std::copy(part.begin(), part.end(), buffer.begin());
    return part.size();
}

std::size_t JolietTrackSource::readFile(const JolietImage::Extent& extent,
                                        std::span<std::byte> buffer) {
    if (!_file)
        _file = std::make_unique<OpenFile>(extent);
    const std::uint64_t end = std::uint64_t(extent.firstBlock) * dataBlockSize + extent.stamp.size;
    const std::size_t count = _file->read(
        buffer.first(std::size_t(std::min<std::uint64_t>(buffer.size(), end - _position))));
    if (_position + count == end) {
        _file.reset();
        ++_nextExtent;
    }
    return count;
}

} // namespace quarner
