// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/optical/KernelDrives.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

namespace quarner {
namespace {

/// Returns the columns of the line with a heading, as in "drive name:  sr1  sr0".
std::vector<std::string> columnsOf(const std::string& table, std::string_view heading) {
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, heading.size(), heading) != 0)
            continue;
        std::istringstream columns(line.substr(heading.size()));
        return {std::istream_iterator<std::string>(columns), {}};
    }
    return {};
}

} // namespace

bool tableSaysWritesCD(const std::string& table, std::string_view drive) {
    const std::vector<std::string> names = columnsOf(table, "drive name:");
    const std::vector<std::string> abilities = columnsOf(table, "Can write CD-R:");
    const auto found = std::find(names.begin(), names.end(), drive);
    const auto column = static_cast<std::size_t>(found - names.begin());
    return found != names.end() && column < abilities.size() && abilities[column] == "1";
}

bool kernelSaysWritesCD(std::string_view drive) {
    std::ifstream file("/proc/sys/dev/cdrom/info");
    const std::string table{std::istreambuf_iterator<char>(file), {}};
    return tableSaysWritesCD(table, drive);
}

} // namespace quarner
