// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <set>
#include <string>

namespace quarner {

/// Finds the descriptors by which libburn has a drive open, which it tells nobody. One that it
/// leaves behind keeps everybody from opening the drive for as long as this process lives.
class NodeDescriptors {
public:
    /// Remembers what is open now at a place, which is put as `placeOf` puts it. The file itself
    /// tells too little: a drive that was plugged in again has another one at the same place.
    explicit NodeDescriptors(std::string place);
    /// What has been opened there since: to be asked right after libburn was at work.
    std::set<int> openedSince() const;

    const std::string& place() const { return _place; }
    /// Where the file of a descriptor is, or was; empty when the system does not tell.
    static std::string placeOf(int descriptor);

private:
    std::set<int> open() const;

    std::string _place;
    std::set<int> _before;
};

/// Closes a drive behind libburn's back: puts an empty file in the place of those of its
/// descriptors that still lead to a place, for libburn may still use them, and close them. Whatever
/// it tries fails as with a drive that is gone. Answers false when the system has no such file to
/// give.
bool takeAway(const std::set<int>& descriptors, const std::string& place);

/// Closes those of them that are still that empty file.
void closeTakenAway(const std::set<int>& descriptors);

} // namespace quarner
