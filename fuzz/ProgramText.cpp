// SPDX-License-Identifier: LGPL-2.1-or-later
#include <glib.h>

#include <memory>

#include <nlohmann/json.hpp>

#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "fuzz/Values.h"
#include "quarner/display.h"
#include "quarner/util/Paths.h"
#include "tools/quarner/text/Columns.h"
#include "tools/quarner/text/JsonLine.h"

namespace quarner::fuzz {
namespace {

bool isValid(const std::string& text) {
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

/// Whether a text has one of the characters that JSON has to escape and a terminal would obey.
bool hasControl(const std::string& text) {
    for (const char byte : text)
        if (static_cast<unsigned char>(byte) < 0x20)
            return true;
    return false;
}

void checkText(Input input) {
    const std::size_t columns = input.byte();
    const std::string safe = safeText(input.rest());
    require(isValid(safe) && !hasControl(safe) && safe.find('\x7F') == std::string::npos,
            "a safe text is printable UTF-8");
    require(safeText(safe) == safe, "a safe text is safe");
    require(cli::displayWidth(cli::shortened(safe, columns)) <= columns, "a shortened text fits");
    require(cli::displayWidth(cli::leftAligned(safe, columns)) == columns &&
                cli::displayWidth(cli::rightAligned(safe, columns)) == columns,
            "an aligned text fills its columns");
    require(isValid(cli::shortened(safe, columns)), "a text is cut between characters");
}

void checkLine(Input input) {
    const std::string event = input.text();
    const Value value = valueFrom(input);
    const std::string line = cli::jsonLine(event, {{"value", value}, {"truth", true}});
    require(isValid(line) && !hasControl(line), "a line of JSON is one line of UTF-8");
    const auto read = nlohmann::json::parse(line, nullptr, false);
    require(read.is_object() && read.size() == 3, "a line of JSON is an object");
    require(!isValid(event) || read["event"] == event, "a text is read back as it was");
    const std::string* const text = value.asString();
    require(text == nullptr || !isValid(*text) || read["value"] == *text,
            "a value is read back as it was");
}

/// An absolute path. One with ".." is left out: what becomes of it depends on the file system.
void checkUri(Input input) {
    const std::string path = '/' + input.rest();
    if (path.find('\0') != std::string::npos || path.find("..") != std::string::npos)
        return;
    const std::string uri = Paths::fileUri(path);
    for (const char byte : uri)
        require(byte > 0x20 && byte < 0x7F, "a URI is printable ASCII");
    const std::unique_ptr<char, decltype(&g_free)> read(
        g_filename_from_uri(uri.c_str(), nullptr, nullptr), g_free);
    require(read != nullptr && path == read.get(), "a path survives in its URI");
}

} // namespace
} // namespace quarner::fuzz

/// A text for the terminal, the value of an event, and the path of a file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quarner::fuzz;
    checkText(Input(data, size));
    checkLine(Input(data, size));
    checkUri(Input(data, size));
    return 0;
}
