// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarner::testing {

/// A sound to be encoded: noise over a rising tone, the same at every run and unlike itself at any
/// offset.
struct AudioRecipe {
    std::string name;                 ///< of the file; its extension names the container
    std::vector<std::string> encoder; ///< options of the ffmpeg program
    std::uint32_t rate = 44100;
    std::uint32_t channels = 2;
    std::uint64_t samples = 441441; ///< per channel
    bool hasCover = false;          ///< with a picture

    std::uint64_t samplesAtDiscRate() const { return samples * 44100 / rate; }
};

/// Recipes for the usual encoders; only the sound remains to be chosen.
AudioRecipe mp3Recipe();         ///< constant bit rate, with an encoder tag
AudioRecipe variableMP3Recipe(); ///< variable bit rate, with an encoder tag
AudioRecipe untaggedMP3Recipe(); ///< constant bit rate, nothing but frames
AudioRecipe untaggedVBRRecipe(); ///< variable bit rate, nothing but frames
AudioRecipe aacRecipe();
AudioRecipe alacRecipe();

/// The path of the encoded file. It is made at the first call and kept with the build; calls from
/// several processes at once are fine. The file must not be changed. Throws when ffmpeg fails.
std::string audioFixture(const AudioRecipe& recipe);

/// What the ffmpeg program decodes a file to: 44.1 kHz, 16 bits, stereo, left first.
std::vector<std::int16_t> decodedByFFmpeg(const std::string& path);

std::string contentOf(const std::string& path);
void writeContent(const std::string& path, const std::string& content);

/// The largest difference between two runs of samples, as far as both reach.
int largestDifference(const std::vector<std::int16_t>& one, const std::vector<std::int16_t>& other,
                      std::size_t from = 0);

} // namespace quarner::testing
