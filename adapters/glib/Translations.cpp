// SPDX-License-Identifier: LGPL-2.1-or-later
#include <libintl.h>

#include <string>

#include "adapters/posix/OwnTree.h"
#include "quarner/display.h"

namespace quarner {
namespace {

constexpr char domain[] = "quarner";
constexpr char anyCatalogue[] = "de/LC_MESSAGES/quarner.mo";

std::string boundFolder(const char* ofDomain) {
    const char* const folder = bindtextdomain(ofDomain, nullptr);
    return folder == nullptr ? "" : folder;
}

} // namespace

void bindTranslations() {
    // A domain that nobody has bound has the folder of the system.
    if (boundFolder(domain) == boundFolder("quarner-unbound"))
        bindtextdomain(domain,
                       folderOfOwnTree("share/locale", anyCatalogue, QUARNER_LOCALE_DIR).c_str());
    bind_textdomain_codeset(domain, "UTF-8");
}

} // namespace quarner
