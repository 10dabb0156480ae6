// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/DispatchService.h"

namespace quarner {

DispatchService::~DispatchService() = default;

} // namespace quarner
