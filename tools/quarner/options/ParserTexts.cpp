// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/options/ParserTexts.h"

#include <optional>
#include <string_view>

#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

// The parser composes its messages itself. These are its messages as whole sentences: the values
// are found in what it says, and put into the translation.
constexpr const char* problems[] = {
    translatable("{option} excludes {value}"),
    translatable("{option} requires {value}"),
    translatable("{option}: 1 required {value} missing"),
    translatable("{option}: At Most 1 required but received {value}"),
    translatable("Could not convert: {option} = {value}"),
};

/// A text of the form of a message in the user's language, or nothing for one of another form.
std::optional<std::string> translated(std::string_view text, const char* message) {
    constexpr std::string_view option = "{option}";
    constexpr std::string_view value = "{value}";
    const std::string_view form = message;
    const std::size_t first = form.find(option);
    const std::size_t second = form.find(value);
    const std::string_view middle =
        form.substr(first + option.size(), second - first - option.size());
    const std::string_view end = form.substr(second + value.size());
    const std::size_t place = text.find(middle);
    if (!text.starts_with(form.substr(0, first)) || !text.ends_with(end) ||
        place == std::string_view::npos)
        return std::nullopt;
    text.remove_suffix(end.size());
    return _(message, {{"option", std::string(text.substr(first, place - first))},
                       {"value", std::string(text.substr(place + middle.size()))}});
}

/// Whether a message is ours, and may hold what the user wrote.
bool isTranslated(const CLI::ParseError& problem) {
    return problem.get_name() == "UsageError" || problem.get_name() == "ValidationError";
}

} // namespace

void translateHelp(CLI::App& command) {
    for (const char* const label :
         {translatable("Usage"), translatable("OPTIONS"), translatable("SUBCOMMAND"),
          translatable("Positionals"), translatable("Needs"), translatable("Excludes")})
        command.get_formatter()->label(label, _(label));
    command.group(_("Subcommands"));
    command.option_defaults()->group(_("Options"));
    command.set_help_flag("-h,--help", _("Print this help message and exit"));
}

std::string textOf(const CLI::ParseError& problem) {
    if (!isTranslated(problem))
        for (const char* const message : problems)
            if (auto text = translated(problem.what(), message))
                return *text;
    return problem.what();
}

} // namespace quarner::cli
