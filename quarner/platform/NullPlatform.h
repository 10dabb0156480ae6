// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/platform/Platform.h"

namespace quarner {

/// The platform without drives and media: see `Platform`.
Platform nullPlatform();

} // namespace quarner
