// SPDX-License-Identifier: LGPL-2.1-or-later
//
// The functions below are interposed before the test bed's, which are interposed before libc's.
#include "tests/support/optical/nodes/NodeAccess.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <string_view>

#include "tests/support/optical/nodes/NodeTable.h"

namespace quarner {
namespace {

// The functions of libc may be called at any moment, also before `main` and by a sanitizer in the
// middle of a report. So calls that do not concern a node do not lock the table.

bool mayBeNode(const char* path) {
    constexpr std::string_view folder = "/dev/";
    std::string_view rest = path;
    if (!rest.starts_with(folder))
        return false;
    rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of('/', folder.size())));
    return rest.starts_with("sr");
}

constexpr int mostDescriptors = 4096;
std::array<std::atomic<bool>, mostDescriptors> isOfNode;

/// Removes repeated slashes.
std::string plain(const char* path) {
    std::string name = path;
    const auto isSecond = [](char a, char b) { return a == '/' && b == '/'; };
    name.erase(std::unique(name.begin(), name.end(), isSecond), name.end());
    return name;
}

/// Returns the error of an attempt to open a node; 0 if it succeeds. The test bed must not be asked
/// for a node that does not exist: it would count it as open for good.
int refusalOf(NodeTable& table, NodeTable::Node& node, int flags) {
    if (!node.isThere)
        return ENOENT;
    if (node.refusals > 0) {
        --node.refusals;
        return node.error;
    }
    return (flags & O_EXCL) != 0 && table.isOpenExclusively(node) ? EBUSY : 0;
}

bool isDenied(const char* path) {
    NodeTable* const table = mayBeNode(path) ? NodeTable::find() : nullptr;
    if (table == nullptr)
        return false;
    const std::lock_guard lock(*table);
    const NodeTable::Node* node = table->nodeAt(plain(path));
    return node != nullptr && node->refusals > 0 && node->error == EACCES;
}

int fail(int error) {
    errno = error;
    return -1;
}

/// Opens a path with a function, unless it is a node that refuses.
template <class Function>
int openWatched(const char* path, int flags, Function function) {
    NodeTable* const table = mayBeNode(path) ? NodeTable::find() : nullptr;
    if (table == nullptr)
        return function(path);
    const std::string name = plain(path);
    const std::lock_guard lock(*table);
    NodeTable::Node* node = table->nodeAt(name);
    if (node == nullptr)
        return function(path);
    if (const int error = refusalOf(*table, *node, flags); error != 0)
        return fail(error);
    const int descriptor = function(name.c_str());
    if (descriptor >= 0 && descriptor < mostDescriptors) {
        table->addOpening(*node, descriptor, (flags & O_EXCL) != 0);
        isOfNode[static_cast<std::size_t>(descriptor)] = true;
    }
    return descriptor;
}

bool isOpenNode(int descriptor) {
    return descriptor >= 0 && descriptor < mostDescriptors &&
           isOfNode[static_cast<std::size_t>(descriptor)];
}

/// Closes a descriptor with a function. Locks the table, as opening does, because the test bed
/// keeps the open nodes in a table without a lock.
template <class Function>
int closeWatched(int descriptor, Function function) {
    if (!isOpenNode(descriptor))
        return function();
    NodeTable& table = *NodeTable::find();
    const std::lock_guard lock(table);
    isOfNode[static_cast<std::size_t>(descriptor)] = false;
    table.removeOpening(descriptor);
    return function();
}

using Open = int (*)(const char*, int, ...);

template <class Function>
Function following(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

void watchNode(const std::string& path) {
    NodeTable& table = *NodeTable::find();
    const std::lock_guard lock(table);
    table.reset(path);
}

void changeNode(const std::string& path, bool isThere, const std::function<void()>& change) {
    NodeTable& table = *NodeTable::find();
    const std::lock_guard lock(table);
    NodeTable::Node& node = *table.nodeAt(path);
    table.endExclusiveness(node);
    change();
    node.isThere = isThere;
}

int openCountOf(const std::string& path) {
    NodeTable& table = *NodeTable::find();
    const std::lock_guard lock(table);
    const NodeTable::Node* node = table.nodeAt(path);
    return node == nullptr ? 0 : table.openCount(*node);
}

void refuseOpening(const std::string& path, int error, unsigned times) {
    NodeTable& table = *NodeTable::find();
    const std::lock_guard lock(table);
    NodeTable::Node& node = *table.nodeAt(path);
    node.error = error;
    node.refusals = times;
}

} // namespace quarner

#define QUARNER_EXPORT [[gnu::visibility("default")]]

using quarner::following;
using quarner::Open;
using quarner::openWatched;

extern "C" {

QUARNER_EXPORT int open(const char* path, int flags, ...) {
    va_list list;
    va_start(list, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;
    va_end(list);
    return openWatched(path, flags,
                       [&](const char* at) { return following<Open>("open")(at, flags, mode); });
}

QUARNER_EXPORT int open64(const char* path, int flags, ...) {
    va_list list;
    va_start(list, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;
    va_end(list);
    return openWatched(path, flags,
                       [&](const char* at) { return following<Open>("open64")(at, flags, mode); });
}

QUARNER_EXPORT int __open_2(const char* path, int flags) {
    return openWatched(path, flags,
                       [&](const char* at) { return following<Open>("open")(at, flags, 0); });
}

QUARNER_EXPORT int __open64_2(const char* path, int flags) {
    return openWatched(path, flags,
                       [&](const char* at) { return following<Open>("open64")(at, flags, 0); });
}

QUARNER_EXPORT int close(int descriptor) {
    return quarner::closeWatched(descriptor,
                                 [=] { return following<int (*)(int)>("close")(descriptor); });
}

QUARNER_EXPORT int access(const char* path, int mode) {
    if (mode != F_OK && quarner::isDenied(path)) {
        errno = EACCES;
        return -1;
    }
    return following<int (*)(const char*, int)>("access")(path, mode);
}

/// The test bed interposes only the older `access`.
QUARNER_EXPORT int faccessat(int folder, const char* path, int mode, int flags) {
    using Check = int (*)(int, const char*, int, int);
    if (folder != AT_FDCWD)
        return following<Check>("faccessat")(folder, path, mode, flags);
    return access(path, mode);
}
}
