// SPDX-License-Identifier: LGPL-2.1-or-later
//
// usage: libburn_reads FILE.cue
//
// Prints the number of sectors of each track as libburn reads the sheet, including the silence
// before it, one number per line.
#include <stdint.h>
#include <stdio.h>
#include <sys/types.h>

#include <libburn/libburn.h>

#include <cstdlib>

int main(int count, char** arguments) {
    if (count != 2 || !burn::burn_initialize())
        return 2;
    burn::burn_session* session = burn::burn_session_create();
    unsigned char* textPacks = nullptr;
    int textPackCount = 0;
    constexpr int noFifo = 0;
    const int outcome = burn::burn_session_by_cue_file(session, arguments[1], noFifo, nullptr,
                                                       &textPacks, &textPackCount, 0);
    int trackCount = 0;
    burn::burn_track** tracks = burn::burn_session_get_tracks(session, &trackCount);
    for (int i = 0; i < trackCount; ++i)
        printf("%d\n", burn::burn_track_get_sectors(tracks[i]));
    free(textPacks);
    burn::burn_session_free(session);
    burn::burn_finish();
    return outcome > 0 ? 0 : 1;
}
