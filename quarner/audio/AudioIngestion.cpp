// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <chrono>
#include <unordered_set>

#include "quarner/audio/AudioCDBurner.h"
#include "quarner/front/BurnItemRecord.h"
#include "quarner/platform/Platform.h"
#include "quarner/util/Paths.h"

namespace quarner {

/// The lists of one call of `addFiles` or its like, shared by its two phases.
struct AudioCDBurner::AddFilesRun {
    ContentList::Place place; ///< null: each file is appended
    std::vector<std::string> protectedFiles;
    std::vector<std::string> accepted;
    std::vector<std::string> incompatible;
};

namespace {

constexpr std::uint32_t preGapFrames = 150; // two seconds, as the Red Book requires for track 1

std::vector<std::string> sortedForUser(std::vector<std::string> paths) {
    const auto text = currentPlatform()->text;
    std::stable_sort(paths.begin(), paths.end(), [&](const std::string& a, const std::string& b) {
        return text->compareLocalizedCaseInsensitive(a, b) < 0;
    });
    return paths;
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

RefusalReason reasonOf(FileProblem::Kind kind) {
    switch (kind) {
    case FileProblem::Kind::Missing:
        return RefusalReason::Missing;
    case FileProblem::Kind::NotAFile:
        return RefusalReason::NotAFile;
    case FileProblem::Kind::Unreadable:
        break;
    }
    return RefusalReason::Unreadable;
}

RefusalReason reasonOf(MovieProblem::Kind kind) {
    switch (kind) {
    case MovieProblem::Kind::NoSound:
        return RefusalReason::NoSound;
    case MovieProblem::Kind::TooShort:
        return RefusalReason::TooShort;
    case MovieProblem::Kind::Damaged:
        return RefusalReason::Damaged;
    case MovieProblem::Kind::Unreadable:
        break;
    }
    return RefusalReason::Unreadable;
}

} // namespace

/// The paths of the files in the content list, updated at every query.
class AudioCDBurner::KnownPaths {
public:
    explicit KnownPaths(const AudioCDBurner& burner) : _burner(burner) { index(); }

    bool contain(const std::string& resolvedPath) {
        // A running run may have added to the list.
        if (ContentList::Snapshot now = _burner._content.snapshot(); now != _items) {
            _items = std::move(now);
            index();
        }
        return _paths.contains(resolvedPath);
    }

private:
    void index() {
        _paths.clear();
        for (const BurnItemRef& item : _items)
            if (std::optional<std::string> path = _burner.identifyingPath(*item))
                _paths.insert(*std::move(path));
    }

    const AudioCDBurner& _burner;
    ContentList::Snapshot _items = _burner._content.snapshot();
    std::unordered_set<std::string> _paths;
};

bool AudioCDBurner::addFiles(const std::vector<std::string>& paths) {
    return startRun(sortedForUser(paths), nullptr);
}

bool AudioCDBurner::addFilesAt(const std::vector<std::string>& paths, ContentList::Place place) {
    return startRun(paths, std::move(place));
}

bool AudioCDBurner::startRun(const std::vector<std::string>& paths, ContentList::Place place) {
    const auto self = std::static_pointer_cast<AudioCDBurner>(weak_from_this().lock());
    if (paths.empty() || !self)
        return false;
    _continue2AddFiles = true;
    const auto run = std::make_shared<AddFilesRun>();
    run->place = std::move(place);
    KnownPaths known(*this);
    for (const std::string& path : paths)
        filterPath(path, known, *run);
    const bool anyAccepted = !run->accepted.empty();
    currentPlatform()->dispatch->asyncGlobal([self, run] { self->performRun(*run); });
    return anyAccepted;
}

void AudioCDBurner::filterPath(const std::string& path, KnownPaths& known, AddFilesRun& run) {
    const std::string resolved = Paths::realPath(path);
    if (known.contain(resolved)) {
        if (const RefusalReport report = refusalReport())
            (*report)({path, RefusalReason::AlreadyInList, {}});
        return;
    }
    // A path rejected here is reported as the caller wrote it; an accepted one is resolved.
    if (isProtected(resolved)) {
        run.protectedFiles.push_back(path);
        refuse(path, resolved, RefusalReason::Protected);
    } else if (isSupported(resolved)) {
        run.accepted.push_back(resolved);
    } else {
        run.incompatible.push_back(path);
        refuse(path, resolved, RefusalReason::UnsupportedType);
    }
}

/// Reports that a file was refused for a reason, or for not being a readable file at all.
void AudioCDBurner::refuse(const std::string& path, const std::string& resolvedPath,
                           RefusalReason reason) const {
    const RefusalReport report = refusalReport();
    if (!report)
        return;
    if (const auto problem = currentPlatform()->files->problem(resolvedPath))
        (*report)({path, reasonOf(problem->kind), problem->detail});
    else
        (*report)({path, reason, {}});
}

/// Reports that a file with a supported type was refused when it was examined.
void AudioCDBurner::refuseExamined(const std::string& path) const {
    if (!refusalReport())
        return;
    const std::shared_ptr<const Platform> platform = currentPlatform();
    std::optional<MovieProblem> problem;
    if (!platform->files->problem(path))
        platform->dispatch->syncMain([&] { problem = platform->media->movieProblem(path); });
    const RefusalReport report = refusalReport();
    if (!problem)
        refuse(path, path, RefusalReason::Unreadable);
    else if (report)
        (*report)({path, reasonOf(problem->kind), problem->detail});
}

std::optional<std::string> AudioCDBurner::identifyingPath(const BurnItem& item) const {
    const auto properties = item.properties();
    const std::string* path = valueFor(*properties, kQuarnItemFilePathKey).asString();
    return path == nullptr ? std::nullopt : std::optional(*path);
}

bool AudioCDBurner::isProtected(const std::string& resolvedPath) const {
    return Paths::isQuickTimeProtectedFile(resolvedPath);
}

bool AudioCDBurner::isSupported(const std::string& resolvedPath) {
    if (contains(supportedFileTypes(), Paths::lowercaseExtension(resolvedPath)))
        return true;
    const std::optional<std::string> type = Paths::hfsType(resolvedPath);
    return type && contains(supportedFileTypes(), *type);
}

void AudioCDBurner::performRun(AddFilesRun& run) {
    if (run.accepted.empty())
        return;
    tell(&QuarnDelegate::addFilesProgressDidStarted);
    for (std::int32_t i = 0; static_cast<std::size_t>(i) < run.accepted.size(); ++i) {
        if (!_continue2AddFiles) {
            tell(&QuarnDelegate::addFilesProgressDidCanceled);
            break;
        }
        const std::string& path = run.accepted[static_cast<std::size_t>(i)];
        tell(&QuarnDelegate::addFilesProgressDidChanged,
             currentPlatform()->files->displayName(path), std::int64_t(i) + 1,
             std::uint64_t(run.accepted.size()));
        if (!examineFile(path, run)) {
            tell(&QuarnDelegate::addFilesProgressDidCanceled);
            break;
        }
    }
    tell(&QuarnDelegate::addFilesProgressDidEnd, endReport(run.protectedFiles, run.incompatible));
}

/// What the work on one file asks: false if the run was cancelled and the file was not done soon
/// after. A usual file is still completed and added.
std::function<bool()> AudioCDBurner::timeToComplete() const {
    using Clock = std::chrono::steady_clock;
    const auto canceled = std::make_shared<std::optional<Clock::time_point>>(); // for all copies
    return [this, canceled] {
        if (_continue2AddFiles)
            return true;
        if (!*canceled)
            *canceled = Clock::now();
        return Clock::now() - **canceled < std::chrono::milliseconds(500);
    };
}

/// Adds or refuses a file. Returns false if the run was cancelled inside it. The services read the
/// file on this thread, so that neither a huge file nor a damaged one holds up the main thread.
bool AudioCDBurner::examineFile(const std::string& path, AddFilesRun& run) {
    const std::function<bool()> mayContinue = timeToComplete();
    if (!currentPlatform()->media->prepareMovie(path, mayContinue))
        return false;
    const std::int64_t seconds = getMovieDuration(path);
    Dictionary record = burnItemRecord(path, seconds);
    const std::shared_ptr<BurnItem> item = makeItem(path, record, mayContinue);
    if (!item && !mayContinue())
        return false;
    if (!item || seconds <= 0) {
        run.incompatible.push_back(path);
        refuseExamined(path);
        return true;
    }
    if (_readsTags)
        item->setTags(std::make_shared<const MediaTags>(currentPlatform()->media->tags(path)));
    if (run.place)
        _content.insert(run.place, item);
    else
        _content.append(item);
    tell(&QuarnDelegate::fileDidAdded, record);
    return true;
}

std::shared_ptr<BurnItem> AudioCDBurner::makeItem(const std::string& path, Dictionary& record,
                                                  const std::function<bool()>& mayContinue) const {
    const std::shared_ptr<DRTrack> track =
        currentPlatform()->recording->trackForAudioFileWhile(path, mayContinue);
    if (!track)
        return nullptr;
    track->setPreGap(DRMSF::msfWithFrames(preGapFrames));
    Dictionary properties = *track->properties();
    for (const auto& [key, value] : record)
        properties.insert_or_assign(key, value);
    track->setProperties(std::move(properties));
    return track;
}

EndReport AudioCDBurner::endReport(const std::vector<std::string>& protectedFiles,
                                   const std::vector<std::string>& incompatibleFiles) const {
    return {{protectedFilesReportKey, protectedFiles},
            {incompatibleFilesReportKey, incompatibleFiles}};
}

} // namespace quarner
