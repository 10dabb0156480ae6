// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <libudev.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "tests/optical/LibburnSession.h"
#include "tests/support/optical/OpticalBed.h"

namespace quarner {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Unref {
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
    void operator()(udev_enumerate* list) const { udev_enumerate_unref(list); }
};

std::string text(const char* value) { return value == nullptr ? "" : value; }

class EmulatedEventsTest : public testing::Test {
protected:
    EmulatedEventsTest() {
        udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "block", nullptr);
        udev_monitor_enable_receiving(monitor.get());
    }

    /// Waits until there are `count` events since the last call and returns them: the action, the
    /// device, and whether its disc has changed.
    std::vector<std::string> events(std::size_t count) {
        constexpr int longest = 10'000; // ms
        constexpr int further = 20;
        std::vector<std::string> all;
        pollfd waiting = {udev_monitor_get_fd(monitor.get()), POLLIN, 0};
        while (poll(&waiting, 1, all.size() < count ? longest : further) > 0) {
            const std::unique_ptr<udev_device, Unref> device(
                udev_monitor_receive_device(monitor.get()));
            if (!device)
                continue;
            std::string event = text(udev_device_get_action(device.get())) + ' ' +
                                text(udev_device_get_sysname(device.get()));
            if (udev_device_get_property_value(device.get(), "DISK_MEDIA_CHANGE") != nullptr)
                event += " medium";
            all.push_back(event);
        }
        return all;
    }

    /// The vendor, product and state of the disc of each drive that udev lists.
    std::vector<std::string> drives() {
        const std::unique_ptr<udev_enumerate, Unref> list(udev_enumerate_new(context.get()));
        udev_enumerate_add_match_subsystem(list.get(), "block");
        udev_enumerate_add_match_property(list.get(), "ID_CDROM", "1");
        udev_enumerate_scan_devices(list.get());
        std::vector<std::string> all;
        udev_list_entry* entry = nullptr;
        udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(list.get())) {
            const std::unique_ptr<udev_device, Unref> device(
                udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
            const auto property = [&](const char* name) {
                return text(udev_device_get_property_value(device.get(), name));
            };
            all.push_back(property("DEVNAME") + ' ' + property("ID_VENDOR") + ' ' +
                          property("ID_MODEL") + ' ' + property("ID_CDROM_MEDIA_STATE"));
        }
        return all;
    }

    OpticalBed bed;
    const std::unique_ptr<udev, Unref> context{udev_new()};
    const std::unique_ptr<udev_monitor, Unref> monitor{
        udev_monitor_new_from_netlink(context.get(), "udev")};
};

TEST_F(EmulatedEventsTest, TellOfPluggingAndUnplugging) {
    EXPECT_THAT(drives(), IsEmpty());
    const auto first = bed.plug({.vendor = "ACME", .product = "BURNER 3000"});
    EXPECT_THAT(events(1), ElementsAre("add sr0"));
    EXPECT_THAT(drives(), ElementsAre("/dev/sr0 ACME BURNER_3000 blank"));
    const auto second = bed.plug({.vendor = "OTHER", .product = "X", .medium = std::nullopt});
    EXPECT_THAT(events(1), ElementsAre("add sr1"));
    EXPECT_THAT(drives(), ElementsAre("/dev/sr0 ACME BURNER_3000 blank", "/dev/sr1 OTHER X "));
    first->unplug();
    EXPECT_THAT(events(1), ElementsAre("remove sr0"));
    EXPECT_THAT(drives(), ElementsAre("/dev/sr1 OTHER X "));
    EXPECT_FALSE(std::filesystem::exists(first->node()));
    first->replug();
    EXPECT_THAT(events(1), ElementsAre("add sr0"));
    EXPECT_EQ(drives().size(), 2U);
}

TEST_F(EmulatedEventsTest, TellOfEveryChangeOfTheDisc) {
    const auto recorder = bed.plug();
    EXPECT_THAT(events(1), ElementsAre("add sr0"));
    recorder->removeMedium();
    EXPECT_THAT(events(1), ElementsAre("change sr0 medium"));
    EXPECT_THAT(drives(), ElementsAre("/dev/sr0 QUARNER DISC_RECORDER "));
    recorder->insert(Medium::dataCD(500));
    EXPECT_THAT(events(1), ElementsAre("change sr0 medium"));
    EXPECT_THAT(drives(), ElementsAre("/dev/sr0 QUARNER DISC_RECORDER complete"));
    recorder->pressEject();
    EXPECT_THAT(events(1), ElementsAre("change sr0 medium"));
    recorder->pressEject();
    EXPECT_THAT(events(0), IsEmpty()) << "it is open already";
}

TEST_F(EmulatedEventsTest, MayBeSentToAProgramThatHasJustEnded) {
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    close(ends[1]);
    char text[] = "add";
    iovec part = {text, sizeof text};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    EXPECT_EQ(sendmsg(ends[0], &message, 0), ssize_t(sizeof text));
    close(ends[0]);
}

TEST_F(EmulatedEventsTest, TellOfATrayThatACommandOpens) {
    const auto recorder = bed.plug();
    LibburnSession session(recorder->node());
    session.eject();
    EXPECT_THAT(events(2), ElementsAre("add sr0", "change sr0 medium"));
}

} // namespace
} // namespace quarner
