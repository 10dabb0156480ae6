// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/project/RefusalTexts.h"

#include "quarner/platform/Texts.h"

namespace quarner {
namespace {

/// Without a default, so that the compiler names a reason that is missing.
const char* messageFor(const FileRefusal& refusal) {
    const bool hasDetail = !refusal.detail.empty();
    switch (refusal.reason) {
    case RefusalReason::Missing:
        return translatable(
            "\"{file}\" does not exist. Check its name, or whether its disk is connected.");
    case RefusalReason::Unreadable:
        return hasDetail
                   ? translatable("\"{file}\" cannot be read ({detail}). Check its permissions and "
                                  "its disk.")
                   : translatable("\"{file}\" cannot be read. Check its permissions and its disk.");
    case RefusalReason::NotAFile:
        return translatable("\"{file}\" is not a file. Add the files in it instead.");
    case RefusalReason::UnsupportedType:
        return translatable(
            "\"{file}\" is of a type that cannot be added. Convert it to MP3 or M4A.");
    case RefusalReason::Protected:
        return translatable(
            "\"{file}\" is copy-protected. Add it to a data CD, or get it without protection.");
    case RefusalReason::NoSound:
        return translatable(
            "\"{file}\" holds no sound that can be played. Leave it out, or replace it.");
    case RefusalReason::TooShort:
        return translatable("\"{file}\" is shorter than a second. Leave it out.");
    case RefusalReason::Damaged:
        return hasDetail
                   ? translatable("\"{file}\" is damaged ({detail}). Leave it out, or replace it.")
                   : translatable("\"{file}\" is damaged. Leave it out, or replace it.");
    case RefusalReason::AlreadyInList:
        return translatable("\"{file}\" is already in the list.");
    }
    return translatable("\"{file}\" could not be added.");
}

} // namespace

std::string textForRefusal(const FileRefusal& refusal) {
    return text(messageFor(refusal), {{"file", refusal.path}, {"detail", refusal.detail}});
}

} // namespace quarner
