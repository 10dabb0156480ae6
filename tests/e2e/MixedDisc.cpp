// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/e2e/MixedDisc.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "tests/support/AudioFixtures.h"
#include "tests/support/Program.h"

namespace quarner::testing {

namespace {

AudioRecipe with(AudioRecipe recipe, std::uint32_t rate, std::uint32_t channels,
                 std::uint64_t samples) {
    recipe.rate = rate;
    recipe.channels = channels;
    recipe.samples = samples;
    return recipe;
}

} // namespace

MixedDisc::MixedDisc() {
    fill();
    burn();
}

void MixedDisc::fill() {
    const auto exact = [this](const std::string& name, const AudioRecipe& recipe) {
        add(name, contentOf(audioFixture(recipe)), recipe.samplesAtDiscRate());
    };
    const auto untold = [this](const std::string& name, const AudioRecipe& recipe) {
        add(name, contentOf(audioFixture(recipe)));
    };
    AudioRecipe cover = with(mp3Recipe(), 44100, 2, 100000);
    cover.hasCover = true;
    exact("01 with  spaces.mp3", with(mp3Recipe(), 44100, 2, 441441));
    exact("02 \"quotes' and `more`.mp3", with(variableMP3Recipe(), 48000, 1, 480480));
    untold("03 Grüße.mp3", with(untaggedMP3Recipe(), 22050, 1, 220720));
    untold("04 東京.mp3", with(untaggedVBRRecipe(), 48000, 2, 480480));
    exact("05 🎵.m4a", with(aacRecipe(), 44100, 2, 441441));
    exact("06 invalid \xff\xfe.m4a", with(aacRecipe(), 48000, 2, 480480));
    exact("07 http:x?y#z&%41.m4a", with(aacRecipe(), 22050, 1, 220720));
    exact("08 $(alac)\\.M4A", with(alacRecipe(), 44100, 2, 441441));
    exact("09 -lossless.m4a", with(alacRecipe(), 48000, 1, 480480));
    exact("10 shorter than a track may be.mp3", with(mp3Recipe(), 44100, 2, 44100));
    exact("11 whole sectors.m4a", with(aacRecipe(), 44100, 2, 588 * 400));
    exact("12 cover.Mp3", cover);
    const std::string tagged = contentOf(audioFixture(mp3Recipe()));
    add("13 tag promises more.mp3", tagged.substr(0, tagged.size() * 6 / 10));
    AudioRecipe rest = untaggedMP3Recipe();
    rest.samples = 300000;
    add("14 tag promises less.mp3", tagged + contentOf(audioFixture(rest)));
}

void MixedDisc::add(const std::string& name, const std::string& content,
                    std::optional<std::uint64_t> sourceSamples) {
    _files.push_back({_folder.write(name, content), sourceSamples});
}

void MixedDisc::burn() {
    std::vector<std::string> command = {QUARNER_PROGRAM, "audio", "--json", "--image", cue()};
    for (const DiscFile& file : _files)
        command.push_back(file.path);
    const ProgramResult result = runProgram(command);
    if (result.status != 0)
        throw std::runtime_error("burning failed: " + result.output);
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        const auto event = nlohmann::json::parse(line, nullptr, false);
        if (event.is_object() && event.value("event", "") == "compilation")
            _usedCapacity = event.at("usedCapacity").get<std::uint64_t>();
    }
}

} // namespace quarner::testing
