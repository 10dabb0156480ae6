// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>

namespace quarner {

/// The node of a drive, opened non-exclusively, for queries to the kernel that must succeed while
/// libburn has the drive, or that must keep no other program from it. Opening it makes the kernel
/// check whether the drive reports another disc.
class SharedNode {
public:
    explicit SharedNode(const std::string& path);
    ~SharedNode();
    SharedNode(const SharedNode&) = delete;
    SharedNode& operator=(const SharedNode&) = delete;

    /// -1 if the node cannot be opened; every query fails then.
    int descriptor() const { return _descriptor; }

private:
    const int _descriptor;
};

} // namespace quarner
