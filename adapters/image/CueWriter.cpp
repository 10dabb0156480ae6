// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/CueWriter.h"

#include <optional>
#include <utility>

#include "adapters/engine/BurnFailure.h"
#include "adapters/image/CueSheet.h"
#include "adapters/image/ImagePlace.h"
#include "quarner/platform/Texts.h"

namespace quarner {

CueWriter::CueWriter(std::shared_ptr<FileSystem> files, CueNames names,
                     std::shared_ptr<const StopSignal> stop)
    : _files(std::move(files)), _names(std::move(names)), _stop(std::move(stop)) {}

CueWriter::~CueWriter() {
    _bin.reset();
    try {
        if (_lock)
            removeParts();
    } catch (const BurnFailure&) {
        // The next burn to this image removes them.
    }
}

void CueWriter::openSession(const DiscPlan& plan) {
    refuseUnfitPlace(_names);
    _lock = _files->lock(_names.lock, *_stop);
    removeParts();
    if (!sheetNames(_names.newBin))
        _files->remove(_names.newBin);
    _plan = plan;
    _bin = _files->create(_names.binPart, replacedBin());
    _bin->reserve(plan.bytes());
}

void CueWriter::removeParts() {
    for (const std::string* part :
         {&_names.binPart, &_names.linkPart, &_names.cuePart, &_names.lastCuePart})
        _files->remove(*part);
}

/// The file whose permissions the new BIN gets: the sheet's where there is no BIN of ours.
std::string CueWriter::replacedBin() const {
    if (sheetNames(_names.newBin))
        return _names.newBin;
    return isThere(_names.plainBin) ? _names.plainBin : _names.cue;
}

bool CueWriter::sheetNames(const std::string& binPath) const {
    const std::optional<std::string> sheet = _files->content(_names.cue);
    return sheet && binNamedBy(*sheet) == CueNames::baseName(binPath);
}

void CueWriter::closeSession() {
    // A file with the BIN's name, whoever wrote it, is kept until the sheet is replaced.
    const bool isFree = sheetNames(_names.newBin) || !isThere(_names.plainBin);
    _firstBin = isFree ? _names.plainBin : _names.newBin;
    writeSheet(_names.cuePart, _firstBin);
    if (needsSecondStep())
        writeSheet(_names.lastCuePart, _names.plainBin);
}

void CueWriter::writeSheet(const std::string& path, const std::string& binPath) {
    const std::string sheet = cueSheet(_plan, CueNames::baseName(binPath));
    const std::unique_ptr<ImageFile> file = _files->create(path, _names.cue);
    file->append(std::as_bytes(std::span(sheet)));
    file->sync();
}

void CueWriter::finish() { _bin->sync(); }

void CueWriter::readBack(std::uint64_t firstSector, std::span<std::byte> buffer) {
    _bin->read(firstSector * _plan.sectorSize, buffer);
}

void CueWriter::beginVerification() {
    verifySheet(_names.cuePart, _firstBin);
    if (needsSecondStep())
        verifySheet(_names.lastCuePart, _names.plainBin);
}

void CueWriter::verifySheet(const std::string& path, const std::string& binPath) {
    if (_files->content(path) != cueSheet(_plan, CueNames::baseName(binPath)))
        throw BurnFailure(DRError::VerifyFailed,
                          text("{path} differs from what was written", {{"path", path}}), path);
}

void CueWriter::commit() {
    _bin.reset();
    switchOver();
    try {
        _files->syncFolder(_names.folder);
        moveToPlainName();
        _files->syncFolder(_names.folder);
    } catch (const BurnFailure&) {
        // The image is valid under its name. The next burn removes the rest of the old one.
    }
}

void CueWriter::switchOver() {
    _files->rename(_names.binPart, _firstBin);
    try {
        _files->syncFolder(_names.folder);
        _files->rename(_names.cuePart, _names.cue);
    } catch (const BurnFailure&) {
        removeFirstBin();
        throw;
    }
}

/// Throws nothing: the reason why it has to go is the one to be told.
void CueWriter::removeFirstBin() {
    try {
        _files->remove(_firstBin);
    } catch (const BurnFailure&) {
        // The next burn replaces it.
    }
}

/// The BIN has both names while the CUE is replaced by one that refers to the other name.
void CueWriter::moveToPlainName() {
    if (!needsSecondStep()) {
        _files->remove(_names.newBin);
    } else if (_files->link(_names.newBin, _names.linkPart)) {
        _files->rename(_names.linkPart, _names.plainBin);
        _files->syncFolder(_names.folder);
        _files->rename(_names.lastCuePart, _names.cue);
        _files->syncFolder(_names.folder);
        _files->remove(_names.newBin);
    } else {
        _files->remove(
            _names.plainBin); // no second names on this file system: the BIN keeps its first name
    }
}

} // namespace quarner
