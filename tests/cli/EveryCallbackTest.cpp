// SPDX-License-Identifier: LGPL-2.1-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "quarner/platform/DRFile.h"
#include "quarner/project/ProjectCore.h"
#include "quarner/project/ProjectRelay.h"
#include "quarner/scripted.h"
#include "tools/quarner/view/JsonView.h"

namespace quarner::cli {
namespace {

using nlohmann::json;

BurnItemRef item() {
    const auto file = std::make_shared<DRFile>("/m/a.mp3", FileStamp{});
    file->setProperties({{"itemPath", "/m/a.mp3"}});
    return file;
}

const json itemJson = {{"itemPath", "/m/a.mp3"}, {"uri", "file:///m/a.mp3"}};

/// What a program reads for each callback, and a call of it.
const std::vector<std::pair<json, std::function<void(QuarnDelegate&)>>> callbacks = {
    {{{"event", "allFilesDidCleared"}}, [](auto& d) { d.allFilesDidCleared(); }},
    {{{"event", "burnItemDidDelete"}, {"item", itemJson}},
     [](auto& d) { d.burnItemDidDelete(item()); }},
    {{{"event", "burnItemsDidDelete"}, {"items", {itemJson, itemJson}}},
     [](auto& d) {
         d.burnItemsDidDelete({item(), item()});
     }},
    {{{"event", "burnItemDidSorted"}}, [](auto& d) { d.burnItemDidSorted(); }},
    {{{"event", "addFilesProgressDidStarted"}}, [](auto& d) { d.addFilesProgressDidStarted(); }},
    {{{"event", "addFilesProgressDidChanged"}, {"name", "a"}, {"index", 1}, {"of", 2}},
     [](auto& d) { d.addFilesProgressDidChanged("a", 1, 2); }},
    {{{"event", "fileDidAdded"}, {"item", itemJson}},
     [](auto& d) { d.fileDidAdded(*item()->properties()); }},
    {{{"event", "addFilesProgressDidCanceled"}}, [](auto& d) { d.addFilesProgressDidCanceled(); }},
    {{{"event", "addFilesProgressDidEnd"},
      {"incompatible-files", {"/a"}},
      {"incompatible-file-uris", {"file:///a"}}},
     [](auto& d) {
         d.addFilesProgressDidEnd({{incompatibleFilesReportKey, {"/a"}}});
     }},
    {{{"event", "burnProgressDidStarted"}}, [](auto& d) { d.burnProgressDidStarted(); }},
    {{{"event", "burnProgressDidError"}, {"domain", "Quarn"}, {"code", -1}},
     [](auto& d) {
         d.burnProgressDidError({burnErrorDomain, -1});
     }},
    {{{"event", "burnProgressDidChanaged"}, {"fraction", 0.5}, {"lefttime", 7}},
     [](auto& d) { d.burnProgressDidChanaged(0.5, 7); }},
    {{{"event", "burnProgressIsPreparing"}}, [](auto& d) { d.burnProgressIsPreparing(); }},
    {{{"event", "burnProgressIsOpeningTrack"}, {"track", 1}, {"of", 2}},
     [](auto& d) { d.burnProgressIsOpeningTrack(1, 2); }},
    {{{"event", "burnProgressIsWriteingTrack"}, {"track", 1}, {"of", 2}},
     [](auto& d) { d.burnProgressIsWriteingTrack(1, 2); }},
    {{{"event", "burnProgressDidCloseTrack"}, {"track", 1}, {"of", 2}},
     [](auto& d) { d.burnProgressDidCloseTrack(1, 2); }},
    {{{"event", "burnProgressDidCloseSession"}}, [](auto& d) { d.burnProgressDidCloseSession(); }},
    {{{"event", "burnProgressIsFinishing"}}, [](auto& d) { d.burnProgressIsFinishing(); }},
    {{{"event", "burnProgressIsVerifying"}}, [](auto& d) { d.burnProgressIsVerifying(); }},
    {{{"event", "burnProgressDidDone"}}, [](auto& d) { d.burnProgressDidDone(); }},
    {{{"event", "burnProgressDidCanceled"}}, [](auto& d) { d.burnProgressDidCanceled(); }},
};

/// The operations of the delegate, as its header declares them.
std::vector<std::string> declaredOperations() {
    std::ifstream header(DELEGATE_HEADER);
    const std::string text(std::istreambuf_iterator<char>(header), {});
    const std::regex operation(R"(virtual void (\w+)\()");
    std::vector<std::string> names;
    for (std::sregex_iterator at(text.begin(), text.end(), operation), end; at != end; ++at)
        names.push_back((*at)[1]);
    return names;
}

TEST(EveryCallback, IsInTheListOfThisTest) {
    std::vector<std::string> names;
    for (const auto& [told, call] : callbacks)
        names.push_back(told.at("event"));
    EXPECT_EQ(names, declaredOperations());
}

TEST(EveryCallback, ReachesAProgramThroughTheProjectWithItsArguments) {
    ScriptedPlatform platform;
    std::ostringstream out;
    std::ostringstream err;
    Console console(out, err, {});
    const auto view = std::make_shared<JsonView>(console);
    const auto core = std::make_shared<ProjectCore>(DiscKind::Audio);
    core->setDelegate(view);
    const auto relay = std::make_shared<ProjectRelay>(core);
    for (const auto& [told, call] : callbacks) {
        out.str("");
        call(*relay);
        ASSERT_TRUE(platform.runUntilIdle());
        ASSERT_NE(out.str(), "") << told;
        EXPECT_EQ(json::parse(out.str()), told);
    }
}

} // namespace
} // namespace quarner::cli
