// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietDirectory.h"

#include <vector>

#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "quarner/platform/DiscFormat.h"

/// The blocks from the first descriptor on; the system area before them is never looked at.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using quarner::dataBlockSize;
    using quarner::fuzz::require;
    constexpr std::size_t systemArea = std::size_t(16) * dataBlockSize;
    constexpr std::size_t shortestRecord = 34;
    constexpr std::size_t longestName = (255 - 33) / 2;
    std::vector<std::byte> head(systemArea +
                                size); // of exactly this size: AddressSanitizer watches
    for (std::size_t i = 0; i < size; ++i)
        head[systemArea + i] = std::byte(data[i]);
    const auto records = quarner::jolietRootDirectory(head);
    require(records.size() <= head.size() / shortestRecord, "each record takes its bytes");
    for (const auto& [name, record] : records)
        require(name.size() <= longestName, "a name fits its record");
    return 0;
}
