// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/scripted/ScriptedQueue.h"

namespace quarner {

ScriptedQueue::~ScriptedQueue() = default;

} // namespace quarner
