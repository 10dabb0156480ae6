// SPDX-License-Identifier: LGPL-2.1-or-later
#include <algorithm>
#include <span>

#include "adapters/worker/JolietProtocol.h"
#include "fuzz/Input.h"
#include "fuzz/Target.h"

/// A folder as it was received.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner;
    const auto bytes = std::as_bytes(std::span(data, size));
    const std::optional<JolietFolder> folder = decodedFolder(bytes);
    if (folder)
        fuzz::require(std::ranges::equal(encoded(*folder), bytes),
                      "there is one form of each folder");
    return 0;
}
