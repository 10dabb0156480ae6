// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/platform/Export.h"

namespace quarner {

/// A class without operations of its own, kept for the hosts that name it.
class QUARNER_EXPORT OSXEnvironment {
public:
    OSXEnvironment();
};

} // namespace quarner
