// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

// Marks what a shared library exports. Everything else is hidden: the libraries are built with
// -fvisibility=hidden.
#define QUARNER_EXPORT __attribute__((visibility("default")))
