// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Loaded before a program: lets one of its calls of the system go wrong, as the environment says.
//
//   QUARNER_FAULT       "CALL NUMBER HOW WHEN PATH", for instance "pwrite 2 ENOSPC always
//   /images/":
//                       the second pwrite to a file whose path contains /images/ fails with ENOSPC,
//                       and each one after it. HOW is EIO, ENOSPC, EINTR, short (half of the
//                       bytes), zero (none of them), or held (a pwrite does nothing until the file
//                       QUARNER_FAULT_GATE is gone); WHEN is once or always. With the number 0,
//                       nothing fails, and each call to such a path is written to the log.
//   QUARNER_FAULT_LOG   the log: a line with the name of the call for each call that has failed.
//
// Calls that take a descriptor count for the path at which the file was opened, or is now.

// Both the calls of 32-bit offsets and those of 64 are replaced, so the one may not stand for the
// other.
#undef _FILE_OFFSET_BITS
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

struct Fault {
    std::array<char, 32> call = {};
    int number = -1;
    std::array<char, 32> how = {};
    std::array<char, 32> when = {};
    std::array<char, 512> path = {};

    Fault() {
        const char* const text = std::getenv("QUARNER_FAULT");
        if (text != nullptr && std::sscanf(text, "%31s %d %31s %31s %511s", call.data(), &number,
                                           how.data(), when.data(), path.data()) != 5)
            number = -1;
    }
    bool is(const char* name) const { return std::strcmp(how.data(), name) == 0; }
    int error() const { return is("ENOSPC") ? ENOSPC : is("EINTR") ? EINTR : is("EIO") ? EIO : 0; }
};

const Fault& fault() {
    static const Fault only;
    return only;
}

void log(const char* call) {
    const char* const path = std::getenv("QUARNER_FAULT_LOG");
    constexpr mode_t readableByAll = 0666;
    const auto file = path == nullptr
                          ? -1
                          : static_cast<int>(syscall(SYS_openat, AT_FDCWD, path,
                                                     O_WRONLY | O_APPEND | O_CREAT, readableByAll));
    if (file < 0)
        return;
    std::array<char, 64> line = {};
    const int size = std::snprintf(line.data(), line.size(), "%s\n", call);
    syscall(SYS_write, file, line.data(), static_cast<std::size_t>(size));
    syscall(SYS_close, file);
}

bool fails(const char* call, const char* path) {
    static std::atomic<int> calls = 0;
    const Fault& wanted = fault();
    if (wanted.number < 0 || path == nullptr || std::strstr(path, wanted.path.data()) == nullptr)
        return false;
    if (wanted.number == 0)
        log(call);
    if (wanted.number == 0 || std::strcmp(call, wanted.call.data()) != 0)
        return false;
    const int number = ++calls;
    const bool isIt = number == wanted.number ||
                      (number > wanted.number && std::strcmp(wanted.when.data(), "always") == 0);
    if (isIt)
        log(call);
    return isIt;
}

bool fails(const char* call, int file) {
    if (fault().number < 0)
        return false;
    std::array<char, 64> link = {};
    std::array<char, 4096> path = {};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", file);
    const int before = errno;
    const auto size = syscall(SYS_readlinkat, AT_FDCWD, link.data(), path.data(), path.size() - 1);
    errno = before;
    return size > 0 && fails(call, path.data());
}

/// The function of this name that comes next: the C library's, or that of another such library.
template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/// Returns once the gate is open.
void waitAtGate() {
    const char* const gate = std::getenv("QUARNER_FAULT_GATE");
    constexpr timespec interval = {0, 1'000'000};
    while (gate != nullptr && syscall(SYS_faccessat, AT_FDCWD, gate, F_OK) == 0)
        syscall(SYS_nanosleep, &interval, nullptr);
}

int failed() {
    errno = fault().error();
    return -1;
}

/// What is left of a transfer that is to go wrong: nothing, or one half that is carried out.
template <typename Transfer>
ssize_t cut(size_t size, const Transfer& transfer) {
    if (fault().error() != 0)
        return failed();
    if (fault().is("held")) {
        waitAtGate();
        return transfer(size);
    }
    return fault().is("short") ? transfer((size + 1) / 2) : 0;
}

mode_t modeOf(int flags, va_list arguments) {
    const bool makesFile = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return makesFile ? va_arg(arguments, mode_t) : 0;
}

} // namespace

#define FAULTY extern "C" [[gnu::visibility("default")]]

#define FAULTY_OPEN(name)                                                                          \
    FAULTY int name(const char* path, int flags, ...) {                                            \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = modeOf(flags, arguments);                                              \
        va_end(arguments);                                                                         \
        if (fails("open", path))                                                                   \
            return failed();                                                                       \
        return next<int (*)(const char*, int, ...)>(#name)(path, flags, mode);                     \
    }
FAULTY_OPEN(open)
FAULTY_OPEN(open64)

#define FAULTY_STATUS(call, name, file_type, status_type)                                          \
    FAULTY int name(file_type file, struct status_type* status) noexcept {                         \
        if (fails(call, file))                                                                     \
            return failed();                                                                       \
        return next<int (*)(file_type, struct status_type*)>(#name)(file, status);                 \
    }
FAULTY_STATUS("stat", stat, const char*, stat)
FAULTY_STATUS("stat", stat64, const char*, stat64)
FAULTY_STATUS("stat", lstat, const char*, stat)
FAULTY_STATUS("stat", lstat64, const char*, stat64)
FAULTY_STATUS("fstat", fstat, int, stat)
FAULTY_STATUS("fstat", fstat64, int, stat64)

FAULTY int faccessat(int folder, const char* path, int mode, int flags) noexcept {
    if (fails("faccessat", path))
        return failed();
    return next<int (*)(int, const char*, int, int)>("faccessat")(folder, path, mode, flags);
}

FAULTY ssize_t getxattr(const char* path, const char* name, void* value, size_t size) noexcept {
    const auto call = next<ssize_t (*)(const char*, const char*, void*, size_t)>("getxattr");
    return fails("getxattr", path) ? failed() : call(path, name, value, size);
}

FAULTY ssize_t read(int file, void* buffer, size_t size) {
    const auto call = next<ssize_t (*)(int, void*, size_t)>("read");
    if (!fails("read", file))
        return call(file, buffer, size);
    return cut(size, [&](size_t part) { return call(file, buffer, part); });
}

FAULTY ssize_t write(int file, const void* buffer, size_t size) {
    const auto call = next<ssize_t (*)(int, const void*, size_t)>("write");
    if (!fails("write", file))
        return call(file, buffer, size);
    return cut(size, [&](size_t part) { return call(file, buffer, part); });
}

#define FAULTY_TRANSFER(call, name, buffer_type, offset_type)                                      \
    FAULTY ssize_t name(int file, buffer_type buffer, size_t size, offset_type offset) {           \
        const auto following = next<ssize_t (*)(int, buffer_type, size_t, offset_type)>(#name);    \
        if (!fails(call, file))                                                                    \
            return following(file, buffer, size, offset);                                          \
        return cut(size, [&](size_t part) { return following(file, buffer, part, offset); });      \
    }
FAULTY_TRANSFER("pread", pread, void*, off_t)
FAULTY_TRANSFER("pread", pread64, void*, off64_t)
FAULTY_TRANSFER("pwrite", pwrite, const void*, off_t)
FAULTY_TRANSFER("pwrite", pwrite64, const void*, off64_t)

FAULTY int fsync(int file) {
    return fails("fsync", file) ? failed() : next<int (*)(int)>("fsync")(file);
}

#define FAULTY_SIZE(name, size_type)                                                               \
    FAULTY int name(int file, size_type size) noexcept {                                           \
        if (fails("ftruncate", file))                                                              \
            return failed();                                                                       \
        return next<int (*)(int, size_type)>(#name)(file, size);                                   \
    }
FAULTY_SIZE(ftruncate, off_t)
FAULTY_SIZE(ftruncate64, off64_t)

#define FAULTY_RESERVE(name, size_type)                                                            \
    FAULTY int name(int file, int mode, size_type offset, size_type size) {                        \
        if (fails("fallocate", file))                                                              \
            return failed();                                                                       \
        return next<int (*)(int, int, size_type, size_type)>(#name)(file, mode, offset, size);     \
    }
FAULTY_RESERVE(fallocate, off_t)
FAULTY_RESERVE(fallocate64, off64_t)

FAULTY int flock(int file, int operation) noexcept {
    return fails("flock", file) ? failed() : next<int (*)(int, int)>("flock")(file, operation);
}

FAULTY int fchmod(int file, mode_t mode) noexcept {
    return fails("fchmod", file) ? failed() : next<int (*)(int, mode_t)>("fchmod")(file, mode);
}

FAULTY int rename(const char* from, const char* to) noexcept {
    const auto call = next<int (*)(const char*, const char*)>("rename");
    return fails("rename", to) ? failed() : call(from, to);
}

FAULTY int link(const char* existing, const char* name) noexcept {
    const auto call = next<int (*)(const char*, const char*)>("link");
    return fails("link", name) ? failed() : call(existing, name);
}

FAULTY int unlink(const char* path) noexcept {
    return fails("unlink", path) ? failed() : next<int (*)(const char*)>("unlink")(path);
}

/// The descriptor is closed all the same, as the kernel does it.
FAULTY int close(int file) {
    const bool isIt = fails("close", file);
    const int outcome = next<int (*)(int)>("close")(file);
    return isIt ? failed() : outcome;
}
