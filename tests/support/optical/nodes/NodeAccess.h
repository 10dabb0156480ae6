// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <string>

namespace quarner {

// Interposes the functions of libc that open the nodes of emulated drives, in every program that
// links this file: the test program, which calls the functions below, and those that it starts,
// which share its nodes. A process that dies closes its nodes. Descriptors that a child inherits
// are not supported. Any thread.

/// Makes a path, which begins with "/dev/sr", behave as a drive's node: while it is open with
/// O_EXCL in any process, opening it again with O_EXCL fails with EBUSY. At first nothing is open
/// or refused. Comes after `NodeTable::make` and before the other functions.
void watchNode(const std::string& path);

/// Calls a function that makes a watched path appear or vanish, while no other thread opens or
/// closes one. A path that has appeared belongs to a new device: it is not open exclusively, but
/// descriptors of the old one still count as open.
void changeNode(const std::string& path, bool isThere, const std::function<void()>& change);

/// Returns the number of times that all processes have a watched path open.
int openCountOf(const std::string& path);

/// Makes the next `times` attempts of any process to open a watched path fail with `error`: EBUSY
/// as while another program has the drive open exclusively, EACCES as for a user without rights. 0
/// times ends it. While it is EACCES the path is not accessible either.
void refuseOpening(const std::string& path, int error, unsigned times);

} // namespace quarner
