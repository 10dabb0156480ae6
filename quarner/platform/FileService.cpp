// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/FileService.h"

namespace quarner {

FileService::~FileService() = default;

} // namespace quarner
