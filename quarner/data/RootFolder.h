// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>

#include "quarner/front/ContentList.h"
#include "quarner/platform/DRFolder.h"

namespace quarner {

/// Returns the root folder of a data CD: the file nodes of a list, in its order. Any thread.
std::shared_ptr<const DRFolder> rootFolderOf(const ContentList::Snapshot& items,
                                             const std::string& name);

} // namespace quarner
