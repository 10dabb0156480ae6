// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/IsoWriter.h"

#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/ImagePlace.h"

namespace quarner {

IsoWriter::IsoWriter(std::shared_ptr<FileSystem> files, IsoNames names,
                     std::shared_ptr<const StopSignal> stop)
    : _files(std::move(files)), _names(std::move(names)), _stop(std::move(stop)) {}

IsoWriter::~IsoWriter() {
    _iso.reset();
    try {
        if (_lock)
            _files->remove(_names.part);
    } catch (const BurnFailure&) {
        // The next burn to this image removes it.
    }
}

void IsoWriter::openSession(const DiscPlan& plan) {
    refuseUnfitPlace(_names);
    _lock = _files->lock(_names.lock, *_stop);
    _files->remove(_names.part);
    _blockSize = plan.sectorSize;
    _iso = _files->create(_names.part, _names.iso);
    _iso->reserve(plan.bytes());
}

void IsoWriter::readBack(std::uint64_t firstSector, std::span<std::byte> buffer) {
    _iso->read(firstSector * _blockSize, buffer);
}

void IsoWriter::commit() {
    _iso.reset();
    _files->rename(_names.part, _names.iso);
    try {
        _files->syncFolder(_names.folder);
    } catch (const BurnFailure&) {
        // The new image has replaced the old one: the burn has succeeded.
    }
}

} // namespace quarner
