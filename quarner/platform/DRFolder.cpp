// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRFolder.h"

namespace quarner {

std::string_view DRFolder::className() const { return drClassName; }

bool DRFolder::isKindOfClass(std::string_view name) const { return name == drClassName; }

} // namespace quarner
