// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/data/RootFolder.h"

#include "quarner/platform/DRFile.h"

namespace quarner {

std::shared_ptr<const DRFolder> rootFolderOf(const ContentList::Snapshot& items,
                                             const std::string& name) {
    const auto folder = std::make_shared<DRFolder>(name);
    for (const BurnItemRef& item : items)
        if (auto node = std::dynamic_pointer_cast<const DRFile>(item))
            folder->addChild(std::move(node));
    folder->setExplicitFilesystemMask(DRFilesystemMaskJoliet);
    return folder;
}

} // namespace quarner
