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

// All without a default, so that the compiler names a value that is missing.

const char* nameOf(RefusalReason reason) {
    switch (reason) {
    case RefusalReason::Missing:
        return "missing";
    case RefusalReason::Unreadable:
        return "unreadable";
    case RefusalReason::NotAFile:
        return "not-a-file";
    case RefusalReason::UnsupportedType:
        return "unsupported-type";
    case RefusalReason::Protected:
        return "protected";
    case RefusalReason::NoSound:
        return "no-sound";
    case RefusalReason::TooShort:
        return "too-short";
    case RefusalReason::Damaged:
        return "damaged";
    case RefusalReason::AlreadyInList:
        return "already-in-list";
    }
    return "";
}

const char* nameOf(DiscBurnProgress::Phase phase) {
    switch (phase) {
    case DiscBurnProgress::Phase::Preparing:
        return "preparing";
    case DiscBurnProgress::Phase::Writing:
        return "writing";
    case DiscBurnProgress::Phase::Closing:
        return "closing";
    case DiscBurnProgress::Phase::Finishing:
        return "finishing";
    case DiscBurnProgress::Phase::Verifying:
        return "verifying";
    }
    return "";
}

const char* nameOf(DiscBurnEnd::Outcome outcome) {
    switch (outcome) {
    case DiscBurnEnd::Outcome::Done:
        return "done";
    case DiscBurnEnd::Outcome::Canceled:
        return "canceled";
    case DiscBurnEnd::Outcome::Failed:
        return "failed";
    }
    return "";
}

/// A text that may be missing.
void add(JsonArguments& arguments, const char* key, const std::string& text) {
    if (!text.empty())
        arguments.emplace_back(key, text);
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

void JsonView::fileRefused(const std::string& path, RefusalReason reason, const std::string& text) {
    View::fileRefused(path, reason, text);
    tell("fileRefused",
         {{"path", path}, {"uri", fileUri(path)}, {"reason", nameOf(reason)}, {"text", text}});
}

void JsonView::burnProgress(const DiscBurnProgress& progress) {
    JsonArguments arguments = {{"phase", nameOf(progress.phase)},
                               {"phaseFraction", progress.phaseFraction},
                               {"fraction", progress.fraction},
                               {"text", progress.text}};
    if (progress.trackCount > 0) {
        arguments.emplace_back("track", progress.track);
        arguments.emplace_back("of", progress.trackCount);
    }
    if (progress.phaseSecondsLeft)
        arguments.emplace_back("phaseSecondsLeft", *progress.phaseSecondsLeft);
    if (progress.secondsLeft)
        arguments.emplace_back("secondsLeft", *progress.secondsLeft);
    tell("burnProgress", arguments);
}

void JsonView::burnEnded(const DiscBurnEnd& end) {
    JsonArguments arguments = {{"outcome", nameOf(end.outcome)}, {"text", end.text}};
    if (end.code)
        arguments.emplace_back("code", signedCode(*end.code));
    if (end.info.sector)
        arguments.emplace_back("sector", *end.info.sector);
    add(arguments, "path", end.info.path);
    add(arguments, "uri", end.info.path.empty() ? "" : fileUri(end.info.path));
    add(arguments, "message", end.info.message);
    add(arguments, "advice", end.advice);
    tell("burnEnded", arguments);
}

void JsonView::compilationIsComplete(const Compilation& compilation) {
    const DiscCapacity& capacity = compilation.capacity;
    const bool isAudio = compilation.kind == DiscKind::Audio;
    tell("compilation", {{"items", compilation.items->size()},
                         {"usedCapacity", isAudio ? capacity.used : capacity.fileBytes},
                         {"overflow", !capacity.fits}});
}

void JsonView::waitsFor(const DiscProblem& problem) {
    tell("waitsFor",
         {{"code", signedCode(problem.code)}, {"text", problem.text}, {"advice", problem.advice}});
}

void JsonView::didEnd(ExitStatus status, const std::string& outcome) {
    if (status != ExitStatus::Success && !outcome.empty())
        console().error("quarner: " + outcome);
    console().line(jsonExitLine(static_cast<int>(status)));
}

void JsonView::tell(const char* event, const JsonArguments& arguments) {
    console().line(jsonLine(event, arguments));
}

void JsonView::tellTrack(const char* event, std::int64_t track, std::int64_t of) {
    tell(event, {{"track", track}, {"of", of}});
}

} // namespace quarner::cli
