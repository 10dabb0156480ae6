// SPDX-License-Identifier: LGPL-2.1-or-later
#include <csignal>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "tests/cli/program/HostFixture.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsSubsetOf;

const json& schema() {
    static const json parsed = json::parse(contentOf(JSON_SCHEMA));
    return parsed;
}

/// What the schema says of each event, by its name.
std::map<std::string, json> schemaOfEvents() {
    std::map<std::string, json> events;
    for (const json& event : schema().at("oneOf"))
        events[event.at("properties").at("event").at("const")] = event;
    return events;
}

std::set<std::string> keysOf(const json& object) {
    std::set<std::string> keys;
    for (const auto& [key, value] : object.items())
        keys.insert(key);
    return keys;
}

/// The operations of a delegate, as its header declares them.
std::vector<std::string> declaredOperations(const std::string& header) {
    const std::string text = contentOf(std::string(SOURCE_FOLDER) + header);
    const std::regex operation(R"(virtual void (\w+)\()");
    std::vector<std::string> names;
    for (std::sregex_iterator at(text.begin(), text.end(), operation), end; at != end; ++at)
        names.push_back((*at)[1]);
    return names;
}

/// Collects the output of commands for programs.
class ProgramJson : public HostFixture {
protected:
    void keep(const HostEnd& end) { _output += end.out; }

    /// Runs a command to its end and keeps its output.
    void tell(const std::vector<std::string>& arguments, int status,
              const HostSettings& settings = {}) {
        const HostEnd end = run(arguments, settings);
        EXPECT_EQ(end.status, status) << arguments.front() << '\n' << end.err;
        keep(end);
    }

    /// Interrupts a command when it has told something.
    void tellInterrupted(const std::vector<std::string>& arguments, const std::string& text) {
        HostProgram program(arguments, here());
        EXPECT_TRUE(program.waitForOutput(text)) << text;
        program.signal(SIGINT);
        const HostEnd end = program.wait();
        EXPECT_EQ(end.status, 130);
        keep(end);
    }

    void burnImages() {
        song("a.mp3");
        song("b.m4a");
        folder.write("protected.m4p", "x");
        tell({"audio", "--json", "--image", "mix.cue", "a.mp3", "b.m4a"}, 0);
        tell({"data", "--json", "--image", "mix.iso", "--title", "T", "a.mp3", "b.m4a"}, 0);
        tell({"audio", "--json", "--image", "mix.cue", "a.mp3", "protected.m4p", "none.mp3"}, 3);
        HostSettings small;
        small.wrapper = {"prlimit", "--fsize=400000"};
        tell({"audio", "--json", "--image", "other.cue", "a.mp3"}, 1, small);
        paddedSong("large.m4a", 690'000'000);
        tell({"data", "--json", "--image", "mix.iso", "--capacity", "74", "--title", "T",
              "large.m4a"},
             4);
        tell({"audio", "--json", "--imag", "mix.cue", "a.mp3"}, 2);
    }

    void cancelBurns() {
        song("minute.mp3", 60);
        std::vector<std::string> burn = {"audio", "--json", "--image", "mix.cue"};
        burn.insert(burn.end(), 30, "minute.mp3");
        tellInterrupted(burn, R"("burnProgressIsWriteingTrack","track":2)");
        burn.insert(burn.end(), 2000, "minute.mp3");
        tellInterrupted(burn, R"("index":3,)");
    }

    /// A disc that comes late, is written, and not read back; a second one that is ejected.
    void burnDiscs(const std::shared_ptr<EmulatedRecorder>& recorder) {
        song("c.mp3", 20);
        HostProgram program({"audio", "--json", "--wait", "c.mp3"}, here());
        EXPECT_TRUE(program.waitForOutput("waitsFor"));
        recorder->setFaults({.readErrorAt = 100});
        recorder->insert(Medium::blankCDR());
        const HostEnd end = program.wait();
        EXPECT_EQ(end.status, 1);
        keep(end);
        recorder->setFaults({});
        recorder->insert(Medium::blankCDRW());
        tell({"disc", "--json"}, 0);
        tell({"audio", "--json", "--eject", "c.mp3"}, 0);
        tell({"eject", "--json"}, 1);
        tell({"audio", "--json", "--dry-run", "c.mp3"}, 1);
    }

    void watchDrives() {
        HostProgram program({"watch", "--json"}, here());
        EXPECT_TRUE(program.waitForOutput("watching"));
        const auto recorder = machine.plug({.medium = {}});
        EXPECT_TRUE(program.waitForOutput("deviceDidAppeared"));
        recorder->insert(Medium::blankCDRW());
        EXPECT_TRUE(program.waitForOutput("deviceStatusDidChanged"));
        recorder->unplug();
        EXPECT_TRUE(program.waitForOutput("deviceDidDisappeared"));
        program.signal(SIGINT);
        keep(program.wait());
    }

    void askDrives(const EmulatedRecorder& recorder) {
        tell({"drives", "--json"}, 0);
        std::filesystem::remove(machineRoot() / recorder.node().substr(1));
        tell({"drives", "--json"}, 0);
        tell({"eject", "--json"}, 1);
    }

    /// What the schema's validator says against the lines.
    std::string mismatches(const std::string& output) const {
        const std::string file = folder.write("output.json", output);
        const auto check = runProgram({CHECK_JSON, JSON_SCHEMA, file});
        EXPECT_EQ(check.status, check.output.empty() ? 0 : 1);
        return check.output;
    }

    /// The keys with which each event was told.
    std::map<std::string, std::set<std::string>> toldKeys() const {
        std::map<std::string, std::set<std::string>> told;
        for (const std::string& line : lines(_output)) {
            const json object = json::parse(line);
            told[object.at("event")].merge(keysOf(object));
        }
        return told;
    }

    const std::string& output() const { return _output; }

private:
    std::string _output;
};

TEST_F(ProgramJson, EveryLineOfEveryCommandMatchesTheSchemaAndNoneOfItIsUnused) {
    watchDrives();
    const auto recorder = machine.plug({.medium = {}});
    burnDiscs(recorder);
    burnImages();
    cancelBurns();
    askDrives(*recorder);
    EXPECT_EQ(mismatches(output()), "");
    const std::set<std::string> ofEditing = {"allFilesDidCleared", "burnItemDidDelete",
                                             "burnItemsDidDelete", "burnItemDidSorted"};
    const auto told = toldKeys();
    for (const auto& [event, description] : schemaOfEvents())
        if (!ofEditing.contains(event)) {
            ASSERT_TRUE(told.contains(event)) << event;
            EXPECT_EQ(told.at(event), keysOf(description.at("properties"))) << event;
        }
}

TEST_F(ProgramJson, AnUnknownEventOrKeyOrAMissingOneDoesNotMatchTheSchema) {
    EXPECT_EQ(mismatches("{\"event\":\"exit\",\"status\":0}\n"), "");
    for (const char* const line :
         {R"({"event":"exit"})", R"({"event":"exit","status":0,"more":1})",
          R"({"event":"exit","status":"0"})", R"({"event":"other"})", R"({"status":0})", "[]"})
        EXPECT_THAT(mismatches(std::string(line) + "\n"), HasSubstr(line));
}

TEST(JsonSchema, HasEveryOperationOfTheDelegates) {
    std::vector<std::string> events;
    for (const auto& [event, description] : schemaOfEvents())
        events.push_back(event);
    EXPECT_EQ(events.size(), schema().at("oneOf").size()) << "each event once";
    for (const char* const header :
         {"/quarner/front/QuarnDelegate.h", "/quarner/device/QuarnerDeviceDelegate.h"})
        EXPECT_THAT(declaredOperations(header), IsSubsetOf(events)) << header;
}

TEST(JsonSchema, HasNoEventOrKeyThatIsNotDocumented) {
    const std::string text = contentOf(std::string(SOURCE_FOLDER) + "/docs/json.md");
    for (const auto& [event, description] : schemaOfEvents()) {
        const std::size_t row = text.find("\n| `" + event + "` |");
        ASSERT_NE(row, std::string::npos) << event;
        const std::string described = text.substr(row, text.find('\n', row + 1) - row);
        for (const std::string& key : keysOf(description.at("properties")))
            EXPECT_TRUE(key == "event" || described.find("`" + key + "`") != std::string::npos)
                << event << ' ' << key;
    }
    for (const std::string& key : keysOf(schema().at("$defs").at("item").at("properties")))
        EXPECT_THAT(text, HasSubstr("\n| `" + key + "` |"));
    const json refusal = schemaOfEvents().at("fileRefused");
    for (const std::string reason : refusal.at("properties").at("reason").at("enum"))
        EXPECT_THAT(text, HasSubstr("\n| `" + reason + "` |"));
}

} // namespace
} // namespace quarner::testing
