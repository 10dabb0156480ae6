// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Says where the library would look for its programs.
#include <iostream>

#include "adapters/worker/WorkerProcess.h"

int main() { std::cout << quarner::workerFolder() << '\n'; }
