// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/FileSystem.h"

namespace quarner {

ImageFile::~ImageFile() = default;

ImageLock::~ImageLock() = default;

FileSystem::~FileSystem() = default;

} // namespace quarner
