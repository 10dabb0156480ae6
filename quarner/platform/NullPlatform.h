// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/platform/Platform.h"

namespace quarner {

/// A platform in which there is nothing: see `Platform`.
Platform nullPlatform();

} // namespace quarner
