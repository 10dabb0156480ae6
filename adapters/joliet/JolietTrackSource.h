// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "adapters/engine/TrackSource.h"
#include "adapters/joliet/JolietImage.h"

namespace quarner {

/// The blocks of a Joliet file system in order: its head, then the content of each file, read
/// directly from the file.
class JolietTrackSource : public TrackSource {
public:
    JolietTrackSource(std::shared_ptr<const DRFolder> folder,
                      std::unique_ptr<const JolietImage> image);
    ~JolietTrackSource() override;

    void check() override;
    void read(std::span<std::byte> buffer) override;
    void close() override;

private:
    class OpenFile;

    std::size_t readSome(std::span<std::byte> buffer);
    std::size_t readHead(std::span<std::byte> buffer) const;
    std::size_t readFile(const JolietImage::Extent& extent, std::span<std::byte> buffer);

    const std::shared_ptr<const DRFolder> _folder;
    const std::unique_ptr<const JolietImage> _image;
    std::uint64_t _position = 0;     ///< bytes of the disc delivered so far
    std::size_t _nextExtent = 0;     ///< the first that is not completely delivered
    std::unique_ptr<OpenFile> _file; ///< of that extent, after its first read
};

} // namespace quarner
