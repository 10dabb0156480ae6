// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once
/// @file
/// Includes everything that a host needs of the framework. To run it, a host also installs a
/// platform: `quarner/desktop.h` on a desktop, `quarner/scripted.h` in a test.

#if __cplusplus < 202002L
#error "quarner needs C++20: compile with -std=c++20, or set CMAKE_CXX_STANDARD to 20"
#else

#include "quarner/device/QuarnerDevice.h"
#include "quarner/device/QuarnerDeviceDelegate.h"
#include "quarner/front/BurnItemKeys.h"
#include "quarner/front/FileRefusal.h"
#include "quarner/front/ListChange.h"
#include "quarner/front/OSXEnvironment.h"
#include "quarner/front/QuarnDelegate.h"
#include "quarner/front/Quarner.h"
#include "quarner/platform/DRErrors.h"
#include "quarner/project/DiscProject.h"
#include "quarner/project/DiscProjectHistory.h"
#include "quarner/project/DiscProjectRecords.h"
#include "quarner/util/MultiMedia.h"
#include "quarner/util/Paths.h"

#endif
