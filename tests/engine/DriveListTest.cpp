// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/engine/DriveList.h"

#include <gmock/gmock.h>

#include "quarner/platform/DRKeys.h"
#include "tests/engine/MemoryDrive.h"
#include "tests/support/StepLoops.h"

namespace quarner {
namespace {

using testing::ElementsAre;

class NoDrives : public DriveList {
public:
    explicit NoDrives(std::shared_ptr<RunLoops> loops) : DriveList(std::move(loops)) {}
    std::vector<std::shared_ptr<DRDevice>> devices() override { return {}; }
    using DriveList::notify;
};

TEST(DriveList, ADrivesNotificationReachesTheListeners) {
    const auto loops = std::make_shared<StepLoops>();
    const auto drive = std::make_shared<MemoryDrive>(loops);
    const auto center = loops->currentCenter();
    std::vector<std::shared_ptr<DRObject>> senders;
    center->addObserver(
        &senders, [&](const DRNotification& heard) { senders.push_back(heard.object); },
        DRDeviceAppearedNotification, nullptr);
    NoDrives(loops).notify(DRDeviceAppearedNotification, drive);
    loops->runPending();
    EXPECT_THAT(senders, ElementsAre(drive));
}

TEST(UniqueDriveName, IsTheWantedOneOrTheFirstNumberThatIsFree) {
    std::vector<std::shared_ptr<DRDevice>> drives;
    for (const char* name : {"Drive", "Drive (2)", "Drive (3)"}) {
        EXPECT_EQ(uniqueDriveName("Drive", drives), name);
        drives.push_back(std::make_shared<MemoryDrive>(std::weak_ptr<RunLoops>(), name));
    }
    drives.erase(drives.begin() + 1);
    EXPECT_EQ(uniqueDriveName("Drive", drives), "Drive (2)");
}

} // namespace
} // namespace quarner
