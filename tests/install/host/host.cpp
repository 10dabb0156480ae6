// SPDX-License-Identifier: LGPL-2.1-or-later
#include <quarner/quarner.h>
#include <quarner/scripted.h>

#include <cstdio>

namespace {

struct Report : quarner::QuarnDelegate {
    void burnProgressDidDone() override { isDone = true; }
    void burnProgressDidError(const quarner::BurnError& error) override {
        std::printf("error %lld\n", static_cast<long long>(error.code));
    }
    bool isDone = false;
};

} // namespace

/// Burns one song on a scripted drive: ends with 0 when the burn is done.
int main() {
    Report report;
    quarner::ScriptedPlatform platform;
    platform.addDrive({.name = "Writer", .disc = quarner::DiscScript{}});
    platform.putSong("/music/one.mp3", {.seconds = 205.0});
    platform.playBurns();

    const auto burner = quarner::Quarner::audioCDBurner();
    burner->setDelegate(&report);
    burner->addFile("/music/one.mp3");
    platform.runUntilIdle();
    std::printf("%llu seconds\n", static_cast<unsigned long long>(burner->usedCapacity()));

    const quarner::QuarnerDevice drive("Writer");
    burner->burnWithDevice(drive, "Mix");
    platform.runUntilIdle();
    return report.isDone && burner->usedCapacity() == 207 ? 0 : 1;
}
