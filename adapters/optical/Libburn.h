// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

// For sources of this folder alone. The library's header wants these two before it.
#include <stdint.h>
#include <stdio.h>

#include <libburn/libburn.h>

#include <array>
#include <memory>

namespace quarner {

/// Gives a list of the library's discs back.
struct DiscRelease {
    void operator()(burn::burn_disc* disc) const { burn::burn_disc_free(disc); }
};
using BurnDisc = std::unique_ptr<burn::burn_disc, DiscRelease>;

/// The sector at which an entry of a table of contents begins.
inline int startOf(const burn::burn_toc_entry& entry) {
    const bool hasSector = (entry.extensions_valid & 1) != 0;
    return hasSector ? entry.start_lba
                     : burn::burn_msf_to_lba(entry.pmin, entry.psec, entry.pframe);
}

/// What kind of disc the drive has, by the number of its profile (MMC); 0 when there is none.
inline int profileOf(burn::burn_drive* drive) {
    int profile = 0;
    std::array<char, 80> name = {}; // as long as the library wants it
    return burn::burn_disc_get_profile(drive, &profile, name.data()) == 1 ? profile : 0;
}

} // namespace quarner
