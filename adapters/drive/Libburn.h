// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

// For sources of this folder only. The library's header needs these two first.
#include <stdint.h>
#include <stdio.h>

#include <libburn/libburn.h>

#include <array>
#include <memory>

namespace quarner {

/// Frees a disc of the library.
struct DiscRelease {
    void operator()(burn::burn_disc* disc) const { burn::burn_disc_free(disc); }
};
using BurnDisc = std::unique_ptr<burn::burn_disc, DiscRelease>;

/// Returns the sector at which an entry of a table of contents begins.
inline int startOf(const burn::burn_toc_entry& entry) {
    const bool hasSector = (entry.extensions_valid & 1) != 0;
    return hasSector ? entry.start_lba
                     : burn::burn_msf_to_lba(entry.pmin, entry.psec, entry.pframe);
}

/// Returns the profile number (MMC) of the disc in the drive; 0 if there is none.
inline int profileOf(burn::burn_drive* drive) {
    int profile = 0;
    std::array<char, 80> name = {}; // the length that the library requires
    return burn::burn_disc_get_profile(drive, &profile, name.data()) == 1 ? profile : 0;
}

} // namespace quarner
