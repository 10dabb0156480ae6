// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <string_view>

namespace quarner {

/// Whether the kernel's own table of optical drives, the text given, says of a drive ("sr0") that
/// it writes CD-R. The table has a line for each ability and a column for each drive.
bool tableSaysWritesCD(const std::string& table, std::string_view drive);

/// The same from the table of this machine, /proc/sys/dev/cdrom/info. False where there is none.
bool kernelSaysWritesCD(std::string_view drive);

} // namespace quarner
