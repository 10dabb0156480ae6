// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/ffmpeg/Decoding.h"

namespace quarner::testing {

std::optional<std::vector<std::int16_t>> decoded(PCMService& service, const std::string& path,
                                                 std::size_t valuesAtOnce) {
    const auto stream = service.open(path);
    if (!stream)
        return std::nullopt;
    std::vector<std::int16_t> all;
    std::vector<std::int16_t> piece(valuesAtOnce);
    for (;;) {
        const auto count = stream->read(piece);
        if (!count)
            return std::nullopt;
        all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(*count));
        if (*count < piece.size())
            return all;
    }
}

} // namespace quarner::testing
