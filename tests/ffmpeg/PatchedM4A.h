// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/AudioFixtures.h"

namespace quarner::testing {

inline std::string bigEndian(std::uint32_t value) {
    std::string bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

inline std::string zeros(std::size_t count) { return std::string(count, '\0'); }

/// A box with a name and a content.
std::string mp4Box(const std::string& name, const std::string& content);

/// An M4A file of a recipe, with other numbers in boxes of it. As the ffmpeg program writes it, it
/// has an edit list, and the box of the tables is the last one.
class PatchedM4A {
public:
    explicit PatchedM4A(const AudioRecipe& recipe) : content(contentOf(audioFixture(recipe))) {}

    /// Writes bytes at `offset`, counted from the first place where `text` stands: the name of a
    /// box, or anything else.
    PatchedM4A& set(const std::string& text, std::size_t offset, const std::string& bytes) {
        const std::size_t start = content.find(text);
        EXPECT_NE(start, std::string::npos) << text;
        if (start != std::string::npos)
            content.replace(start + offset, bytes.size(), bytes);
        return *this;
    }

    /// An edit list in ticks of the media. The duration is in ticks of the movie, at `movieScale`
    /// per second.
    PatchedM4A& setEdit(std::uint32_t mediaTime, std::uint32_t duration,
                        std::uint32_t movieScale = 44100) {
        set("mvhd", 16, bigEndian(movieScale));
        return set("elst", 12, bigEndian(duration)).set("elst", 16, bigEndian(mediaTime));
    }
    /// An edit list of any number of cuts. Each has a start in ticks of the media, or `emptyEdit`,
    /// and a duration as above.
    struct Edit {
        std::uint32_t mediaTime;
        std::uint32_t duration;
    };
    static constexpr std::uint32_t emptyEdit = 0xffffffff;
    PatchedM4A& setEdits(const std::vector<Edit>& edits);
    PatchedM4A& removeEdit() { return set("edts", 0, "free"); }

    /// Declares that the sound has twice the sample rate of its core, as HE-AAC has: a decoder
    /// doubles the samples, and the clock of the track stays that of the core.
    PatchedM4A& declareHighEfficiency(std::uint32_t coreRate) {
        constexpr std::size_t extension = 43; // ISO 14496-3; ends the configuration of the codec
        const unsigned rateIndex = coreRate == 8000 ? 8 : coreRate == 22050 ? 4 : 3;
        return set("esds", extension, std::string(1, static_cast<char>(0x80 | rateIndex << 3)));
    }

    /// Adds a note of the encoder about the samples before and behind the sound.
    PatchedM4A& noteDelay(std::uint32_t delay, std::uint32_t padding);

    /// Adds boxes to the notes: title, lyrics, cover.
    PatchedM4A& addNotes(const std::string& notes);

    /// Adds bytes at the end of the last one of `boxes`. Each one lies in the one before it.
    PatchedM4A& append(const std::vector<std::string>& boxes, const std::string& bytes);

    std::string content;

private:
    std::size_t endOf(const std::string& box) const;
    void grow(const std::vector<std::string>& boxes, std::size_t bytes);
};

} // namespace quarner::testing
