// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/DataDiscService.h"

namespace quarner {

DataDiscService::~DataDiscService() = default;

} // namespace quarner
