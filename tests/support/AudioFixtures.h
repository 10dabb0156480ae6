// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarner::testing {

/// A sound to encode: noise over a rising tone. It is the same in every run, and differs from
/// itself at any offset.
struct AudioRecipe {
    std::string name;                 ///< of the file; its extension names the container
    std::vector<std::string> encoder; ///< options of the ffmpeg program
    std::uint32_t rate = 44100;
    std::uint32_t channels = 2;
    std::uint64_t samples = 441441; ///< per channel
    bool hasCover = false;          ///< with a picture

    std::uint64_t samplesAtDiscRate() const { return samples * 44100 / rate; }
};

/// Recipes for the usual encoders. Only the sound is left to choose.
AudioRecipe mp3Recipe();         ///< constant bit rate, with an encoder tag
AudioRecipe variableMP3Recipe(); ///< variable bit rate, with an encoder tag
AudioRecipe untaggedMP3Recipe(); ///< constant bit rate, nothing but frames
AudioRecipe untaggedVBRRecipe(); ///< variable bit rate, nothing but frames
AudioRecipe aacRecipe();
AudioRecipe alacRecipe();

/// Returns the path of the encoded file. The first call makes it, and it is kept with the build;
/// several processes may call at the same time. The file must not be changed. Throws if ffmpeg
/// fails.
std::string audioFixture(const AudioRecipe& recipe);

/// Returns the file as the ffmpeg program decodes it: 44.1 kHz, 16 bits, stereo, left first.
std::vector<std::int16_t> decodedByFFmpeg(const std::string& path);

std::string contentOf(const std::string& path);
void writeContent(const std::string& path, const std::string& content);

/// Returns the largest difference between two runs of samples, up to the end of the shorter one.
int largestDifference(const std::vector<std::int16_t>& one, const std::vector<std::int16_t>& other,
                      std::size_t from = 0);

} // namespace quarner::testing
