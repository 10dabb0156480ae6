// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRFile.h"

namespace quarner {

std::string_view DRFile::className() const { return drClassName; }

bool DRFile::isKindOfClass(std::string_view name) const { return name == drClassName; }

} // namespace quarner
