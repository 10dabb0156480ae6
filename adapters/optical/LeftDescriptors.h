// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <set>
#include <string>

namespace quarner {

/// Finds what libburn leaves open when it does not get as far as to take a drive: a descriptor that
/// keeps everybody else from opening the drive for as long as this process lives.
class LeftDescriptors {
public:
    /// Remembers what is open now at a place, which is put as `placeOf` puts it. The file itself
    /// tells too little: a drive that was plugged in again has another one at the same place.
    explicit LeftDescriptors(std::string place);
    /// Remembers what has been opened there since, right after the attempt: what is opened later
    /// is none of libburn's.
    void findOpened();
    /// Closes what was found, as far as it still leads there.
    void closeAll() const;

    /// Where the file of a descriptor is, or was; empty when the system does not tell.
    static std::string placeOf(int descriptor);

private:
    std::set<int> open() const;

    std::string _place;
    std::set<int> _before;
    std::set<int> _opened;
};

} // namespace quarner
