// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/optical/SystemCalls.h"

#include <linux/cdrom.h>
#include <linux/fs.h>
#include <scsi/sg.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <map>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

namespace quarner {
namespace {

struct UnrefData {
    void operator()(UMockdevIoctlData* data) const { umockdev_ioctl_data_unref(data); }
};
using OwnedData = std::unique_ptr<UMockdevIoctlData, UnrefData>;

OwnedData resolve(UMockdevIoctlData* data, std::size_t offset, std::size_t size) {
    return OwnedData(umockdev_ioctl_data_resolve(data, offset, size, nullptr));
}

std::vector<std::uint8_t> bytesAt(UMockdevIoctlData* data, std::size_t offset, std::size_t size) {
    const OwnedData part = size > 0 ? resolve(data, offset, size) : nullptr;
    if (!part)
        return {};
    return {part->data, part->data + part->data_len};
}

/// Overwrites the target of a pointer in the data.
void putBytes(UMockdevIoctlData* data, std::size_t offset, std::vector<std::uint8_t> bytes) {
    if (bytes.empty())
        return;
    const OwnedData part = resolve(data, offset, bytes.size());
    if (part)
        umockdev_ioctl_data_update(part.get(), 0, bytes.data(), static_cast<int>(bytes.size()));
}

// Of the kernel's scsi.h, which is not among its headers for programs.
constexpr gulong getIdAndUnit = 0x5382;
constexpr gulong getBusNumber = 0x5386;

/// The result of a system call.
struct CallResult {
    long value = 0;
    int error = 0;
};

/// Stores the reply in the caller's SG_IO header.
void deliver(UMockdevIoctlData* data, sg_io_hdr header, const ScsiReply& reply) {
    constexpr unsigned char checkCondition = 2;
    constexpr unsigned short driverHasSense = 8;
    std::vector<std::uint8_t> bytes = reply.data;
    if (bytes.size() > header.dxfer_len)
        bytes.resize(header.dxfer_len);
    const bool isRead = header.dxfer_direction == SG_DXFER_FROM_DEV;
    if (isRead)
        putBytes(data, offsetof(sg_io_hdr, dxferp), bytes);
    header.resid = isRead ? static_cast<int>(header.dxfer_len - bytes.size()) : 0;
    header.status = header.masked_status = 0;
    header.host_status = header.driver_status = 0;
    header.sb_len_wr = 0;
    if (!reply.sense.isGood()) {
        std::vector<std::uint8_t> sense = reply.sense.bytes();
        if (sense.size() > header.mx_sb_len)
            sense.resize(header.mx_sb_len);
        header.status = checkCondition;
        header.masked_status = checkCondition >> 1;
        header.driver_status = driverHasSense;
        header.sb_len_wr = static_cast<unsigned char>(sense.size());
        putBytes(data, offsetof(sg_io_hdr, sbp), std::move(sense));
    }
    umockdev_ioctl_data_update(data, 0, reinterpret_cast<guint8*>(&header), sizeof header);
}

CallResult sendCommand(UMockdevIoctlClient* client, SystemCallTarget& target) {
    const OwnedData data = resolve(umockdev_ioctl_client_get_arg(client), 0, sizeof(sg_io_hdr));
    if (!data)
        return {-1, EFAULT};
    sg_io_hdr header = {};
    std::memcpy(&header, data->data, sizeof header);
    const auto block = bytesAt(data.get(), offsetof(sg_io_hdr, cmdp), header.cmd_len);
    const bool isWrite = header.dxfer_direction == SG_DXFER_TO_DEV;
    const auto sent =
        bytesAt(data.get(), offsetof(sg_io_hdr, dxferp), isWrite ? header.dxfer_len : 0);
    const std::optional<ScsiReply> reply =
        target.execute({.block = block, .sent = std::as_bytes(std::span(sent))});
    if (!reply)
        return {-1, ENODEV};
    deliver(data.get(), header, *reply);
    return {};
}

CallResult fillIn(UMockdevIoctlClient* client, std::vector<std::uint8_t> bytes) {
    putBytes(umockdev_ioctl_client_get_arg(client), 0, std::move(bytes));
    return {};
}

CallResult fillInNumber(UMockdevIoctlClient* client, std::uint64_t number) {
    std::vector<std::uint8_t> bytes(sizeof number);
    std::memcpy(bytes.data(), &number, sizeof number);
    return fillIn(client, std::move(bytes));
}

CallResult resultOf(int error) { return error == 0 ? CallResult() : CallResult{-1, error}; }

/// Returns the argument of a call that takes a number.
std::uintptr_t numberIn(const UMockdevIoctlData* argument) {
    std::uintptr_t number = 0;
    std::memcpy(&number, argument->data, std::min(sizeof number, std::size_t(argument->data_len)));
    return number;
}

CallResult statusOf(SystemCallTarget& target) {
    const int status = target.driveStatus();
    return status < 0 ? resultOf(ENODEV) : CallResult{status};
}

CallResult resultOf(UMockdevIoctlClient* client, SystemCallTarget& target) {
    switch (umockdev_ioctl_client_get_request(client)) {
    case SG_IO:
        return sendCommand(client, target);
    case getIdAndUnit:
        return fillIn(client, std::vector<std::uint8_t>(8));
    case getBusNumber:
        return fillIn(client, std::vector<std::uint8_t>(4));
    case BLKGETSIZE64:
        return fillInNumber(client, target.size());
    case CDROM_DRIVE_STATUS:
        return statusOf(target);
    case CDROM_GET_CAPABILITY:
        return {target.capabilities()};
    case CDROM_MEDIA_CHANGED:
        return {target.takeMediaChange() ? 1 : 0};
    case CDROMEJECT:
        return resultOf(target.eject());
    case CDROMCLOSETRAY:
        return resultOf(target.closeTray());
    case CDROM_LOCKDOOR:
        return resultOf(
            target.lockTray(numberIn(umockdev_ioctl_client_get_arg(client)) != 0) ? 0 : EIO);
    default:
        return {-1, ENOTTY};
    }
}

constexpr CallResult unplugged = {-1, ENODEV};

/// The object of each node. A global rather than the signal's data, because ThreadSanitizer does
/// not see GLib's locks, which would guard the data between the threads.
class AllCalls {
public:
    void add(const UMockdevIoctlBase* calls, SystemCalls* object) {
        const std::lock_guard lock(_mutex);
        _objects[calls] = object;
    }
    void remove(const UMockdevIoctlBase* calls) {
        const std::lock_guard lock(_mutex);
        _objects.erase(calls);
    }
    /// Calls a function with the object of a node. Returns false if there is none.
    template <class Function>
    bool with(const UMockdevIoctlBase* calls, Function function) {
        const std::lock_guard lock(_mutex);
        const auto found = _objects.find(calls);
        if (found == _objects.end())
            return false;
        function(*found->second);
        return true;
    }

private:
    std::mutex _mutex;
    std::map<const UMockdevIoctlBase*, SystemCalls*> _objects;
};
AllCalls& allCalls() {
    static auto* const all = new AllCalls; // the test bed's thread may outlive this one's objects
    return *all;
}

/// The end of a system call, which is passed to the test bed's thread.
struct Completion {
    UMockdevIoctlClient* client; ///< with a reference
    CallResult result;
};

/// ThreadSanitizer does not see that GLib passes data from one thread to another in order.
void synchronize() {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
}

gboolean onCompletion(gpointer data) {
    synchronize();
    const auto* const call = static_cast<Completion*>(data);
    umockdev_ioctl_client_complete(call->client, call->result.value, call->result.error);
    return G_SOURCE_REMOVE;
}

void freeCompletion(gpointer data) {
    synchronize();
    const std::unique_ptr<Completion> call(static_cast<Completion*>(data));
    g_object_unref(call->client);
}

void completeIn(GMainContext* context, UMockdevIoctlClient* client, const CallResult& result) {
    auto* const call = new Completion{client, result};
    synchronize();
    g_main_context_invoke_full(context, G_PRIORITY_DEFAULT, onCompletion, call, freeCompletion);
    g_main_context_unref(context);
}

gboolean onCall(UMockdevIoctlBase* calls, UMockdevIoctlClient* client, gpointer) {
    if (!allCalls().with(calls, [&](SystemCalls& object) { object.handle(client); }))
        umockdev_ioctl_client_complete(client, unplugged.value, unplugged.error);
    return TRUE;
}

void onOpening(UMockdevIoctlBase* calls, UMockdevIoctlClient*, gpointer) {
    allCalls().with(calls, [](SystemCalls& object) { object.open(); });
}

} // namespace

SystemCalls::SystemCalls(UMockdevIoctlBase* calls, const std::shared_ptr<SystemCallTarget>& target)
    : _calls(calls), _target(target) {
    allCalls().add(calls, this);
    g_signal_connect(calls, "handle-ioctl", G_CALLBACK(onCall), nullptr);
    g_signal_connect(calls, "client-connected", G_CALLBACK(onOpening), nullptr);
}

SystemCalls::~SystemCalls() { allCalls().remove(_calls); }

void SystemCalls::handle(UMockdevIoctlClient* client) {
    g_object_ref(client);
    GMainContext* const context = g_main_context_ref_thread_default();
    _thread.add([=, this] {
        const std::shared_ptr<SystemCallTarget> target = _target.lock();
        completeIn(context, client, target ? resultOf(client, *target) : unplugged);
    });
}

void SystemCalls::open() {
    _thread.add([this] {
        if (const std::shared_ptr<SystemCallTarget> target = _target.lock())
            target->open();
    });
}

} // namespace quarner
