// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cerrno>
#include <map>
#include <numeric>
#include <system_error>

#include "tests/cli/program/EveryKind.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

/// A call that goes wrong: see preload/FailingCalls.cpp.
struct Fault {
    std::string call;
    int number;
    std::string how;
    std::string when;

    std::string text() const {
        return call + ' ' + std::to_string(number) + ' ' + how + ' ' + when;
    }
    /// Whether the program has to get over it.
    bool isHarmless() const { return how == "EINTR" || how == "short"; }
};

/// Whether each call is let go wrong, which takes minutes, or a choice of them.
bool isThorough() { return std::getenv("QUARNER_EVERY_FAULT") != nullptr; }

/// The numbers of the calls to try: all, or the first, the middle and the last.
std::vector<int> numbersUpTo(int count) {
    if (!isThorough())
        return {1, (count + 1) / 2, count};
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

std::vector<std::pair<std::string, std::string>> waysToFail(const std::string& call) {
    std::vector<std::pair<std::string, std::string>> ways = {
        {"EIO", "once"}, {"ENOSPC", "always"}, {"EINTR", "once"}};
    if (call.ends_with("read") || call.ends_with("write"))
        ways.insert(ways.end(), {{"short", "once"}, {"zero", "once"}});
    if (isThorough())
        ways.insert(ways.end(), {{"EIO", "always"}, {"ENOSPC", "once"}});
    if (isThorough() && ways.size() > 5)
        ways.emplace_back("short", "always");
    return ways;
}

/// Each way to fail with each number; without being thorough, each way with one number, in turn.
std::vector<Fault> faultsOf(const std::string& call, int count) {
    const std::vector<int> numbers = numbersUpTo(count);
    const auto ways = waysToFail(call);
    std::vector<Fault> faults;
    for (std::size_t way = 0; way < ways.size(); ++way)
        for (std::size_t number = 0; number < numbers.size(); ++number)
            if (isThorough() || number == way % numbers.size())
                faults.push_back({call, numbers[number], ways[way].first, ways[way].second});
    return faults;
}

/// Burns over an old image while calls of the system fail. The image is the old one or the new one
/// each time, as the exit status says, and the next burn clears away what is left.
class ProgramFaults : public EveryKind {
protected:
    ProgramFaults() {
        for (const char* name : {"images", "songs"})
            makeFolder(name);
        song("songs/old.m4a", 2);
        song("songs/one.mp3", 2);
        song("songs/two.m4a", 2);
        EXPECT_EQ(run(commandLine({"songs/two.m4a", "songs/one.mp3"}, "images/")).status, 0);
        _new = sourcesOnDisc();
        EXPECT_EQ(run(commandLine({"songs/old.m4a"}, "images/")).status, 0);
        for (const std::string& name : names("images"))
            _old[name] = contentOf(inImages(name));
    }

    /// Burns with each fault of the calls that concern paths with this text.
    void burnWithFaultsAt(const std::string& path) {
        for (const auto& [call, count] : callsAt(path))
            for (const Fault& fault : faultsOf(call, count))
                burnWith(fault, path);
    }

    /// The end of a burn under a fault, which leaves the old image.
    HostEnd endUnder(const std::string& fault, const std::vector<std::string>& sources) const {
        const HostEnd end = burnUnder(fault, sources);
        EXPECT_NE(end.status, 0);
        for (const auto& [name, content] : _old)
            EXPECT_TRUE(contentOf(inImages(name)) == content) << name << " is the old one";
        return end;
    }

    int statusUnder(const std::string& fault, const std::vector<std::string>& sources) const {
        return burnUnder(fault, sources).status;
    }

    /// How often a call concerns a path in a burn of these sources.
    int calls(const std::string& call, const std::string& path,
              const std::vector<std::string>& sources) const {
        burnUnder("none 0 EIO once " + path, sources);
        return loggedCalls().at(call);
    }

    /// Interrupts each call that concerns a source which is refused.
    void interruptRefusalOf(const std::string& source) const {
        const std::string refusal = burnUnder("none 0 EIO once " + source, {source}).err;
        for (const auto& [call, count] : loggedCalls())
            for (int number = 1; number <= count; ++number) {
                const Fault fault = {call, number, "EINTR", "once"};
                EXPECT_EQ(burnUnder(fault.text() + ' ' + source, {source}).err, refusal)
                    << fault.text();
            }
    }

    void restoreOldImage() const {
        std::filesystem::remove_all(folder.file("images"));
        makeFolder("images");
        for (const auto& [name, content] : _old)
            writeContent(inImages(name), content);
    }

private:
    std::string inImages(const std::string& name) const { return folder.file("images/" + name); }

    HostEnd burnUnder(const std::string& fault, const std::vector<std::string>& sources = {
                                                    "songs/two.m4a", "songs/one.mp3"}) const {
        HostSettings settings;
        // First: the library of the machine's drives calls the C library past the ones behind it.
        settings.preloads.insert(settings.preloads.begin(), FAILING_CALLS);
        settings.environment.push_back("QUARNER_FAULT=" + fault);
        settings.environment.push_back("QUARNER_FAULT_LOG=" + folder.file("log"));
        std::filesystem::remove(folder.file("log"));
        return run(commandLine(sources, "images/"), settings);
    }

    /// How often the last burn made each call, if none was let go wrong.
    std::map<std::string, int> loggedCalls() const {
        std::map<std::string, int> counts;
        for (const std::string& call : lines(contentOf(folder.file("log"))))
            ++counts[call];
        return counts;
    }

    std::map<std::string, int> callsAt(const std::string& path) const {
        restoreOldImage();
        EXPECT_EQ(burnUnder("none 0 EIO once " + path).status, 0);
        const auto counts = loggedCalls();
        EXPECT_GE(counts.size(), 4U);
        return counts;
    }

    void burnWith(const Fault& fault, const std::string& path) {
        SCOPED_TRACE(fault.text());
        restoreOldImage();
        const HostEnd end = burnUnder(fault.text() + ' ' + path);
        EXPECT_EQ(end.out.find("burnt and verified") != std::string::npos, end.status == 0);
        if (end.status == 0)
            EXPECT_TRUE(sourcesOnDisc() == _new) << "the new image is whole";
        else
            expectOldImage(end, fault, fault.isHarmless());
        if (end.status != 0 || names("images") != imageFiles())
            expectNextBurnToClearUp();
    }

    void expectOldImage(const HostEnd& end, const Fault& fault, bool isHarmless) const {
        EXPECT_FALSE(isHarmless) << end.err;
        EXPECT_THAT(end.status, AnyOf(1, 2, 3)) << end.err;
        for (const auto& [name, content] : _old)
            EXPECT_TRUE(contentOf(inImages(name)) == content) << name << " is the old one";
        EXPECT_THAT(end.err, AnyOf(HasSubstr("images"), HasSubstr("songs/")))
            << "the file is named";
        if (fault.how == "EIO" || fault.how == "ENOSPC") {
            const int number = fault.how == "EIO" ? EIO : ENOSPC;
            const std::string cause = std::generic_category().message(number);
            EXPECT_THAT(end.err, AnyOf(HasSubstr(cause), HasSubstr("songs/"))) << "so is the cause";
        }
    }

    void expectNextBurnToClearUp() const {
        EXPECT_EQ(run(commandLine({"songs/two.m4a", "songs/one.mp3"}, "images/")).status, 0);
        EXPECT_TRUE(sourcesOnDisc() == _new);
        EXPECT_THAT(names("images"), ElementsAreArray(imageFiles()));
    }

    /// What the image holds of the sources: their files, or their sound and where it lies.
    std::string sourcesOnDisc() const {
        if (isData())
            return runProgram({"bsdtar", "-xOf", inImages("mix.iso")}).output;
        std::string sheet = contentOf(inImages("mix.cue"));
        const std::size_t start = sheet.find('"', sheet.find("FILE ")) + 1;
        const std::size_t size = sheet.find('"', start) - start;
        const std::string bin = sheet.substr(start, size);
        return sheet.replace(start, size, "") + contentOf(inImages(bin));
    }

    std::string _new;
    std::map<std::string, std::string> _old;
};

TEST_P(ProgramFaults, OfTheImageLeaveTheOldOneOrTheNewOne) { burnWithFaultsAt("images"); }

TEST_P(ProgramFaults, OfTheSourcesLeaveTheOldImageOrTheNewOne) { burnWithFaultsAt("songs"); }

TEST_P(ProgramFaults, ThatOnlyInterruptACallDoNotChangeWhyASourceIsRefused) {
    writeContent(folder.file("songs/note.txt"), "no sound");
    interruptRefusalOf("songs/note.txt");
    makeFolder("songs/album.mp3");
    interruptRefusalOf("songs/album.mp3");
}

TEST_P(ProgramFaults, WhileASourceIsAddedAreTheReasonForItsRefusal) {
    EXPECT_THAT(endUnder("pread 1 EIO always songs/one.mp3", {"songs/one.mp3"}).err,
                HasSubstr("\"songs/one.mp3\" cannot be read (Input/output error)."));
    EXPECT_THAT(endUnder("pread 2 EIO once songs/two.m4a", {"songs/two.m4a"}).err,
                HasSubstr("\"songs/two.m4a\" cannot be read (Input/output error)."));
    EXPECT_THAT(endUnder("pread 1 zero once songs/one.mp3", {"songs/one.mp3"}).err,
                HasSubstr("\"songs/one.mp3\" cannot be read (unexpected end of the file)."));
}

TEST_P(ProgramFaults, WhileASourceIsBurntAreToldWithTheSource) {
    const std::string call = isData() ? "read" : "pread";
    const int reads = calls(call, "songs/one.mp3", {"songs/one.mp3"});
    restoreOldImage();
    const auto last = call + ' ' + std::to_string(reads);
    const HostEnd end = endUnder(last + " EIO once songs/one.mp3", {"songs/one.mp3"});
    EXPECT_THAT(end.err, HasSubstr("songs/one.mp3: Input/output error\n"));
}

TEST_P(ProgramFaults, NoSourceHasChangedUnlessItsStampHas) {
    const std::string call = isData() ? "read" : "pread";
    const int reads = calls(call, "songs/one.mp3", {"songs/one.mp3"});
    restoreOldImage();
    const auto last = call + ' ' + std::to_string(reads);
    const HostEnd end = endUnder(last + " zero once songs/one.mp3", {"songs/one.mp3"});
    EXPECT_THAT(end.err, HasSubstr("songs/one.mp3: unexpected end of the file\n"));
}

TEST_P(ProgramFaults, NoFileIsReadAgainForTheReasonOfItsRefusalHoweverManyThereAre) {
    makeFolder("junk");
    std::vector<std::string> sources;
    for (int i = 0; i < 600; ++i) {
        sources.push_back("junk/" + std::to_string(1000 + i) + ".mp3");
        writeContent(folder.file(sources.back()), "no sound");
    }
    EXPECT_EQ(calls("pread", "junk/1000.mp3", sources),
              calls("pread", "junk/1000.mp3", {"junk/1000.mp3"}));
}

TEST_P(ProgramFaults, ThatOnlyInterruptAQuestionAboutASourceAreNotNoticed) {
    for (const char* const call : {"faccessat", "getxattr"})
        EXPECT_GT(calls(call, "songs/one.mp3", {"songs/one.mp3"}), 0) << call;
    for (const char* const call : {"faccessat", "getxattr"})
        for (int number = 1; number <= calls(call, "songs/one.mp3", {"songs/one.mp3"}); ++number) {
            const Fault fault = {call, number, "EINTR", "once"};
            EXPECT_EQ(statusUnder(fault.text() + " songs/one.mp3", {"songs/one.mp3"}), 0)
                << fault.text();
        }
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, ProgramFaults,
                         ::testing::Values(cli::DiscKind::Audio, cli::DiscKind::Data), kindName);

} // namespace
} // namespace quarner::testing
