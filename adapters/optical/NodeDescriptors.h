// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <set>
#include <string>

namespace quarner {

/// Finds the descriptors that libburn holds on a drive; libburn does not expose them. A descriptor
/// that it leaves open prevents every exclusive open of the drive for as long as this process
/// lives.
class NodeDescriptors {
public:
    /// Records the descriptors that are open now at a path, in the form that `pathOf` returns. The
    /// device number is not enough: a drive that was unplugged and plugged in again has another one
    /// at the same path.
    explicit NodeDescriptors(std::string path);
    /// Returns the descriptors opened there since. Call it right after libburn was called.
    std::set<int> openedSince() const;

    const std::string& path() const { return _path; }
    /// Returns the path of a descriptor's file, also if the file is gone; empty if the system does
    /// not report it.
    static std::string pathOf(int descriptor);

private:
    std::set<int> open() const;

    std::string _path;
    std::set<int> _before;
};

/// Replaces those descriptors that still refer to `path` by an empty file, because libburn may
/// still use and close them. Its operations then fail as on a drive that is gone. Returns false if
/// the system provides no such file.
bool replaceByEmptyFile(const std::set<int>& descriptors, const std::string& path);

/// Closes those descriptors that are still that empty file.
void closeReplaced(const std::set<int>& descriptors);

} // namespace quarner
