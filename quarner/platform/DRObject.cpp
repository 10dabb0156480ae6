// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DRObject.h"

namespace quarner {

DRObject::~DRObject() = default;

} // namespace quarner
