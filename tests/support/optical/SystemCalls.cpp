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

CallResult handle(UMockdevIoctlClient* client, SystemCallTarget& target) {
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

/// The target of each node. A global rather than the signal's data, because ThreadSanitizer does
/// not see GLib's locks, which would guard the data between the threads.
class Targets {
public:
    void set(const UMockdevIoctlBase* calls, const std::shared_ptr<SystemCallTarget>& target) {
        const std::lock_guard lock(_mutex);
        _targets[calls] = target;
    }
    std::shared_ptr<SystemCallTarget> of(const UMockdevIoctlBase* calls) {
        const std::lock_guard lock(_mutex);
        return _targets[calls].lock();
    }
    void forget(gpointer calls) {
        const std::lock_guard lock(_mutex);
        _targets.erase(static_cast<UMockdevIoctlBase*>(calls));
    }

private:
    std::mutex _mutex;
    std::map<const UMockdevIoctlBase*, std::weak_ptr<SystemCallTarget>> _targets;
};
Targets& targets() {
    static auto* const all = new Targets; // the other thread may outlive this one's objects
    return *all;
}

gboolean onCall(UMockdevIoctlBase* calls, UMockdevIoctlClient* client, gpointer) {
    const std::shared_ptr<SystemCallTarget> target = targets().of(calls);
    const CallResult result = target ? handle(client, *target) : CallResult{-1, ENODEV};
    umockdev_ioctl_client_complete(client, result.value, result.error);
    return TRUE;
}

void onOpening(UMockdevIoctlBase* calls, UMockdevIoctlClient*, gpointer) {
    if (const std::shared_ptr<SystemCallTarget> target = targets().of(calls))
        target->open();
}

} // namespace

void handleSystemCalls(UMockdevIoctlBase* calls, const std::shared_ptr<SystemCallTarget>& target) {
    targets().set(calls, target);
    const auto forget = [](gpointer of, GClosure*) { targets().forget(of); };
    g_signal_connect_data(calls, "handle-ioctl", G_CALLBACK(onCall), calls, forget,
                          GConnectFlags(0));
    g_signal_connect(calls, "client-connected", G_CALLBACK(onOpening), nullptr);
}

} // namespace quarner
