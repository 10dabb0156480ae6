// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Files are opened by system calls: the functions of libc are interposed by the callers of this.
#include "tests/support/optical/nodes/NodeTable.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace quarner {
namespace {

constexpr const char* variable = "QUARNER_TEST_NODES";

std::atomic<NodeTable*> current = nullptr;

int openFile(const std::string& path, int flags) {
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path.c_str(), flags | O_CLOEXEC));
}
void closeFile(int descriptor) { syscall(SYS_close, descriptor); }

/// Returns null if that fails.
void* map(int descriptor) {
    void* const memory =
        mmap(nullptr, sizeof(NodeTable), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

std::string contentOf(const std::string& path) {
    const int file = openFile(path, O_RDONLY);
    if (file < 0)
        return {};
    std::array<char, 1024> text = {};
    const long size = syscall(SYS_read, file, text.data(), text.size());
    closeFile(file);
    return size < 0 ? std::string() : std::string(text.data(), static_cast<std::size_t>(size));
}

/// Returns when a process was started, in clock ticks since the machine was; `std::nullopt` if it
/// is dead, also while its parent has not waited for it. A later process may have the same number.
std::optional<std::uint64_t> startTimeOf(pid_t process) {
    const std::string text = contentOf("/proc/" + std::to_string(process) + "/stat");
    const std::size_t nameEnd = text.rfind(')'); // the name may contain anything
    if (nameEnd == std::string::npos)
        return std::nullopt;
    std::istringstream fields(text.substr(nameEnd + 1));
    char state = 0;
    fields >> state;
    if (state == 'Z' || state == 'X')
        return std::nullopt;
    std::string skipped;
    for (int field = 4; field < 22; ++field)
        fields >> skipped;
    std::uint64_t time = 0;
    fields >> time;
    return time;
}

/// Returns the table that the program which has started this one has made; null if there is none.
NodeTable* inheritedTable() {
    const char* const path = std::getenv(variable);
    const int file = path == nullptr ? -1 : openFile(path, O_RDWR);
    if (file < 0)
        return nullptr;
    void* const memory = map(file);
    closeFile(file);
    return static_cast<NodeTable*>(memory);
}

/// The file lives as long as this process and the mappings of others.
NodeTable* makeTable() {
    const int file = memfd_create("nodes", MFD_CLOEXEC);
    void* const memory = ftruncate(file, sizeof(NodeTable)) == 0 ? map(file) : nullptr;
    if (memory == nullptr)
        throw std::runtime_error("no memory to share");
    const std::string path = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file);
    setenv(variable, path.c_str(), 1);
    return new (memory) NodeTable;
}

} // namespace

void NodeTable::make() {
    static std::once_flag isMade;
    std::call_once(isMade, [] { current = makeTable(); });
}

NodeTable* NodeTable::find() {
    if (NodeTable* const table = current)
        return table;
    NodeTable* const inherited = inheritedTable();
    NodeTable* present = nullptr;
    if (inherited == nullptr || current.compare_exchange_strong(present, inherited))
        return inherited;
    munmap(inherited, sizeof(NodeTable)); // another thread was faster
    return present;
}

NodeTable::NodeTable() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(&_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

/// A program that was killed while it held the lock has left at worst an opening that is incomplete
/// and therefore unused.
void NodeTable::lock() {
    if (pthread_mutex_lock(&_mutex) == EOWNERDEAD)
        pthread_mutex_consistent(&_mutex);
}

void NodeTable::unlock() { pthread_mutex_unlock(&_mutex); }

NodeTable::Node* NodeTable::nodeAt(const std::string& path) {
    const auto found = std::find_if(_nodes.begin(), _nodes.end(),
                                    [&](const Node& node) { return path == node.path.data(); });
    return found == _nodes.end() || path.empty() ? nullptr : &*found;
}

NodeTable::Node& NodeTable::reset(const std::string& path) {
    Node* node = nodeAt(path);
    if (node == nullptr)
        node = std::find_if(_nodes.begin(), _nodes.end(),
                            [](const Node& other) { return other.path.front() == 0; });
    if (node == _nodes.end() || path.size() >= node->path.size())
        throw std::length_error("too many nodes, or too long a path: " + path);
    *node = {};
    std::copy(path.begin(), path.end(), node->path.begin());
    forOpeningsOf(*node, [](Opening& opening) { opening.process = 0; });
    return *node;
}

void NodeTable::addOpening(const Node& node, int descriptor, bool isExclusive) {
    removeDead();
    const auto found = std::find_if(_openings.begin(), _openings.end(),
                                    [](const Opening& other) { return other.process == 0; });
    if (found == _openings.end())
        throw std::length_error("too many open nodes");
    *found = {0, startTimeOf(getpid()).value_or(0), indexOf(node), descriptor, isExclusive};
    found->process = getpid();
}

void NodeTable::removeOpening(int descriptor) {
    const pid_t self = getpid();
    for (Opening& opening : _openings)
        if (opening.process == self && opening.descriptor == descriptor)
            opening.process = 0;
}

int NodeTable::openCount(const Node& node) {
    int count = 0;
    removeDead();
    forOpeningsOf(node, [&](const Opening&) { ++count; });
    return count;
}

bool NodeTable::isOpenExclusively(const Node& node) {
    bool isExclusive = false;
    removeDead();
    forOpeningsOf(node, [&](const Opening& opening) { isExclusive |= opening.isExclusive; });
    return isExclusive;
}

void NodeTable::endExclusiveness(const Node& node) {
    forOpeningsOf(node, [](Opening& opening) { opening.isExclusive = false; });
}

unsigned NodeTable::indexOf(const Node& node) const {
    return static_cast<unsigned>(&node - _nodes.data());
}

template <class Function>
void NodeTable::forOpeningsOf(const Node& node, Function function) {
    const unsigned index = indexOf(node);
    for (Opening& opening : _openings)
        if (opening.process != 0 && opening.node == index)
            function(opening);
}

void NodeTable::removeDead() {
    const pid_t self = getpid();
    for (Opening& opening : _openings)
        if (opening.process != 0 && opening.process != self &&
            startTimeOf(opening.process) != opening.startTime)
            opening.process = 0;
}

} // namespace quarner
