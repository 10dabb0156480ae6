// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/Quarner.h"

#include <limits>
#include <utility>

#include "quarner/front/BurnerRegistry.h"
#include "quarner/platform/Platform.h"

namespace quarner {

std::shared_ptr<Quarner> Quarner::audioCDBurner() { return makeBurner("AudioCDBurner"); }

std::shared_ptr<Quarner> Quarner::dataCDBurner() { return makeBurner("DataCDBurner"); }

Quarner::Quarner() = default;
Quarner::~Quarner() = default;

bool Quarner::addFile(const std::string& path) { return addFiles({path}); }

bool Quarner::addFiles(const std::vector<std::string>& /*paths*/) { return false; }

bool Quarner::addFilesInOrder(const std::vector<std::string>& paths) {
    return addFilesInOrder(paths, std::numeric_limits<std::uint64_t>::max());
}

bool Quarner::addFilesInOrder(const std::vector<std::string>& paths, std::uint64_t row) {
    return addFilesAt(paths, _content.placeBefore(row));
}

bool Quarner::addFilesBehind(const std::vector<std::string>& paths, const BurnItemRef& item) {
    return addFilesAt(paths, _content.placeBehind(item));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): a burner that adds files keeps it
bool Quarner::addFilesAt(const std::vector<std::string>& /*paths*/, ContentList::Place /*place*/) {
    return false;
}

void Quarner::readTags(bool isWanted) { _readsTags = isWanted; }

void Quarner::reportRefusals(std::function<void(const FileRefusal&)> report) {
    RefusalReport shared; // the previous one is released after the lock
    if (report)
        shared = std::make_shared<const std::function<void(const FileRefusal&)>>(std::move(report));
    const std::lock_guard lock(_mutex);
    shared.swap(_refusalReport);
}

Quarner::RefusalReport Quarner::refusalReport() const {
    const std::lock_guard lock(_mutex);
    return _refusalReport;
}

void Quarner::cancelToAddFiles() { _continue2AddFiles = false; }

void Quarner::removeItem(const BurnItemRef& /*item*/) {}

void Quarner::removeItems(const BurnItemList& /*items*/) {}

BurnItemRef Quarner::child(std::uint64_t /*index*/, const BurnItemRef& /*ofBurnItem*/) const {
    return nullptr;
}

std::uint64_t Quarner::numberOfChildrenOfBurnItem(const BurnItemRef& /*item*/) const { return 0; }

std::shared_ptr<const Dictionary> Quarner::propertyOfBurnItem(const BurnItemRef& /*item*/) const {
    return nullptr;
}

void Quarner::moveBurnItem(const std::set<std::uint64_t>& /*indexes*/, std::int64_t /*to*/) {}

void Quarner::moveItems(const BurnItemList& /*items*/, const BurnItemRef& /*behind*/) {}

ContentList::Snapshot Quarner::items() const { return _content.snapshot(); }

void Quarner::recordChanges(std::function<void()> onFirst) {
    _content.recordChanges(std::move(onFirst));
}

std::vector<ListChange> Quarner::takeChanges() { return _content.takeChanges(); }

void Quarner::clearAll() {
    _content.clear();
    tell(&QuarnDelegate::allFilesDidCleared);
}

std::uint64_t Quarner::usedCapacity() const { return std::numeric_limits<std::uint64_t>::max(); }

bool Quarner::isContentOverflowForDevice(const QuarnerDevice& /*device*/) const { return true; }

bool Quarner::isContentBlank() const { return true; }

std::vector<std::string> Quarner::supportedFileTypes() { return {}; }

std::int64_t Quarner::getMovieDuration(const std::string& path) const {
    const std::shared_ptr<const Platform> platform = currentPlatform();
    QTTime duration;
    platform->dispatch->syncMain([&] {
        if (const std::unique_ptr<QTMovie> movie = platform->media->movieWithFile(path))
            duration = movie->duration();
    });
    if (duration.scale == 0)
        return 0;
    if (duration.scale == -1) // the only divisor that can overflow
        return static_cast<std::int64_t>(-static_cast<std::uint64_t>(duration.value));
    return duration.value / duration.scale;
}

void Quarner::burnWithDevice(const QuarnerDevice& /*device*/,
                             const std::optional<std::string>& /*discNamed*/) {}

void Quarner::stopBurn() {
    if (_burner)
        _burner->abort();
}

QuarnDelegate* Quarner::delegate() const { return _delegate; }

void Quarner::setDelegate(QuarnDelegate* delegate) { _delegate = delegate; }

void Quarner::setSharedDelegate(std::shared_ptr<QuarnDelegate> delegate) {
    _delegate = delegate.get();
    _sharedDelegate = std::move(delegate);
}

} // namespace quarner
