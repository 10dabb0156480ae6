// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <string>

namespace quarner {

// How this process opens the nodes of emulated drives. The functions of libc for it are taken over
// in every program that holds this. Any thread.

/// From now on a path, which begins with "/dev/sr", behaves as a drive's node does: while it is
/// open with O_EXCL, opening it so again fails with EBUSY. Nothing is open and nothing refused at
/// first.
void watchNode(const std::string& path);

/// Calls a function that makes a watched path appear or vanish, while nobody opens or closes one.
/// Where it has appeared it is that of another device than before: nobody has it for himself, but
/// what is open of the old one still counts as open.
void changeNode(const std::string& path, bool isThere, const std::function<void()>& change);

/// How many times this process has a watched path open.
int openCountOf(const std::string& path);

/// Makes the next `times` attempts to open a watched path fail with an error of errno: EBUSY is
/// what the kernel answers while another program has a drive for itself, EACCES is for a user
/// without rights. 0 times ends it. While it is EACCES the path also counts as not accessible.
void refuseOpening(const std::string& path, int error, unsigned times);

} // namespace quarner
