// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/platform/Export.h"

namespace quarner {

/// A class without operations, kept for hosts that use its name.
class QUARNER_EXPORT OSXEnvironment {
public:
    OSXEnvironment();
};

} // namespace quarner
