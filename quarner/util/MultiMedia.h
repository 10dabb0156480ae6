// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>

#include "quarner/platform/Export.h"

namespace quarner {

/// Formats numbers for display. Both operations may be called on any thread and never fail.
class QUARNER_EXPORT MultiMedia {
public:
    /// `stringWithDuration:framesEnabled:` Returns whole seconds as hours, minutes and seconds,
    /// each of at least two digits: 3661 is "01:01:01". Hours are neither wrapped nor capped. In a
    /// negative duration each field has its own sign. With frames, ".00" follows. Not localised.
    static std::string stringWithDuration(std::int64_t duration, bool framesEnabled);

    /// `stringWithFilesize:` Bytes in binary units, trailing zeros dropped: 1572864 is "1.5 MB".
    /// 1 to 1023 bytes read "4 KB". A size of 0 or below reads as its number of bytes followed by
    /// KB ("0 KB", "-5000 KB"), and a size of 1024^5 or above reads "0 KB". The decimal separator
    /// is the user's.
    ///
    /// The host may translate the formats "%.0f KB", "%@ MB", "%@ GB" and "%@ TB" in its string
    /// table. A translation must have exactly one conversion of the kind of its key, `%f` for the
    /// first and `%@` for the others, which may have a position, flags, a width and a precision
    /// ("%.1f Ko", "%1$@ Mo"). `%%` is a percent sign, and all else stands for itself. Any other
    /// translation is ignored: the key is used.
    static std::string stringWithFilesize(std::int64_t size);
};

} // namespace quarner
