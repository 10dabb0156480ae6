// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/LogSink.h"

namespace quarner {

LogSink::~LogSink() = default;

} // namespace quarner
