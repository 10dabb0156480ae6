// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/playlist.h"

#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <memory>
#include <span>
#include <string_view>

#include "adapters/posix/RegularFile.h"
#include "adapters/posix/SystemCall.h"

namespace quarner {
namespace {

using Entries = std::vector<std::string>;

constexpr std::size_t mostBytes = 4U << 20;

template <auto release>
struct ReleasedBy {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};
using Text = std::unique_ptr<char, ReleasedBy<g_free>>;

bool startsIgnoringCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           g_ascii_strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

std::string extensionOf(const std::string& path) {
    const std::size_t dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] == '/')
        return {};
    const Text lower(g_ascii_strdown(path.c_str() + dot + 1, -1));
    return lower.get();
}

std::optional<std::string> contentOf(const std::string& path) {
    const RegularFile file(path);
    if (!file.isOpen())
        return std::nullopt;
    std::string content;
    std::array<char, 1U << 16> piece = {};
    while (content.size() <= mostBytes) {
        const ssize_t count = file.read(std::as_writable_bytes(std::span(piece)));
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        content.append(piece.data(), static_cast<std::size_t>(count));
    }
    const bool isText = content.find('\0') == std::string::npos;
    return isText && content.size() <= mostBytes ? std::optional(content) : std::nullopt;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank = " \t\r";
    const std::size_t first = text.find_first_not_of(blank);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blank) - first + 1);
}

template <typename Take>
void forEachLine(std::string_view text, const Take& take) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        take(trimmed(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

std::optional<Entries> m3uEntries(const std::string& content) {
    Entries entries;
    forEachLine(content, [&](std::string_view line) {
        if (!line.empty() && line.front() != '#')
            entries.emplace_back(line);
    });
    return entries;
}

std::optional<Entries> plsEntries(const std::string& content) {
    constexpr std::string_view key = "File";
    bool hasHeader = false;
    std::map<std::uint64_t, std::string> numbered;
    forEachLine(content, [&](std::string_view line) {
        hasHeader = hasHeader || startsIgnoringCase(line, "[playlist]");
        if (!startsIgnoringCase(line, key))
            return;
        std::uint64_t number = 0;
        const char* const end = line.data() + line.size();
        const auto [stop, problem] = std::from_chars(line.data() + key.size(), end, number);
        const std::string_view rest = trimmed(std::string_view(stop, end));
        if (problem == std::errc() && rest.starts_with('='))
            numbered[number] = trimmed(rest.substr(1));
    });
    if (!hasHeader)
        return std::nullopt;
    Entries entries;
    for (const auto& [number, entry] : numbered)
        if (!entry.empty())
            entries.push_back(entry);
    return entries;
}

/// The locations of the tracks in an XSPF file. Only the first one of a track counts.
struct XspfTracks {
    Entries entries;
    std::string location;
    bool isPlaylist = false;
    bool isInLocation = false;
    bool hasLocation = false; ///< the track has one already

    static std::string_view localName(const char* name) {
        const std::string_view whole = name;
        return whole.substr(whole.find(':') + 1);
    }
    static void start(GMarkupParseContext* /*context*/, const char* name, const char** /*names*/,
                      const char** /*values*/, void* self, GError** /*error*/) {
        auto& tracks = *static_cast<XspfTracks*>(self);
        tracks.isPlaylist = tracks.isPlaylist || localName(name) == "playlist";
        if (localName(name) == "track")
            tracks.hasLocation = false;
        tracks.isInLocation = localName(name) == "location" && !tracks.hasLocation;
        tracks.location.clear();
    }
    static void end(GMarkupParseContext* context, const char* name, void* self,
                    GError** /*error*/) {
        auto& tracks = *static_cast<XspfTracks*>(self);
        const GSList* const outer = g_markup_parse_context_get_element_stack(context)->next;
        const bool isOfTrack =
            outer != nullptr && localName(static_cast<const char*>(outer->data)) == "track";
        const std::string location(trimmed(tracks.location));
        if (tracks.isInLocation && localName(name) == "location" && isOfTrack &&
            !location.empty()) {
            tracks.entries.push_back(location);
            tracks.hasLocation = true;
        }
        tracks.isInLocation = false;
    }
    static void text(GMarkupParseContext* /*context*/, const char* text, gsize size, void* self,
                     GError** /*error*/) {
        auto& tracks = *static_cast<XspfTracks*>(self);
        if (tracks.isInLocation)
            tracks.location.append(text, size);
    }
};

std::optional<Entries> xspfEntries(const std::string& content) {
    static const GMarkupParser parser = {XspfTracks::start, XspfTracks::end, XspfTracks::text,
                                         nullptr, nullptr};
    XspfTracks tracks;
    using Context = std::unique_ptr<GMarkupParseContext, ReleasedBy<g_markup_parse_context_free>>;
    const Context context(
        g_markup_parse_context_new(&parser, G_MARKUP_TREAT_CDATA_AS_TEXT, &tracks, nullptr));
    const bool isWhole =
        g_markup_parse_context_parse(context.get(), content.data(),
                                     static_cast<gssize>(content.size()), nullptr) &&
        g_markup_parse_context_end_parse(context.get(), nullptr);
    return isWhole && tracks.isPlaylist ? std::optional(tracks.entries) : std::nullopt;
}

bool exists(const std::string& path) {
    struct stat found = {};
    return uninterrupted([&] { return stat(path.c_str(), &found); }) == 0;
}

bool isUri(const std::string& entry) {
    const Text scheme(g_uri_parse_scheme(entry.c_str()));
    return scheme && std::string_view(scheme.get()).size() > 1; // not "C:"
}

std::string pathOfFileUri(const std::string& uri) {
    char* host = nullptr; // of another machine's file
    const Text path(g_filename_from_uri(uri.c_str(), &host, nullptr));
    const Text owned(host);
    const bool isOfThisMachine = host == nullptr || std::string_view(host) == "localhost";
    return path && isOfThisMachine ? path.get() : uri;
}

/// The forms in which a name may be meant, the written one first.
Entries formsOf(const std::string& name) {
    Entries forms = {name};
    std::string slashed = name;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    forms.push_back(slashed);
    if (!g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr))
        for (const std::string& bytes : {name, slashed})
            if (const Text utf8(g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8",
                                          "ISO-8859-1", nullptr, nullptr, nullptr));
                utf8)
                forms.emplace_back(utf8.get());
    return forms;
}

std::string resolved(const std::string& name, const std::string& folder) {
    const auto inFolder = [&](const std::string& form) {
        return form.starts_with('/') ? form : folder + form;
    };
    for (const std::string& form : formsOf(name))
        if (exists(inFolder(form)))
            return inFolder(form);
    return inFolder(name);
}

/// Returns a relative URI as a name; the URI itself if it is none.
std::string unescaped(const std::string& uri) {
    const Text name(g_uri_unescape_string(uri.c_str(), "/"));
    return name ? name.get() : uri;
}

std::string pathOfEntry(const std::string& entry, const std::string& folder, bool isEscaped) {
    if (startsIgnoringCase(entry, "file:"))
        return pathOfFileUri(entry);
    if (isUri(entry))
        return entry;
    return resolved(isEscaped ? unescaped(entry) : entry, folder);
}

struct Format {
    std::string_view extension;
    std::optional<Entries> (*read)(const std::string& content);
    bool isEscaped; ///< the entries are URIs
};

constexpr std::array<Format, 4> formats = {{{"m3u", m3uEntries, false},
                                            {"m3u8", m3uEntries, false},
                                            {"pls", plsEntries, false},
                                            {"xspf", xspfEntries, true}}};

const Format* formatOf(const std::string& path) {
    const std::string extension = extensionOf(path);
    const auto* const format =
        std::find_if(formats.begin(), formats.end(),
                     [&](const Format& each) { return each.extension == extension; });
    return format == formats.end() ? nullptr : format;
}

} // namespace

std::vector<std::string> playlistExtensions() {
    std::vector<std::string> extensions;
    for (const Format& format : formats)
        extensions.emplace_back(format.extension);
    return extensions;
}

bool isPlaylist(const std::string& path) { return formatOf(path) != nullptr; }

std::optional<std::vector<std::string>> readPlaylist(const std::string& path) try {
    const Format* const format = formatOf(path);
    const std::optional<std::string> content = format != nullptr ? contentOf(path) : std::nullopt;
    const std::optional<Entries> entries = content ? format->read(*content) : std::nullopt;
    if (!entries)
        return std::nullopt;
    const std::string folder = path.substr(0, path.find_last_of('/') + 1);
    Entries paths;
    for (const std::string& entry : *entries)
        paths.push_back(pathOfEntry(entry, folder, format->isEscaped));
    return paths;
} catch (...) { // no memory
    return std::nullopt;
}

} // namespace quarner
