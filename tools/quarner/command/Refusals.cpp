// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/command/Refusals.h"

#include "tools/quarner/disc/DiscKind.h"

namespace quarner::cli {

std::string reasonText(const FileRefusal& refusal, Quarner& burner) {
    switch (refusal.reason) {
    case RefusalReason::Missing:
        return "no such file";
    case RefusalReason::NotAFile:
        return "unsupported type (" + refusal.detail + ")";
    case RefusalReason::UnsupportedType:
        return "unsupported type (" + supportedTypes(burner, " and ") + " can be added)";
    case RefusalReason::Protected:
        return "copy-protected";
    case RefusalReason::TooShort:
        return "shorter than a second";
    case RefusalReason::AlreadyInList:
        return "already added";
    case RefusalReason::Unreadable:
    case RefusalReason::NoSound:
    case RefusalReason::Damaged:
        break;
    }
    return "unreadable: " + (refusal.detail.empty() ? "it could not be added" : refusal.detail);
}

} // namespace quarner::cli
