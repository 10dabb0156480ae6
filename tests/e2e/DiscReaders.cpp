// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/e2e/DiscReaders.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "tests/support/AudioFixtures.h"
#include "tests/support/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {

namespace {

std::string outputOf(const std::vector<std::string>& arguments) {
    const ProgramResult result = runProgram(arguments);
    if (result.status != 0)
        throw std::runtime_error(arguments.front() + " failed: " + result.output);
    return result.output;
}

/// A command for programs that look for the BIN of a CUE sheet in the working directory.
std::vector<std::string> besideFile(const std::string& cue, std::vector<std::string> command) {
    const std::filesystem::path path(cue);
    command.insert(command.begin(), {"env", "-C", path.parent_path().string()});
    command.push_back(path.filename().string());
    return command;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// The numbers in all lines that match a pattern of `sscanf`.
std::vector<std::uint64_t> numbersIn(const std::string& text, const char* pattern) {
    std::vector<std::uint64_t> numbers;
    for (const std::string& line : linesOf(text)) {
        unsigned number = 0;
        if (std::sscanf(line.c_str(), pattern, &number) == 1)
            numbers.push_back(number);
    }
    return numbers;
}

std::vector<std::int16_t> soundOfWave(const std::string& path) {
    constexpr std::size_t headerSize = 44;
    const std::string content = contentOf(path);
    std::vector<std::int16_t> values((content.size() - headerSize) / sizeof(std::int16_t));
    std::memcpy(values.data(), content.data() + headerSize, values.size() * sizeof(std::int16_t));
    return values;
}

} // namespace

std::vector<std::uint64_t> startsByCdInfo(const std::string& cue) {
    const std::string output = outputOf({"cd-info", "--no-cddb", "--cue-file=" + cue});
    return numbersIn(output, " %*u: %*u:%*u:%*u %u");
}

std::vector<TrackPlace> placesByCdrdao(const std::string& cue) {
    const std::string output = outputOf(besideFile(cue, {"cdrdao", "show-toc"}));
    const std::vector<std::uint64_t> starts = numbersIn(output, " START %*[0-9:]( %u");
    const std::vector<std::uint64_t> ends = numbersIn(output, " END %*[0-9:]( %u");
    std::vector<TrackPlace> places;
    for (std::size_t i = 0; i < std::min(starts.size(), ends.size()); ++i)
        places.push_back({starts[i], ends[i]});
    return places;
}

std::vector<std::uint64_t> sectorsByLibburn(const std::string& cue) {
    return numbersIn(outputOf(besideFile(cue, {LIBBURN_READS})), "%u");
}

std::vector<std::vector<std::int16_t>> soundByBchunk(const std::string& cue,
                                                     const std::string& bin) {
    const TemporaryFolder folder;
    outputOf({"bchunk", "-w", bin, cue, folder.file("track")});
    std::vector<std::string> waves;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        waves.push_back(entry.path().string());
    std::sort(waves.begin(), waves.end());
    std::vector<std::vector<std::int16_t>> sounds;
    for (const std::string& wave : waves)
        sounds.push_back(soundOfWave(wave));
    return sounds;
}

} // namespace quarner::testing
