// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <string>
#include <string_view>

#include "quarner/platform/Export.h"

namespace quarner {

/// Returns a text from outside (a path, a tag, a drive's name) that is safe to show: valid UTF-8 on
/// one line. Each byte that is not UTF-8, and each character that could move a cursor or turn the
/// direction of writing, becomes U+FFFD. Any thread; needs no platform.
QUARNER_EXPORT std::string safeText(std::string_view text);

/// Tells gettext where the catalogues of the domain `quarner` are, which holds the messages of the
/// library and of its programs: in share/locale of the tree that this library was installed or
/// built in. Does nothing if the host has bound the domain. `installDesktopPlatform` does this,
/// too. A host that shows the library's messages in the user's language calls `setlocale` itself.
QUARNER_EXPORT void bindTranslations();

} // namespace quarner
