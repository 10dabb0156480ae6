// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/image/CueSheet.h"

#include "fuzz/Input.h"
#include "fuzz/Target.h"

namespace quarner::fuzz {
namespace {

void checkReading(const std::string& sheet) {
    const auto bin = binNamedBy(sheet);
    if (!bin)
        return;
    require(bin->find_first_of("\r\n") == std::string::npos, "a name ends with its line");
    require(sheet.find('"' + *bin + '"') != std::string::npos, "a name stands in the sheet");
}

/// The sheet of a disc with this BIN.
void checkWriting(Input input) {
    DiscPlan plan;
    for (int tracks = input.byte() % 100; tracks > 0; --tracks)
        plan.tracks.push_back(
            {.preGap = input.number<std::uint32_t>(), .length = input.number<std::uint32_t>()});
    const std::string name = input.rest();
    if (name.find_first_of("\"\r\n") != std::string::npos)
        return;
    require(binNamedBy(cueSheet(plan, name)) == name, "a sheet names the BIN it was made for");
}

} // namespace
} // namespace quarner::fuzz

/// A sheet that is read, and the facts of one that is written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner::fuzz;
    checkReading(Input(data, size).rest());
    checkWriting(Input(data, size));
    return 0;
}
