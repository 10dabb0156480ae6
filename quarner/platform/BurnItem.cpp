// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/BurnItem.h"

namespace quarner {

BurnItem::~BurnItem() = default;

} // namespace quarner
