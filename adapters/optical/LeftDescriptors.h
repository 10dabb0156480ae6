// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <sys/stat.h>

#include <set>

namespace quarner {

/// Finds what libburn leaves open when it does not get as far as to take a drive: a descriptor that
/// keeps everybody else from opening the drive for as long as this process lives.
class LeftDescriptors {
public:
    /// Remembers what is open now of a file.
    explicit LeftDescriptors(const struct stat& file);
    /// Closes what has been opened of it since.
    void closeAll() const;

private:
    std::set<int> open() const;

    struct stat _file;
    std::set<int> _before;
};

} // namespace quarner
