// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/BurnTexts.h"

#include "quarner/platform/Texts.h"
#include "quarner/project/DiscCapacity.h"
#include "quarner/util/MultiMedia.h"

namespace quarner {
namespace {

// Both without a default, so that the compiler names a code that is missing.

const char* messageFor(DRError code) {
    switch (code) {
    case DRError::UserCanceled:
        return translatable("The burn was cancelled.");
    case DRError::DeviceBusy:
        return translatable("The drive is busy with another burn or program.");
    case DRError::DeviceVanished:
        return translatable("The drive was unplugged.");
    case DRError::MediaNotPresent:
        return translatable("There is no disc in the drive.");
    case DRError::MediaNotWritable:
        return translatable("The disc cannot be written.");
    case DRError::MediaTooSmall:
        return translatable("The content does not fit the disc.");
    case DRError::WrongMedia:
        return translatable("The disc is not a recordable CD.");
    case DRError::EmptyLayout:
        return translatable("There is nothing to write.");
    case DRError::TooManyTracks:
        return translatable("A disc holds at most 99 tracks.");
    case DRError::DeviceNotPermitted:
        return translatable("The drive may not be opened.");
    case DRError::DeviceHanging:
        return translatable("The drive does not respond.");
    case DRError::SourceMissing:
        return translatable("A source file is gone or unreadable.");
    case DRError::SourceChanged:
        return translatable("A source file has changed since it was added.");
    case DRError::SourceUnreadable:
        return translatable("A source file cannot be read or decoded.");
    case DRError::NoSpace:
        return translatable("No space is left for the image.");
    case DRError::PermissionDenied:
        return translatable("The image may not be written there.");
    case DRError::WriteFailed:
        return translatable("Writing failed.");
    case DRError::ReadBackFailed:
        return translatable("The written disc cannot be read back.");
    case DRError::VerifyFailed:
        return translatable("The written disc differs from what was sent to it.");
    case DRError::FolderMissing:
        return translatable("The folder for the image does not exist.");
    case DRError::Internal:
        return translatable("An internal error occurred.");
    }
    return translatable("The drive reported an unknown error.");
}

const char* adviceFor(DRError code) {
    switch (code) {
    case DRError::DeviceBusy:
        return translatable("Wait until the other burn or program has ended.");
    case DRError::DeviceVanished:
        return translatable("Reconnect the drive and use a new disc.");
    case DRError::DeviceHanging:
        return translatable("Switch the drive off and on, and use a new disc.");
    case DRError::DeviceNotPermitted:
        return translatable("An administrator can change that; then log in again.");
    case DRError::MediaNotPresent:
    case DRError::MediaNotWritable:
    case DRError::WrongMedia:
        return translatable("Insert a blank CD-R or CD-RW.");
    case DRError::MediaTooSmall:
        return translatable("Remove some files, or use a larger disc.");
    case DRError::EmptyLayout:
        return translatable("Add files first.");
    case DRError::TooManyTracks:
        return translatable("Burn the files to several discs.");
    case DRError::SourceMissing:
        return translatable("Restore the file and try again.");
    case DRError::SourceChanged:
        return translatable("Try again with the file as it is now.");
    case DRError::SourceUnreadable:
        return translatable("Leave the file out, or replace it.");
    case DRError::NoSpace:
        return translatable(
            "The image takes {size}: make room for it, or put it on another file system.");
    case DRError::PermissionDenied:
        return translatable(
            "Choose a folder that you may write to, or change the permissions of the file or "
            "folder.");
    case DRError::FolderMissing:
        return translatable("Create the folder, or choose another one.");
    case DRError::ReadBackFailed:
    case DRError::VerifyFailed:
        return translatable("Try again, preferably with a new disc.");
    case DRError::UserCanceled:
    case DRError::WriteFailed:
    case DRError::Internal:
        return nullptr;
    }
    return nullptr;
}

} // namespace

std::string textForBurnError(DRError code) { return text(messageFor(code)); }

std::string adviceForBurnError(DRError code, std::uint64_t imageBytes) {
    const char* const advice = adviceFor(code);
    if (advice == nullptr || (code == DRError::NoSpace && imageBytes == 0))
        return {};
    const auto bytes = static_cast<std::int64_t>(imageBytes);
    return text(advice, {{"size", MultiMedia::stringWithFilesize(bytes)}});
}

DiscProblem problemForCode(std::int64_t code) {
    const auto error = static_cast<DRError>(static_cast<std::uint32_t>(code));
    return {error, textForBurnError(error), adviceForBurnError(error, 0)};
}

std::string textForTimeLeft(std::uint64_t seconds) {
    const auto twoDigits = [](std::uint64_t number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    const std::uint64_t hours = seconds / 3600;
    const std::uint64_t minutes = seconds / 60 % 60;
    const std::string rest = ":" + twoDigits(seconds % 60);
    return hours == 0 ? std::to_string(minutes) + rest
                      : std::to_string(hours) + ":" + twoDigits(minutes) + rest;
}

std::string textForBurnStep(const DiscBurnProgress& progress) {
    switch (progress.phase) {
    case DiscBurnProgress::Phase::Preparing:
        return text("Preparing");
    case DiscBurnProgress::Phase::Writing:
        if (progress.trackCount <= 1)
            return text("Writing");
        return text("Writing track {track} of {count}",
                    {{"track", std::to_string(progress.track)},
                     {"count", std::to_string(progress.trackCount)}});
    case DiscBurnProgress::Phase::Closing:
        return text("Closing the disc");
    case DiscBurnProgress::Phase::Finishing:
        return text("Finishing");
    case DiscBurnProgress::Phase::Verifying:
        return text("Verifying");
    }
    return {};
}

} // namespace quarner
