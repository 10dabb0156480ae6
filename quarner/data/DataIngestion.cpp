// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/data/DataCDBurner.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

std::shared_ptr<DRFile> nodeOrNull(const std::string& path) {
    try {
        return currentPlatform()->recording->fileWithPath(path);
    } catch (...) { // the only service call that may throw; null and an exception both mean a
                    // rejected file
        return nullptr;
    }
}

} // namespace

std::optional<std::string> DataCDBurner::identifyingPath(const BurnItem& item) const {
    const auto* const node = dynamic_cast<const DRFile*>(&item);
    return node == nullptr ? std::nullopt : std::optional(node->sourcePath());
}

bool DataCDBurner::isProtected(const std::string& /*resolvedPath*/) const { return false; }

std::shared_ptr<BurnItem>
DataCDBurner::makeItem(const std::string& path, Dictionary& record,
                       const std::function<bool()>& /*mayContinue*/) const {
    const std::shared_ptr<DRFile> node = nodeOrNull(path);
    if (!node)
        return nullptr;
    // The node's own properties override the record, and the delegate receives them too.
    for (const auto& [key, value] : *node->properties())
        record.insert_or_assign(key, value);
    node->setProperties(record);
    return node;
}

EndReport DataCDBurner::endReport(const std::vector<std::string>& /*protectedFiles*/,
                                  const std::vector<std::string>& incompatibleFiles) const {
    return {{incompatibleFilesReportKey, incompatibleFiles}};
}

} // namespace quarner
