// SPDX-License-Identifier: LGPL-2.1-or-later
#include <limits>
#include <string>

#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/JolietProtocol.h"
#include "adapters/worker/Message.h"
#include "fuzz/seeds/Seeds.h"
#include "quarner/platform/DRKeys.h"

namespace quarner::fuzz {
namespace {

std::string textOf(const std::vector<std::byte>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string packet(const char* name, const Dictionary& fields) {
    return textOf(encoded(Message{name, fields}));
}

DiscFacts someDisc() {
    DiscFacts disc;
    disc.state = DiscFacts::State::Blank;
    disc.type = DRDeviceMediaTypeCDR;
    disc.freeBlocks = 359'849;
    disc.speeds = {75, 300};
    return disc;
}

void putMessages(const SeedFolder& folder) {
    const auto put = [&](const char* name, const std::string& bytes) {
        folder.put("worker-message", name, bytes);
    };
    BurnSettings settings;
    settings.requestedSpeed = 300.0;
    DiscPlan plan;
    plan.tracks = {{150, 300}, {0, 600}};
    put("disc", packet(drive::disc, fieldsOf(someDisc())));
    put("plan", packet("claim", fieldsOf(plan)));
    put("settings", packet("claim", fieldsOf(settings)));
    put("drive", packet("facts", fieldsOf(DriveRecord{"/dev/sr0", "", "", "", true})));
    put("failure",
        packet(drive::failed, fieldsOf(BurnFailure(DRError::WriteFailed, "no", "/a", 16))));
    put("not-taken", packet(drive::failed, fieldsOf(DriveNotTaken(DRError::DeviceBusy, "no"))));
    put("speed-no-number",
        packet("claim", {{"requestedSpeed", std::numeric_limits<double>::quiet_NaN()}}));
    put("speed-below-all", packet("claim", {{"requestedSpeed", -1e300}}));
    put("speeds-impossible", packet("disc", {{"speeds", Array{-1, 0, Value(), 1e300}},
                                             {"usedBlocks", -1},
                                             {"freeBlocks", 1e300},
                                             {"type", "no disc"},
                                             {"state", 77}}));
    put("nested", packet("", {{"a", Dictionary{{"b", Array{Array{}, Dictionary{}, Value()}}}}}));
    put("cut-off", packet(drive::disc, fieldsOf(someDisc())).substr(0, 40));
    put("empty", "");
}

void putFolders(const SeedFolder& folder) {
    const JolietFolder two{"Disc", {{"a.txt", {10, 1, 2, 3, 4}}, {"b.txt", {0, 1, 2, 3, 5}}}};
    const JolietFolder strange{"", {{"a/b", {~std::uint64_t(0), -1, -1, 0, 0}}, {"", {}}}};
    folder.put("joliet-folder", "two-files", textOf(encoded(two)));
    folder.put("joliet-folder", "strange-names", textOf(encoded(strange)));
    folder.put("joliet-folder", "no-end", "Disc");
    const auto request = [&](const char* name, const JolietFolder& files) {
        folder.put("layout-program", name, Bytes().byte(2).rest(textOf(encoded(files))));
    };
    request("two-files", two);
    request("strange-names", strange);
    request("huge-file", {"Disc", {{"a", {std::uint64_t(1) << 62, 0, 0, 1, 1}}}});
    request("same-name", {"Disc", {{"a", {1, 0, 0, 1, 1}}, {"a", {1, 0, 0, 1, 2}}}});
    request("long-name", {"Disc", {{std::string(3000, 'x'), {1, 0, 0, 1, 1}}}});
    folder.put("layout-program", "ends-early", Bytes().byte(1).rest("Disc"));
    folder.put("layout-program", "other-request", Bytes().byte(0).byte(7).byte(0));
}

// The places of names and keys are those in Messages.cpp.
enum Name { Done, Failed, Disc, Alive, Log, Hello, Facts, AccessProblem, Eject, Unlock, Claim };
constexpr unsigned layOutName = 20;
constexpr unsigned stopName = 19;
constexpr unsigned readBackName = 16;
constexpr unsigned number = 2;
constexpr unsigned list = 5;
constexpr unsigned dictionary = 7;
constexpr unsigned nodeKey = 0;

Bytes& plainMessage(Bytes& bytes, unsigned name) { return bytes.byte(15).byte(name).byte(0); }

void putProgram(const SeedFolder& folder) {
    constexpr unsigned driveKey = 29;
    constexpr unsigned planKey = 31;
    constexpr unsigned tracksKey = 14;
    constexpr unsigned lengthKey = 13;
    for (const unsigned node : {0U, 1U}) { // none, and one that is no drive
        Bytes claim;
        claim.byte(1).byte(15).byte(Claim).byte(2);
        claim.byte(driveKey).byte(dictionary).byte(1).byte(nodeKey).byte(node);
        claim.byte(planKey).byte(dictionary).byte(1).byte(tracksKey).byte(list).byte(3);
        claim.byte(dictionary).byte(1).byte(lengthKey).byte(number).byte(0).byte(200);
        for (unsigned name = Claim + 1; name <= stopName; ++name)
            plainMessage(claim, name);
        folder.put("drive-program", "burn-" + std::to_string(node), claim);
        Bytes questions;
        questions.byte(1);
        for (const unsigned name :
             {unsigned(Facts), unsigned(AccessProblem), unsigned(Eject), unsigned(Unlock)})
            questions.byte(15).byte(name).byte(1).byte(nodeKey).byte(node);
        folder.put("drive-program", "questions-" + std::to_string(node), questions);
    }
    Bytes first;
    folder.put("drive-program", "no-hello", plainMessage(first.byte(0), Facts));
    folder.put("drive-program", "hello-twice", Bytes().byte(1).byte(4).byte(4));
    folder.put("drive-program", "garbage", Bytes().byte(1).byte(0).text("garbage"));
    folder.put("drive-program", "too-large", Bytes().byte(1).byte(1).number(std::uint16_t(65535)));
    Bytes stopped;
    plainMessage(stopped.byte(1), stopName);
    folder.put("drive-program", "stopped", plainMessage(stopped, readBackName));
}

/// A disc, a plan, and what is done.
void putBurns(const SeedFolder& folder) {
    constexpr unsigned step = 7;
    for (const unsigned disc : {0U, 1U})
        for (const unsigned sectors : {0U, 1U}) {
            const auto begun = [&] {
                return Bytes().byte(disc).byte(sectors).byte(1).byte(0).byte(9).byte(2).byte(3);
            };
            const auto name = [&](const char* what) {
                return what + std::to_string(disc) + std::to_string(sectors);
            };
            Bytes whole = begun().byte(step).byte(step).byte(1);
            for (int i = 0; i < 3; ++i)
                whole.byte(step);
            whole.byte(1).byte(0).byte(12).byte(step).byte(step).byte(step);
            folder.put("drive-burn", name("whole-").c_str(), whole);
            folder.put("drive-burn", name("cut-off-").c_str(),
                       begun().byte(step).byte(step).byte(0).byte(200));
            folder.put(
                "drive-burn", name("stopped-").c_str(),
                begun().byte(step).byte(3).number(std::uint32_t(0x8002F007)).byte(step).byte(1));
        }
}

void putHosts(const SeedFolder& folder) {
    constexpr unsigned send = 8;
    constexpr unsigned use = 12;
    const auto put = [&](const char* name, const Bytes& bytes) {
        folder.put("drive-host", name, bytes);
    };
    Bytes burn;
    for (unsigned step = 1; step < 8; ++step)
        burn.byte(send).number(std::uint16_t(0)).byte(Done).byte(0).byte(use + step).byte(0);
    put("burn", burn);
    put("disc", Bytes().byte(send).number(std::uint16_t(0)).byte(Disc).byte(0).byte(use + 1));
    put("failed", Bytes().byte(send).number(std::uint16_t(0)).byte(Failed).byte(0).byte(use + 1));
    put("alive-for-ever", Bytes().byte(3).number(std::uint16_t(0)).byte(use + 2));
    put("takes-no-message", Bytes().byte(use + 10));
    put("takes-no-message-and-is-stopped", Bytes().byte(use + 8).byte(use + 10));
    put("takes-no-bytes", Bytes().byte(use + 3).byte(255));
    put("closed", Bytes().byte(6).number(std::uint16_t(0)).byte(use + 1));
    put("garbage", Bytes().byte(0).number(std::uint16_t(0)).text("garbage").byte(use + 1));
    put("read-back", Bytes()
                         .byte(send)
                         .number(std::uint16_t(0))
                         .byte(Done)
                         .byte(0)
                         .byte(2)
                         .number(std::uint16_t(4704))
                         .byte(use + 7)
                         .byte(2)
                         .byte(0));
    constexpr unsigned blocksKey = 36;
    constexpr unsigned headKey = 37;
    folder.put("layout-host", "head",
               Bytes()
                   .byte(3)
                   .byte(1)
                   .byte(Done)
                   .byte(2)
                   .byte(blocksKey)
                   .byte(number)
                   .byte(0)
                   .byte(9)
                   .byte(headKey)
                   .byte(number)
                   .byte(1)
                   .number(std::uint32_t(2048))
                   .rest(std::string(2048, 'x')));
    folder.put("layout-host", "head-that-does-not-come",
               Bytes()
                   .byte(3)
                   .byte(1)
                   .byte(Done)
                   .byte(2)
                   .byte(blocksKey)
                   .byte(number)
                   .byte(1)
                   .number(std::uint32_t(262'144))
                   .byte(headKey)
                   .byte(number)
                   .byte(1)
                   .number(std::uint32_t(512) << 20));
    folder.put("layout-host", "request", Bytes().byte(3).byte(1).byte(layOutName).byte(0));
}

} // namespace

void putWorkerSeeds(const SeedFolder& folder) {
    putMessages(folder);
    putFolders(folder);
    putProgram(folder);
    putBurns(folder);
    putHosts(folder);
}

} // namespace quarner::fuzz
