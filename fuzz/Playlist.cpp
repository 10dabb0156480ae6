// SPDX-License-Identifier: LGPL-2.1-or-later
#include <quarner/playlist.h>

#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "tests/support/TemporaryFolder.h"

/// A whole file, read as each format.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    static const TemporaryFolder folder;
    const std::string content = fuzz::Input(data, size).rest();
    for (const char* name : {"input.m3u", "input.pls", "input.xspf"}) {
        const auto paths = readPlaylist(folder.write(name, content));
        if (!paths)
            continue;
        fuzz::require(paths->size() <= content.size(), "an entry has a byte at least");
        for (const std::string& path : *paths)
            fuzz::require(!path.empty() && path.find('\0') == std::string::npos,
                          "an entry is a path or a URI");
    }
    return 0;
}
