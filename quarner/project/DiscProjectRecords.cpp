// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/DiscProjectRecords.h"

#include <algorithm>
#include <array>
#include <limits>

#include "quarner/front/BurnItemKeys.h"
#include "quarner/util/Paths.h"

namespace quarner {
namespace {

/// The lists of refused paths, each with the key of their URIs.
constexpr std::array refusals = {std::pair{protectedFilesReportKey, "protected-file-uris"},
                                 std::pair{incompatibleFilesReportKey, "incompatible-file-uris"}};

Array urisOf(const std::vector<std::string>& paths) {
    Array uris;
    for (const std::string& path : paths)
        uris.emplace_back(Paths::fileUri(path));
    return uris;
}

Dictionary withUri(Dictionary item) {
    if (const std::string* const path = valueFor(item, kQuarnItemFilePathKey).asString())
        item["uri"] = Paths::fileUri(*path);
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

/// A number for which a record has no place becomes the largest one.
std::int64_t signedNumber(std::uint64_t number) {
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::min(number, most));
}

void recordTrack(DiscProjectRecords& records, const char* event, std::int64_t track,
                 std::int64_t of) {
    records.record(event, {{"track", track}, {"of", of}});
}

/// A text that may be missing.
void add(DiscProjectRecords::Arguments& arguments, const char* key, const std::string& text) {
    if (!text.empty())
        arguments.emplace_back(key, text);
}

} // namespace

void DiscProjectRecords::allFilesDidCleared() { record("allFilesDidCleared", {}); }

void DiscProjectRecords::burnItemDidDelete(const BurnItemRef& item) {
    record("burnItemDidDelete", {{"item", withUri(*item->properties())}});
}

void DiscProjectRecords::burnItemsDidDelete(const BurnItemList& items) {
    Array records;
    for (const BurnItemRef& item : items)
        records.emplace_back(withUri(*item->properties()));
    record("burnItemsDidDelete", {{"items", records}});
}

void DiscProjectRecords::burnItemDidSorted() { record("burnItemDidSorted", {}); }

void DiscProjectRecords::addFilesProgressDidStarted() { record("addFilesProgressDidStarted", {}); }

void DiscProjectRecords::addFilesProgressDidChanged(const std::string& displayName,
                                                    std::int64_t index, std::uint64_t of) {
    record("addFilesProgressDidChanged", {{"name", displayName}, {"index", index}, {"of", of}});
}

void DiscProjectRecords::fileDidAdded(const Dictionary& item) {
    record("fileDidAdded", {{"item", withUri(item)}});
}

void DiscProjectRecords::addFilesProgressDidCanceled() {
    record("addFilesProgressDidCanceled", {});
}

void DiscProjectRecords::addFilesProgressDidEnd(const EndReport& report) {
    Arguments lists;
    for (const auto& [reason, uris] : refusals) {
        const auto paths = report.find(reason);
        if (paths == report.end())
            continue;
        lists.emplace_back(reason, Array(paths->second.begin(), paths->second.end()));
        lists.emplace_back(uris, urisOf(paths->second));
    }
    record("addFilesProgressDidEnd", lists);
}

void DiscProjectRecords::burnProgressDidStarted() { record("burnProgressDidStarted", {}); }

void DiscProjectRecords::burnProgressDidError(const BurnError& error) {
    record("burnProgressDidError", {{"domain", error.domain}, {"code", error.code}});
}

void DiscProjectRecords::burnProgressDidChanaged(double fraction, std::uint64_t lefttime) {
    record("burnProgressDidChanaged",
           {{"fraction", fraction}, {"lefttime", signedNumber(lefttime)}});
}

void DiscProjectRecords::burnProgressIsPreparing() { record("burnProgressIsPreparing", {}); }

void DiscProjectRecords::burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) {
    recordTrack(*this, "burnProgressIsOpeningTrack", track, of);
}

void DiscProjectRecords::burnProgressIsWriteingTrack(std::int64_t track, std::int64_t of) {
    recordTrack(*this, "burnProgressIsWriteingTrack", track, of);
}

void DiscProjectRecords::burnProgressDidCloseTrack(std::int64_t track, std::int64_t of) {
    recordTrack(*this, "burnProgressDidCloseTrack", track, of);
}

void DiscProjectRecords::burnProgressDidCloseSession() {
    record("burnProgressDidCloseSession", {});
}

void DiscProjectRecords::burnProgressIsFinishing() { record("burnProgressIsFinishing", {}); }

void DiscProjectRecords::burnProgressIsVerifying() { record("burnProgressIsVerifying", {}); }

void DiscProjectRecords::burnProgressDidDone() { record("burnProgressDidDone", {}); }

void DiscProjectRecords::burnProgressDidCanceled() { record("burnProgressDidCanceled", {}); }

void DiscProjectRecords::fileRefused(const std::string& path, RefusalReason reason,
                                     const std::string& text) {
    record("fileRefused", {{"path", path},
                           {"uri", Paths::fileUri(path)},
                           {"reason", nameOf(reason)},
                           {"text", text}});
}

void DiscProjectRecords::burnProgress(const DiscBurnProgress& progress) {
    Arguments arguments = {{"phase", nameOf(progress.phase)},
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
    record("burnProgress", arguments);
}

void DiscProjectRecords::burnEnded(const DiscBurnEnd& end) {
    Arguments arguments = {{"outcome", nameOf(end.outcome)}, {"text", end.text}};
    if (end.code)
        arguments.emplace_back("code", signedCode(*end.code));
    if (end.info.sector)
        arguments.emplace_back("sector", *end.info.sector);
    add(arguments, "path", end.info.path);
    add(arguments, "uri", end.info.path.empty() ? "" : Paths::fileUri(end.info.path));
    add(arguments, "message", end.info.message);
    add(arguments, "advice", end.advice);
    record("burnEnded", arguments);
}

DiscProjectRecords::Arguments recordOf(const DiscDrive& drive) {
    return {{"name", drive.name},
            {"present", drive.hasDisc},
            {"kind", drive.discKind},
            {"cd", drive.isCD},
            {"blank", drive.isBlank},
            {"appendable", drive.isAppendable},
            {"erasable", drive.isErasable},
            {"overwritable", drive.isOverwritable},
            {"usedTime", drive.usedSeconds},
            {"freeTime", drive.freeSeconds},
            {"usedSize", drive.usedBytes},
            {"freeSize", drive.freeBytes},
            {"speeds", Array(drive.speeds.begin(), drive.speeds.end())}};
}

} // namespace quarner
