// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner-gtk/CommandLine.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tools/words/Words.h"

namespace quarner::window {

using words::_;

namespace {

constexpr int wrongUsage = 2;

int refuse(const std::string& text) {
    std::cerr << "quarner-gtk: " << text << '\n'
              << _("Try: {command}", {{"command", "quarner-gtk --help"}}) << std::endl;
    return wrongUsage;
}

} // namespace

const GOptionEntry* commandLineOptions() {
    static const std::array texts = {_("Make an audio CD"), _("Make a data CD"),
                                     _("Show the version"), _("[FILE | FOLDER | PLAYLIST]…")};
    static const std::array<GOptionEntry, 5> entries = {{
        {"audio", 'a', 0, G_OPTION_ARG_NONE, nullptr, texts[0].c_str(), nullptr},
        {"data", 'd', 0, G_OPTION_ARG_NONE, nullptr, texts[1].c_str(), nullptr},
        {"version", 'v', 0, G_OPTION_ARG_NONE, nullptr, texts[2].c_str(), nullptr},
        {G_OPTION_REMAINING, 0, 0, G_OPTION_ARG_FILENAME_ARRAY, nullptr, "", texts[3].c_str()},
        {},
    }};
    return entries.data();
}

std::optional<int> statusWithoutWindow(int count, char** arguments) {
    gboolean isAudio = FALSE;
    gboolean isData = FALSE;
    gboolean isVersion = FALSE;
    char** files = nullptr;
    std::array<GOptionEntry, 5> entries = {};
    std::copy_n(commandLineOptions(), entries.size(), entries.begin());
    const std::array<void*, 4> places = {&isAudio, &isData, &isVersion, &files};
    for (std::size_t i = 0; i < places.size(); ++i)
        entries[i].arg_data = places[i];
    const std::unique_ptr<GOptionContext, decltype(&g_option_context_free)> context(
        g_option_context_new(nullptr), g_option_context_free);
    g_option_context_set_summary(context.get(),
                                 _("Burns music to an audio CD or a data CD.").c_str());
    g_option_context_add_main_entries(context.get(), entries.data(), nullptr);

    // It takes what it knows out of the list that it is given.
    std::vector<char*> words(arguments, arguments + count);
    words.push_back(nullptr);
    char** list = words.data();
    GError* error = nullptr;
    const bool isUnderstood = g_option_context_parse(context.get(), &count, &list, &error) == TRUE;
    g_strfreev(files);
    if (!isUnderstood) {
        const std::string text = error->message;
        g_error_free(error);
        return refuse(text);
    }
    if (isVersion == TRUE) {
        std::cout << "quarner-gtk " QUARNER_VERSION << std::endl;
        return 0;
    }
    if (isAudio == TRUE && isData == TRUE)
        return refuse(_("A disc is either an audio CD or a data CD."));
    return std::nullopt;
}

} // namespace quarner::window
