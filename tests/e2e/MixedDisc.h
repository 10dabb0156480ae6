// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/e2e/DiscReaders.h"
#include "tests/support/TemporaryFolder.h"

namespace quarner::testing {

/// A file of the disc.
struct DiscFile {
    std::string path;
    /// The stereo samples at 44.1 kHz of the source; `std::nullopt` if unknown.
    std::optional<std::uint64_t> sourceSamples;
};

/// Files of every kind with every kind of name, burned to an image by the program.
class MixedDisc {
public:
    /// Burns the disc. Throws if that fails.
    MixedDisc();

    /// The files in the order of their tracks.
    const std::vector<DiscFile>& files() const { return _files; }
    std::string cue() const { return _folder.file("mixed disc.cue"); }
    std::string bin() const { return _folder.file("mixed disc.bin"); }
    std::uint64_t usedCapacity() const { return _usedCapacity; }

private:
    void fill();
    void add(const std::string& name, const std::string& content,
             std::optional<std::uint64_t> sourceSamples = {});
    void burn();

    const TemporaryFolder _folder;
    std::vector<DiscFile> _files;
    std::uint64_t _usedCapacity = 0; // seconds
};

} // namespace quarner::testing
