// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/TextService.h"

namespace quarner {

TextService::~TextService() = default;

} // namespace quarner
