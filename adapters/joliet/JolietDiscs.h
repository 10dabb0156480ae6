// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "adapters/engine/DataDiscService.h"

namespace quarner {

/// Returns the service for data discs with a Joliet file system only: see `JolietImage` for the
/// layout and JolietNames.h for the names.
std::shared_ptr<DataDiscService> makeJolietDiscs();

} // namespace quarner
