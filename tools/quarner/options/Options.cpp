// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tools/quarner/options/Options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <string_view>

#include "quarner/display.h"
#include "quarner/front/Quarner.h"
#include "tools/quarner/options/NearestName.h"
#include "tools/quarner/options/ParserTexts.h"
#include "tools/words/Words.h"

namespace quarner::cli {
namespace {

using words::_;

constexpr const char* statusHelp =
    // TRANSLATORS: No line of a help text may take more than 87 columns. Leave NAME and FILE as
    // they are.
    translatable(
        "Exit status: 0 burnt and verified, 1 the burn failed, 2 wrong usage or no drive or\n"
        "image to use, 3 a file was refused, 4 does not fit the disc, 130 cancelled.\n");
constexpr const char* outputHelp = translatable(
    "If the output cannot be written, status 0 becomes 1, unless its reader went away.\n");

/// What follows the options in the help of a command.
struct Footer {
    const char* example; ///< a command line
    const char* text;
};

constexpr Footer audioFooter = {
    "quarner audio --image mix.cue --title \"Summer mix\" one.mp3 two.m4a",
    translatable(
        "The files become tracks in the order given, those of a playlist (M3U, PLS, XSPF) in its\n"
        "order. Ctrl-C cancels; a disc that was being written is lost, an image is as it was\n"
        "before.\n")};
constexpr Footer dataFooter = {
    "quarner data --image mix.iso --title \"Summer mix\" one.mp3 two.m4a",
    translatable(
        "The files are stored unchanged in one folder of the disc, those of a playlist (M3U, PLS,\n"
        "XSPF) too. Ctrl-C cancels; a disc that was being written is lost, an image is as it was\n"
        "before.\n")};
constexpr Footer drivesFooter = {
    "quarner drives --json",
    translatable("Without drives the list is empty and the exit status is 0.\n")};
constexpr Footer discFooter = {
    "quarner disc --image mix.cue",
    translatable(
        "Exit status: 0 also for an empty drive, 2 without a drive or with one that cannot be\n"
        "used now.\n")};
constexpr Footer ejectFooter = {
    "quarner eject --drive \"Front drive\"",
    translatable(
        "Exit status: 0 if the disc was ejected, 1 if it was not or there is none, 2 without a\n"
        "drive.\n")};
constexpr Footer watchFooter = {
    "quarner watch --json",
    translatable(
        "Waits, also on a machine without drives, until Ctrl-C (exit status 130) or until its\n"
        "output cannot be written.\n")};

std::string exampleText(const char* example) { return _("Example:") + "\n  " + example + "\n\n"; }

std::string footerText(const Footer& footer) {
    return exampleText(footer.example) + _(footer.text);
}

/// The grammar of the command line, and the place that it fills.
class Grammar {
public:
    Grammar();

    void parse(const std::vector<std::string>& arguments);
    Command command() const;
    Message messageFor(const CLI::ParseError& end) const;

private:
    void addBurn(DiscKind kind, const char* description, const char* image, const Footer& footer);
    void addBurnOptions(CLI::App& command, const std::string& title);
    void addQuery(const char* name, const char* description, const Footer& footer, Query query);
    CLI::App& addCommand(const char* name, const std::string& description);
    void addTarget(CLI::App& command, const std::string& name, const char* image);
    void takeFiles();
    void checkWordsBeforeCommand() const;
    [[noreturn]] void refuseCommand(const std::string& word) const;
    [[noreturn]] void refuseOption(const CLI::App& command, const std::string& option) const;
    const CLI::App* chosen() const;

    CLI::App _app{_("Puts audio files onto a CD, or into the image of one, and verifies it."),
                  "quarner"};
    std::optional<DiscKind> _toBurn;
    bool _json = false;
    bool _verbose = false;
    Target _target;
    BurnOptions _burnOptions;
    std::optional<std::string> _firstFile;
    std::vector<std::string> _filesAfterMark;
    Query _query = Query::Drives;
};

/// A usage error of our own, told like those of the parser.
class UsageError : public CLI::ParseError {
public:
    explicit UsageError(const std::string& text)
        : CLI::ParseError("UsageError", text, CLI::ExitCodes::InvalidError) {}
};

/// A word that has a meaning of its own to the parser, and what stands for it there: no argument of
/// a program holds a NUL.
constexpr std::string_view doublePlus = "++";
constexpr std::string_view maskedPlus("++\0", 3);

std::string problemOfCapacity(const std::string& text) {
    const std::string shown(text == maskedPlus ? doublePlus : text);
    return shown == "74" || shown == "80" ? ""
                                          : _("'{value}' is neither 74 nor 80", {{"value", shown}});
}

std::string listOf(const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words)
        list += (list.empty() ? "" : ", ") + word;
    return list;
}

Grammar::Grammar() {
    translateHelp(_app);
    _app.set_version_flag("--version", "quarner " QUARNER_VERSION,
                          _("Display program version information and exit"));
    _app.require_subcommand(0, 1);
    _app.allow_extras();
    _app.footer(exampleText("quarner audio --image mix.cue one.mp3 two.m4a") +
                _("quarner COMMAND --help describes a command.\n") + _(statusHelp) + _(outputHelp));
    addBurn(DiscKind::Audio,
            translatable("Burn audio files ({types}) and playlists to an audio CD"),
            translatable("FILE.cue and FILE.bin; files of these names are replaced"), audioFooter);
    addBurn(DiscKind::Data,
            translatable("Burn audio files ({types}) and playlists as they are to a data CD"),
            translatable("The image of a disc; a file of this name is replaced"), dataFooter);
    addQuery("drives", translatable("List the drives and what they can do"), drivesFooter,
             Query::Drives);
    addQuery("disc", translatable("Show the disc in a drive"), discFooter, Query::Disc);
    addQuery("eject", translatable("Eject the disc in a drive"), ejectFooter, Query::Eject);
    addQuery("watch", translatable("Report drives and discs as they come and go"), watchFooter,
             Query::Watch);
}

CLI::App& Grammar::addCommand(const char* name, const std::string& description) {
    CLI::App* const command = _app.add_subcommand(name, description);
    command->allow_extras();
    translateHelp(*command);
    return *command;
}

void Grammar::addBurn(DiscKind kind, const char* description, const char* image,
                      const Footer& footer) {
    CLI::App& command = addCommand(
        commandFor(kind), _(description, {{"types", listOf(DiscProject::fileExtensions())}}));
    addTarget(command, std::string("FILE") + extensionFor(kind), image);
    addBurnOptions(command, kind == DiscKind::Audio
                                ? _("Name of the disc (neither an image nor a player shows it)")
                                : _("Name of the disc"));
    command.footer(footerText(footer) + _(statusHelp) + _(outputHelp));
    command.callback([this, kind] { _toBurn = kind; });
}

void Grammar::addBurnOptions(CLI::App& command, const std::string& title) {
    command.add_option("--title", _burnOptions.title, title)->type_name("NAME");
    command
        .add_option("--capacity", _target.capacity, _("Minutes of the image's disc (default 80)"))
        ->type_name("74|80")
        ->check(problemOfCapacity)
        ->needs("--image");
    command.add_flag("--sort", _burnOptions.sort, _("Sort the files by name"));
    command.add_flag("--recursive", _burnOptions.recursive,
                     _("Add the audio files in folders and in their folders"));
    command
        .add_flag("--wait", _burnOptions.wait,
                  _("Wait until there is a disc that can be burnt in the drive"))
        ->excludes("--image");
    command.add_flag("--eject", _burnOptions.eject, _("Eject the disc when it is burnt"))
        ->excludes("--image");
    command.add_flag("--dry-run", _burnOptions.dryRun,
                     _("Do everything up to the burn, write nothing"));
    command.add_flag("--keep-going", _burnOptions.keepGoing,
                     _("Burn the rest when a file is refused"));
    command.add_flag("--yes", _burnOptions.yes,
                     _("Burn to a drive without asking first (it asks only on a terminal, and "
                       "not with --json)"));
    command.add_flag("--verbose", _verbose, _("Show diagnostics"));
    command.add_flag("--json", _json, _("One JSON object a line, for programs"));
    // Only the first: a list would have its brackets taken off. The others are what remains.
    command
        .add_option("FILE...", _firstFile,
                    _("Audio files and playlists; after -- also ones that begin with -"))
        ->type_name(" ");
}

void Grammar::addQuery(const char* name, const char* description, const Footer& footer,
                       Query query) {
    CLI::App& command = addCommand(name, _(description));
    command.add_flag("--json", _json, _("One JSON object a line, for programs"));
    command.footer(footerText(footer) + _(outputHelp));
    command.callback([this, query] { _query = query; });
    addTarget(command, "FILE", translatable("The image of a disc: FILE.cue or FILE.iso"));
}

void Grammar::addTarget(CLI::App& command, const std::string& name, const char* image) {
    CLI::Option* const option =
        command.add_option("--image", _target.image, _(image))->type_name(name);
    command.add_option("--drive", _target.drive, _("The drive, by its name in 'quarner drives'"))
        ->type_name("NAME")
        ->excludes(option);
}

void Grammar::parse(const std::vector<std::string>& arguments) {
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    if (mark != arguments.end())
        _filesAfterMark.assign(mark + 1, arguments.end());
    // The parser takes its arguments from the back.
    std::vector<std::string> words(std::make_reverse_iterator(mark), arguments.rend());
    std::replace(words.begin(), words.end(), doublePlus, maskedPlus);
    _app.parse(std::move(words));
    for (auto* value : {&_target.image, &_target.drive, &_burnOptions.title, &_firstFile})
        if (*value == maskedPlus)
            *value = doublePlus;
    checkWordsBeforeCommand();
    if (chosen() == nullptr)
        throw UsageError(_("no command is given"));
    takeFiles();
    if (_toBurn == DiscKind::Data && !_burnOptions.title)
        throw UsageError(_("a data disc needs a name: --title NAME (an empty one is allowed)"));
}

const CLI::App* Grammar::chosen() const {
    const auto commands = _app.get_subcommands();
    return commands.empty() ? nullptr : commands.front();
}

bool isOption(const std::string& argument) { return argument.size() > 1 && argument[0] == '-'; }

std::vector<std::string> optionsOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

std::string nameOf(const std::string& option) { return option.substr(0, option.find('=')); }

bool contains(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

void Grammar::refuseOption(const CLI::App& command, const std::string& option) const {
    const std::string name = nameOf(option);
    const std::string place = &command == &_app ? "quarner" : "quarner " + command.get_name();
    throw UsageError(_("{option} is not an option of {command}; did you mean {nearest}?",
                       {{"option", name},
                        {"command", place},
                        {"nearest", nearestName(name, optionsOf(command))}}));
}

void Grammar::refuseCommand(const std::string& word) const {
    std::vector<std::string> commands;
    for (const CLI::App* command : _app.get_subcommands({}))
        commands.push_back(command->get_name());
    throw UsageError(_("'{word}' is not a command; did you mean 'quarner {nearest}'?",
                       {{"word", word}, {"nearest", nearestName(word, commands)}}));
}

/// What the parser did not take for itself.
std::vector<std::string> wordsLeftBy(const CLI::App& app) {
    std::vector<std::string> words = app.remaining();
    std::replace(words.begin(), words.end(), maskedPlus, doublePlus);
    return words;
}

/// What stands before the command, or in its place.
void Grammar::checkWordsBeforeCommand() const {
    const std::vector<std::string> words = wordsLeftBy(_app);
    const auto command = std::find_if_not(words.begin(), words.end(), isOption);
    if (command != words.end())
        refuseCommand(*command);
    if (words.empty())
        return;
    const CLI::App* const given = chosen();
    if (given != nullptr && contains(optionsOf(*given), nameOf(words.front())))
        throw UsageError(_("{option} goes after the command: quarner {command} {option}",
                           {{"option", nameOf(words.front())}, {"command", given->get_name()}}));
    refuseOption(given == nullptr ? _app : *given, words.front());
}

void Grammar::takeFiles() {
    std::vector<std::string>& files = _burnOptions.files;
    if (_firstFile)
        files.push_back(*_firstFile);
    for (const std::string& word : wordsLeftBy(*chosen())) {
        if (isOption(word))
            refuseOption(*chosen(), word);
        files.push_back(word);
    }
    files.insert(files.end(), _filesAfterMark.begin(), _filesAfterMark.end());
    if (_toBurn && files.empty())
        throw UsageError(_("no file is given"));
    if (!_toBurn && !files.empty())
        throw UsageError(_("quarner {command} takes no '{file}'",
                           {{"command", chosen()->get_name()}, {"file", files.front()}}));
}

Command Grammar::command() const {
    if (!_toBurn)
        return {_json, _verbose, QueryOptions{_query, _target}};
    BurnOptions options = _burnOptions;
    options.kind = *_toBurn;
    options.target = _target;
    return {_json, _verbose, std::move(options)};
}

std::string withoutLineEnd(std::string text) {
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

/// What the parser says when it ends early: help, the version or an error.
Message Grammar::messageFor(const CLI::ParseError& end) const {
    if (end.get_exit_code() != 0) {
        const std::string command = chosen() == nullptr ? "" : " " + chosen()->get_name();
        return {ExitStatus::Usage,
                safeText(textOf(end)) + "\n" +
                    _("Try: {command}", {{"command", "quarner" + command + " --help"}})};
    }
    std::ostringstream text;
    _app.exit(end, text, text);
    return {ExitStatus::Success, withoutLineEnd(text.str())};
}

} // namespace

std::variant<Command, Message> parseCommandLine(const std::vector<std::string>& arguments) {
    Grammar grammar;
    try {
        grammar.parse(arguments);
        return grammar.command();
    } catch (const CLI::ParseError& end) {
        Message message = grammar.messageFor(end);
        message.json = contains(arguments, "--json");
        return message;
    }
}

} // namespace quarner::cli
