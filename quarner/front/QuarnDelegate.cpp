// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/front/QuarnDelegate.h"

namespace quarner {

QuarnDelegate::~QuarnDelegate() = default;

} // namespace quarner
