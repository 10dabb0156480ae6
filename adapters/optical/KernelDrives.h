// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <string_view>

namespace quarner {

/// Returns whether the kernel's table of optical drives says that a drive ("sr0") writes CD-R. The
/// table has a line for each ability and a column for each drive.
bool tableSaysWritesCD(const std::string& table, std::string_view drive);

/// The same for this machine's table, /proc/sys/dev/cdrom/info. False if there is none.
bool kernelSaysWritesCD(std::string_view drive);

} // namespace quarner
