// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "tools/quarner/host/Console.h"

namespace quarner::cli {

/// From now on, and once in a process, what the framework writes to its log goes to the error
/// stream of a console (`isShown`) or nowhere. The console must outlive every log line.
void routeDiagnostics(Console& console, bool isShown);

} // namespace quarner::cli
