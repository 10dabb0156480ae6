// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/host/LineReader.h"

#include <glib-unix.h>
#include <unistd.h>

#include <array>
#include <utility>

namespace quarner::cli {

LineReader::LineReader(int descriptor, std::function<void(std::optional<std::string>)> handler)
    : _descriptor(descriptor), _handler(std::move(handler)) {
    const auto read = [](gint, GIOCondition, gpointer reader) -> gboolean {
        return static_cast<LineReader*>(reader)->readSome() ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
    };
    const auto somethingHappened = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
    _source = g_unix_fd_add(descriptor, somethingHappened, read, this);
}

LineReader::~LineReader() {
    if (_source != 0)
        g_source_remove(_source);
}

bool LineReader::readSome() {
    std::array<char, 256> buffer = {};
    const ssize_t count = TEMP_FAILURE_RETRY(read(_descriptor, buffer.data(), buffer.size()));
    if (count > 0)
        _line.append(buffer.data(), static_cast<std::size_t>(count));
    const std::size_t end = _line.find('\n');
    if (count > 0 && end == std::string::npos)
        return true;
    _source = 0;
    _handler(end == std::string::npos ? std::nullopt : std::optional(_line.substr(0, end)));
    return false;
}

} // namespace quarner::cli
