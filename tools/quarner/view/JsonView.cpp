// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/view/JsonView.h"

#include <array>
#include <utility>

#include "quarner/front/BurnItemKeys.h"
#include "tools/quarner/text/FileUri.h"

namespace quarner::cli {
namespace {

/// The lists of refused paths, each with the key of their URIs.
constexpr std::array refusals = {std::pair{protectedFilesReportKey, "protected-file-uris"},
                                 std::pair{incompatibleFilesReportKey, "incompatible-file-uris"}};

Array urisOf(const std::vector<std::string>& paths) {
    Array uris;
    for (const std::string& path : paths)
        uris.emplace_back(fileUri(path));
    return uris;
}

Dictionary withUri(Dictionary item) {
    if (const std::string* const path = valueFor(item, kQuarnItemFilePathKey).asString())
        item["uri"] = fileUri(*path);
    return item;
}

} // namespace

void JsonView::allFilesDidCleared() { tell("allFilesDidCleared"); }

void JsonView::burnItemDidDelete(const BurnItemRef& item) {
    tell("burnItemDidDelete", {{"item", withUri(*item->properties())}});
}

void JsonView::burnItemsDidDelete(const BurnItemList& items) {
    Array records;
    for (const BurnItemRef& item : items)
        records.emplace_back(withUri(*item->properties()));
    tell("burnItemsDidDelete", {{"items", records}});
}

void JsonView::burnItemDidSorted() { tell("burnItemDidSorted"); }

void JsonView::addFilesProgressDidStarted() { tell("addFilesProgressDidStarted"); }

void JsonView::addFilesProgressDidChanged(const std::string& displayName, std::int64_t index,
                                          std::uint64_t of) {
    tell("addFilesProgressDidChanged", {{"name", displayName}, {"index", index}, {"of", of}});
}

void JsonView::fileDidAdded(const Dictionary& item) {
    tell("fileDidAdded", {{"item", withUri(item)}});
}

void JsonView::addFilesProgressDidCanceled() { tell("addFilesProgressDidCanceled"); }

void JsonView::addFilesProgressDidEnd(const EndReport& report) {
    JsonArguments lists;
    for (const auto& [reason, uris] : refusals) {
        const auto paths = report.find(reason);
        if (paths == report.end())
            continue;
        lists.emplace_back(reason, Array(paths->second.begin(), paths->second.end()));
        lists.emplace_back(uris, urisOf(paths->second));
    }
    tell("addFilesProgressDidEnd", lists);
}

void JsonView::burnProgressDidStarted() { tell("burnProgressDidStarted"); }

void JsonView::burnProgressDidError(const BurnError& error) {
    tell("burnProgressDidError", {{"domain", error.domain}, {"code", error.code}});
}

void JsonView::burnProgressDidChanaged(double fraction, std::uint64_t lefttime) {
    tell("burnProgressDidChanaged", {{"fraction", fraction}, {"lefttime", lefttime}});
}

void JsonView::burnProgressIsPreparing() { tell("burnProgressIsPreparing"); }

void JsonView::burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) {
    tellTrack("burnProgressIsOpeningTrack", track, of);
}

void JsonView::burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) {
    tellTrack("burnProgressIsWriteingTrack", track, of);
}

void JsonView::burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) {
    tellTrack("burnProgressDidCloseTrack", track, of);
}

void JsonView::burnProgressDidCloseSession() { tell("burnProgressDidCloseSession"); }

void JsonView::burnProgressIsFinishing() { tell("burnProgressIsFinishing"); }

void JsonView::burnProgressIsVerifying() { tell("burnProgressIsVerifying"); }

void JsonView::burnProgressDidDone() { tell("burnProgressDidDone"); }

void JsonView::burnProgressDidCanceled() { tell("burnProgressDidCanceled"); }

void JsonView::compilationIsComplete(const Compilation& compilation) {
    tell("compilation", {{"items", compilation.items.size()},
                         {"usedCapacity", compilation.used},
                         {"overflow", compilation.overflow}});
}

void JsonView::didEnd(ExitStatus status, const std::string& outcome) {
    if (status != ExitStatus::Success && !outcome.empty())
        _console.error("quarner: " + outcome);
    _console.line(jsonExitLine(static_cast<int>(status)));
}

void JsonView::tell(const char* event, const JsonArguments& arguments) {
    _console.line(jsonLine(event, arguments));
}

void JsonView::tellTrack(const char* event, std::int64_t track, std::int64_t of) {
    tell(event, {{"track", track}, {"of", of}});
}

} // namespace quarner::cli
