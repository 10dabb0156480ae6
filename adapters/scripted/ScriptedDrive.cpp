// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/scripted/ScriptedDrive.h"

namespace quarner {

ScriptedDrive::~ScriptedDrive() = default;

} // namespace quarner
