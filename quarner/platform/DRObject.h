// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/platform/Export.h"

namespace quarner {

/// A sender of notifications: a drive or a burn. Compared by identity.
class QUARNER_EXPORT DRObject {
public:
    DRObject() = default;
    virtual ~DRObject();
    DRObject(const DRObject&) = delete;
    DRObject& operator=(const DRObject&) = delete;
};

} // namespace quarner
