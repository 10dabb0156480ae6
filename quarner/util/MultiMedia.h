// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// Numbers as display text. Both operations may be called on any thread and never fail.
class QUARNER_EXPORT MultiMedia {
public:
    /// `stringWithDuration:framesEnabled:` Whole seconds as hours, minutes and seconds, each of at
    /// least two digits: 3661 is "01:01:01". Hours are neither wrapped nor capped; in a negative
    /// duration each field bears its own sign. With frames, ".00" follows. Not localised.
    static std::string stringWithDuration(std::int64_t duration, bool framesEnabled);

    /// `stringWithFilesize:` Bytes in binary units, trailing zeros dropped: 1572864 is "1.5 MB".
    /// Up to 1023 bytes read "4 KB"; 0 and below, and 1024^5 and above, have no better form than
    /// the count in KB ("0 KB"). The decimal separator is the user's; the host may translate
    /// "%.0f KB", "%@ MB", "%@ GB" and "%@ TB" in its string table.
    static std::string stringWithFilesize(std::int64_t size);
};

} // namespace quarner
