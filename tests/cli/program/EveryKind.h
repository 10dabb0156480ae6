// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "quarner/platform/DiscFormat.h"
#include "tests/cli/program/HostFixture.h"
#include "tools/quarner/options/DiscKind.h"

namespace quarner::testing {

/// A test of the whole program for every kind of disc that it burns.
class EveryKind : public HostFixture, public ::testing::WithParamInterface<cli::DiscKind> {
protected:
    bool isData() const { return GetParam() == cli::DiscKind::Data; }

    /// The command line that burns to an image with a title; the rest of it follows.
    std::vector<std::string> commandLine(const std::vector<std::string>& rest,
                                         const std::string& below = "") const {
        std::vector<std::string> all = {cli::commandFor(GetParam()), "--title", "T", "--image",
                                        below +
                                            (std::string("mix") + cli::extensionFor(GetParam()))};
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    }
    HostEnd burn(const std::vector<std::string>& rest, const HostSettings& settings = {}) const {
        return run(commandLine(rest), settings);
    }

    /// An M4A file of which an image takes at least `bytes` bytes.
    void largeSong(const std::string& name, std::uint32_t bytes) const {
        if (isData())
            paddedSong(name, bytes);
        else
            song(name, bytes / (75 * audioSectorSize) + 1);
    }

    /// The files of an image of this kind, sorted; the first holds the content.
    std::vector<std::string> imageFiles() const {
        return isData() ? std::vector<std::string>{"mix.iso"}
                        : std::vector<std::string>{"mix.bin", "mix.cue"};
    }
    /// The names in a folder that was empty, with those of an image.
    std::vector<std::string> withImage(std::vector<std::string> others) const {
        for (const std::string& name : imageFiles())
            others.push_back(name);
        std::sort(others.begin(), others.end());
        return others;
    }
};

inline std::string kindName(const ::testing::TestParamInfo<cli::DiscKind>& suite) {
    return cli::commandFor(suite.param);
}

} // namespace quarner::testing
