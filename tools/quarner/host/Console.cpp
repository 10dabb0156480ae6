// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/Console.h"

#include <glib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "tools/quarner/text/Columns.h"

namespace quarner::cli {
namespace {

constexpr std::size_t usualColumns = 80;

/// The variable COLUMNS, or the usual width.
std::size_t columnsByEnvironment() {
    const char* const text = g_getenv("COLUMNS");
    const long columns = text == nullptr ? 0 : std::strtol(text, nullptr, 10);
    return columns > 0 ? static_cast<std::size_t>(columns) : usualColumns;
}

std::size_t columnsOfTerminal() {
    winsize size = {};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : columnsByEnvironment();
}

bool canEraseLines() {
    const char* const kind = g_getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && kind != nullptr && std::string_view(kind) != "dumb";
}

} // namespace

Screen screenOfStandardOutput() {
    const bool isUtf8 = g_get_charset(nullptr) != FALSE;
    if (canEraseLines())
        return {true, isUtf8, columnsOfTerminal};
    return {false, isUtf8, columnsByEnvironment};
}

Console::Console(std::ostream& out, std::ostream& err, Screen screen)
    : _out(out), _err(err), _screen(std::move(screen)) {}

void Console::line(std::string_view text) { print(_out, text); }

void Console::error(std::string_view text) { print(_err, text); }

void Console::status(std::string_view text) {
    if (!_screen.isTerminal)
        return;
    const std::lock_guard lock(_mutex);
    if (text == _status)
        return;
    if (text.empty())
        erase();
    _status = text;
    draw();
}

int Console::outputError() const {
    const std::lock_guard lock(_mutex);
    return _outputError;
}

void Console::print(std::ostream& stream, std::string_view text) {
    const std::lock_guard lock(_mutex);
    erase();
    write(stream, std::string(text) + '\n');
    draw();
}

void Console::write(std::ostream& stream, std::string_view text) {
    errno = 0;
    stream << text << std::flush;
    if (!_out.good() && _outputError == 0)
        _outputError = errno == 0 ? EIO : errno;
}

void Console::erase() {
    if (!_status.empty())
        write(_out, "\r\x1b[K");
}

void Console::draw() {
    if (_status.empty())
        return;
    // The last column stays free: a terminal may break the line after it.
    const std::size_t columns = std::max<std::size_t>(_screen.columns(), 2) - 1;
    write(_out, '\r' + shortened(_status, columns) + "\x1b[K");
}

} // namespace quarner::cli
