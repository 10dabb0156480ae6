// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/scripted/ScriptedBurn.h"

namespace quarner {

ScriptedBurn::~ScriptedBurn() = default;

} // namespace quarner
