// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/support/AudioFixtures.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <sstream>
#include <stdexcept>

#include "tests/support/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {

namespace {

namespace fs = std::filesystem;

constexpr const char* soundVersion = "1"; // increase it if the sound below changes

std::vector<std::int16_t> soundOf(const AudioRecipe& recipe) {
    std::vector<std::int16_t> values;
    values.reserve(std::size_t(recipe.samples * recipe.channels));
    std::uint32_t noise = 12345;
    double phase = 0;
    for (std::uint64_t i = 0; i < recipe.samples; ++i) {
        const double seconds = static_cast<double>(i) / recipe.rate;
        phase += 2 * std::numbers::pi * (200 + 50 * std::fmod(seconds, 60.0)) / recipe.rate;
        for (std::uint32_t channel = 0; channel < recipe.channels; ++channel) {
            noise = noise * 1664525 + 1013904223;
            const double hiss = static_cast<double>(noise >> 16) / 65536 - 0.5;
            const double tone = channel == 0 ? std::sin(phase) : std::cos(phase);
            values.push_back(static_cast<std::int16_t>(6000 * tone + 5000 * hiss));
        }
    }
    return values;
}

void run(const std::vector<std::string>& arguments) {
    const ProgramResult result = runProgram(arguments);
    if (result.status != 0)
        throw std::runtime_error(arguments.front() + " failed: " + result.output);
}

std::string writeSound(const AudioRecipe& recipe, const TemporaryFolder& folder) {
    const std::vector<std::int16_t> values = soundOf(recipe);
    std::string bytes(values.size() * sizeof(std::int16_t), '\0');
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return folder.write("sound", bytes);
}

std::string writeCover(const TemporaryFolder& folder) {
    const std::string cover = folder.file("cover.png");
    run({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc=s=300x300", "-frames:v", "1",
         cover});
    return cover;
}

void encode(const AudioRecipe& recipe, const std::string& target) {
    const TemporaryFolder folder;
    std::vector<std::string> command = {"ffmpeg", "-v",
                                        "error",  "-y",
                                        "-f",     "s16le",
                                        "-ar",    std::to_string(recipe.rate),
                                        "-ac",    std::to_string(recipe.channels),
                                        "-i",     writeSound(recipe, folder)};
    if (recipe.hasCover)
        command.insert(command.end(), {"-i", writeCover(folder), "-map", "0:a", "-map", "1:v",
                                       "-c:v", "copy", "-disposition:v", "attached_pic"});
    command.insert(command.end(), recipe.encoder.begin(), recipe.encoder.end());
    const std::string made = folder.file(fs::path(recipe.name).filename().string());
    command.push_back(made);
    run(command);
    fs::copy_file(made, target + ".part", fs::copy_options::overwrite_existing);
    fs::rename(target + ".part", target);
}

/// Returns the folder of a recipe. Each recipe has its own, so that a changed recipe makes a new
/// file.
fs::path folderOf(const AudioRecipe& recipe) {
    std::ostringstream text;
    text << soundVersion << recipe.rate << '/' << recipe.channels << '/' << recipe.samples << '/'
         << recipe.hasCover;
    for (const std::string& option : recipe.encoder)
        text << '/' << option;
    std::ostringstream name;
    name << std::hex << std::hash<std::string>{}(text.str());
    return fs::path(AUDIO_FIXTURES) / name.str();
}

/// Locks a folder against other processes.
class FolderLock {
public:
    explicit FolderLock(const fs::path& folder)
        : _file(open((folder / "lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0666)) {
        if (_file < 0 || flock(_file, LOCK_EX) != 0)
            throw std::runtime_error("cannot lock " + folder.string());
    }
    ~FolderLock() { close(_file); }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    const int _file;
};

AudioRecipe recipeOf(std::string name, std::vector<std::string> encoder) {
    AudioRecipe recipe;
    recipe.name = std::move(name);
    recipe.encoder = std::move(encoder);
    return recipe;
}

} // namespace

AudioRecipe mp3Recipe() { return recipeOf("constant.mp3", {"-c:a", "libmp3lame", "-b:a", "128k"}); }

AudioRecipe variableMP3Recipe() {
    return recipeOf("variable.mp3", {"-c:a", "libmp3lame", "-q:a", "4"});
}

AudioRecipe untaggedMP3Recipe() {
    return recipeOf("untagged.mp3", {"-c:a", "libmp3lame", "-b:a", "128k", "-write_xing", "0",
                                     "-id3v2_version", "0"});
}

AudioRecipe untaggedVBRRecipe() {
    return recipeOf("untagged-variable.mp3",
                    {"-c:a", "libmp3lame", "-q:a", "4", "-write_xing", "0", "-id3v2_version", "0"});
}

AudioRecipe aacRecipe() { return recipeOf("aac.m4a", {"-c:a", "aac", "-b:a", "128k"}); }

AudioRecipe alacRecipe() { return recipeOf("alac.m4a", {"-c:a", "alac"}); }

std::string audioFixture(const AudioRecipe& recipe) {
    const fs::path folder = folderOf(recipe);
    const std::string path = (folder / recipe.name).string();
    fs::create_directories(folder);
    const FolderLock lock(folder);
    if (!fs::exists(path))
        encode(recipe, path);
    return path;
}

std::vector<std::int16_t> decodedByFFmpeg(const std::string& path) {
    const TemporaryFolder folder;
    const std::string pcm = folder.file("pcm");
    run({"ffmpeg", "-v", "quiet", "-i", "file:" + path, "-map", "0:a:0", "-ar", "44100", "-ac", "2",
         "-f", "s16le", pcm});
    const std::string bytes = contentOf(pcm);
    std::vector<std::int16_t> values(bytes.size() / sizeof(std::int16_t));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(std::int16_t));
    return values;
}

std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(in), {}};
}

void writeContent(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!out.flush())
        throw std::runtime_error("cannot write " + path);
}

int largestDifference(const std::vector<std::int16_t>& one, const std::vector<std::int16_t>& other,
                      std::size_t from) {
    int largest = 0;
    for (std::size_t i = from; i < std::min(one.size(), other.size()); ++i)
        largest = std::max(largest, std::abs(one[i] - other[i]));
    return largest;
}

} // namespace quarner::testing
