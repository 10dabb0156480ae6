// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/ContentSize.h"

#include <algorithm>

#include "quarner/front/BurnItemKeys.h"
#include "quarner/platform/DRTrack.h"
#include "quarner/platform/DiscFormat.h"
#include "quarner/platform/Texts.h"
#include "quarner/project/BurnTexts.h"
#include "quarner/util/MultiMedia.h"

namespace quarner {
namespace {

constexpr std::uint64_t framesPerSecond = 75; // one sector each (Red Book)

bool isAudio(const ContentSize& content) { return content.kind == DiscProject::Kind::Audio; }

/// Blocks in the unit of the disc.
std::uint64_t inUnit(const ContentSize& content, std::uint64_t blocks) {
    return isAudio(content) ? blocks / framesPerSecond : blocks * dataBlockSize;
}

std::string textFor(const ContentSize& content, std::uint64_t amount) {
    const auto number = static_cast<std::int64_t>(amount);
    return isAudio(content) ? MultiMedia::stringWithDuration(number, false)
                            : MultiMedia::stringWithFilesize(number);
}

bool hasTooManyTracks(const ContentSize& content) {
    return isAudio(content) && content.count > mostTracks;
}

/// The blocks that the disc in a drive takes.
std::uint64_t blocksOf(const DiscDrive& drive) { return drive.freeBytes / dataBlockSize; }

bool isTooLarge(const ContentSize& content, const DiscDrive& drive) {
    return content.blocks > blocksOf(drive);
}

DiscProblem problem(const ContentSize& content, DRError code) {
    return {code, textForBurnError(code), adviceForBurnError(code, content.imageBytes())};
}

/// What is wrong with the disc, whatever is to be burnt on it.
std::optional<DRError> problemOfDisc(const DiscDrive& drive) {
    if (!drive.hasDisc)
        return drive.problem.empty() ? DRError::MediaNotPresent : DRError::DeviceNotPermitted;
    if (!drive.isCD)
        return DRError::WrongMedia;
    return drive.isWritableDisc() ? std::nullopt : std::optional(DRError::MediaNotWritable);
}

/// The problem of a disc, in the words that are known for it.
DiscProblem explained(const ContentSize& content, const DiscDrive& drive, DRError code) {
    DiscProblem result = problem(content, code);
    if (code == DRError::MediaNotPresent && drive.isLoading) {
        result.text = text("The drive still examines the disc.");
        result.advice = text("Try again when it is done.");
    } else if (code == DRError::DeviceNotPermitted) {
        result.text = textForUnusableDrive(drive);
        result.advice.clear(); // the problem says it
    }
    return result;
}

/// Whatever disc is in the drive.
DiscProblem readOnly(const DiscDrive& drive) {
    return {DRError::MediaNotWritable,
            text("The drive \"{drive}\" cannot write CDs.", {{"drive", drive.name}}),
            text("Use a drive that writes CDs.")};
}

DiscProblem overflow(const ContentSize& content, const DiscDrive& drive) {
    DiscProblem result = problem(content, DRError::MediaTooSmall);
    const std::string total = textFor(content, inUnit(content, blocksOf(drive)));
    const std::string used = textFor(content, inUnit(content, content.blocks));
    const TextValues values = {{"used", used}, {"total", total}};
    result.text =
        isAudio(content)
            ? textForCount("The track and its pause take {used}, and the disc takes {total}.",
                           "The {count} tracks and their pauses take {used}, and the disc takes "
                           "{total}.",
                           content.count, values)
            : textForCount("The file takes {used}, and the disc takes {total}.",
                           "The {count} files take {used}, and the disc takes {total}.",
                           content.count, values);
    return result;
}

std::string contentTextFor(const ContentSize& content) {
    return isAudio(content) ? textForCount("{count} track and its pause",
                                           "{count} tracks and their pauses", content.count)
                            : textForCount("{count} file", "{count} files", content.count);
}

std::string verdictOn(const ContentSize& content, const DiscCapacity& capacity) {
    if (capacity.used > capacity.total) {
        const std::string excess = textFor(content, capacity.used - capacity.total);
        return isAudio(content) ? text("{time} too long", {{"time", excess}})
                                : text("{size} too much", {{"size", excess}});
    }
    if (hasTooManyTracks(content))
        return textForCount("{count} track too many", "{count} tracks too many",
                            content.count - mostTracks);
    return capacity.fits ? text("{amount} left", {{"amount", capacity.freeText}})
                         : text("less than a second too long");
}

} // namespace

std::uint64_t ContentSize::imageBytes() const {
    return blocks * (isAudio(*this) ? audioSectorSize : dataBlockSize);
}

ContentSize measureContent(DiscProject::Kind kind, const ContentList::Snapshot& items,
                           std::optional<std::uint64_t> dataBlocks) {
    ContentSize content{.kind = kind, .count = items.size()};
    for (const BurnItemRef& item : items) {
        if (const auto* const track = dynamic_cast<const DRTrack*>(item.get()))
            content.blocks += track->estimateLength();
        content.bytes += valueFor(*item->properties(), kQuarnItemRealFileSizeKey).asUInt64();
    }
    if (kind == DiscProject::Kind::Data) {
        content.isExact = dataBlocks.has_value();
        content.blocks = dataBlocks.value_or((content.bytes + dataBlockSize - 1) / dataBlockSize);
    }
    return content;
}

DiscCapacity capacityOf(const ContentSize& content, const std::optional<DiscDrive>& drive) {
    DiscCapacity capacity;
    capacity.count = content.count;
    capacity.fileBytes = content.bytes;
    capacity.isExact = content.isExact;
    capacity.used = inUnit(content, content.blocks);
    capacity.isDiscKnown = drive && drive->isExamined && drive->hasDisc;
    if (capacity.isDiscKnown) {
        capacity.total = inUnit(content, blocksOf(*drive));
        capacity.free = capacity.total - std::min(capacity.used, capacity.total);
        capacity.fits = !isTooLarge(content, *drive);
    }
    if (hasTooManyTracks(content))
        capacity.fits = false;
    capacity.usedText = textFor(content, capacity.used);
    capacity.freeText = textFor(content, capacity.free);
    capacity.totalText = textFor(content, capacity.total);
    capacity.fileBytesText =
        MultiMedia::stringWithFilesize(static_cast<std::int64_t>(capacity.fileBytes));
    capacity.contentText = contentTextFor(content);
    if (capacity.isDiscKnown)
        capacity.verdict = verdictOn(content, capacity);
    return capacity;
}

std::vector<DiscProblem> problemsOf(const ContentSize& content,
                                    const std::optional<DiscDrive>& drive, bool isBurning) {
    std::vector<DiscProblem> problems;
    if (!drive)
        problems.push_back(problem(content, DRError::DeviceVanished));
    else if (isBurning)
        problems.push_back(problem(content, DRError::DeviceBusy));
    else if (!drive->canWrite)
        problems.push_back(readOnly(*drive));
    else if (const auto code = drive->isExamined ? problemOfDisc(*drive) : std::nullopt)
        problems.push_back(explained(content, *drive, *code));
    else if (drive->isExamined && isTooLarge(content, *drive))
        problems.push_back(overflow(content, *drive));
    if (content.count == 0)
        problems.push_back(problem(content, DRError::EmptyLayout));
    if (hasTooManyTracks(content))
        problems.push_back(problem(content, DRError::TooManyTracks));
    return problems;
}

} // namespace quarner
