// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>

#include "adapters/engine/DiscContent.h"

namespace quarner {

/// Data discs whose one file system is Joliet: see `JolietImage` for the layout and JolietNames.h
/// for the names.
std::shared_ptr<DataDiscService> makeJolietDiscs();

} // namespace quarner
