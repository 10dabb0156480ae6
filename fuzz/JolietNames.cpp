// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/joliet/JolietNames.h"

#include <glib.h>

#include <memory>
#include <set>

#include "fuzz/Input.h"
#include "fuzz/Target.h"

namespace quarner::fuzz {
namespace {

std::string foldedCase(const std::string& name) {
    const std::unique_ptr<char, decltype(&g_free)> folded(g_utf8_casefold(name.c_str(), -1),
                                                          g_free);
    return folded.get();
}

std::size_t unitsOf(const std::string& name) {
    std::size_t units = 0;
    for (const char* at = name.c_str(); *at != '\0'; at = g_utf8_next_char(at))
        units += g_utf8_get_char(at) > 0xFFFF ? 2 : 1;
    return units;
}

bool isValid(const std::string& text) {
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

bool hasControl(const std::string& text) {
    for (const char byte : text)
        if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F)
            return true;
    return false;
}

void checkName(const std::string& name) {
    require(!name.empty() && isValid(name), "a name on the disc is valid UTF-8 and not empty");
    require(unitsOf(name) <= jolietNameLimit, "a name on the disc is within the limit");
    require(name.find_first_of("*/:;?\\") == std::string::npos && !hasControl(name),
            "a name on the disc has legal characters only");
}

void checkNames(const std::vector<std::string>& fileNames) {
    const std::vector<std::string> names = jolietNames(fileNames);
    require(names.size() == fileNames.size(), "each file has a name on the disc");
    std::set<std::string> seen;
    for (const std::string& name : names) {
        checkName(name);
        require(seen.insert(foldedCase(name)).second, "no two names are alike, case ignored");
    }
    require(jolietNames(names) == names, "names that are legal and different do not change");
}

} // namespace
} // namespace quarner::fuzz

/// The names of files in one folder, one a line, and the name of a disc in the last line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner::fuzz;
    const std::string text = Input(data, size).rest();
    std::vector<std::string> lines(1);
    for (const char byte : text)
        if (byte == '\n')
            lines.emplace_back();
        else
            lines.back() += byte;
    const std::string disc = quarner::volumeName(lines.back());
    require(isValid(disc) && !hasControl(disc), "the disc's name is printable UTF-8");
    lines.pop_back();
    checkNames(lines);
    return 0;
}
