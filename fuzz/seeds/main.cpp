// SPDX-License-Identifier: LGPL-2.1-or-later
//
// usage: fuzz_seeds FOLDER
//
// Writes the regression inputs of every fuzz target to FOLDER/TARGET, in place of what was there.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "fuzz/seeds/Seeds.h"

namespace quarner::fuzz {

void SeedFolder::put(std::string_view target, std::string_view name, std::string_view bytes) const {
    const std::filesystem::path folder = std::filesystem::path(_path) / target;
    std::filesystem::create_directories(folder);
    std::ofstream file(folder / name, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush())
        throw std::runtime_error("cannot write " + (folder / name).string());
}

} // namespace quarner::fuzz

int main(int count, char** arguments) try {
    using namespace quarner::fuzz;
    if (count != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds FOLDER\n");
        return 2;
    }
    std::filesystem::remove_all(arguments[1]);
    const SeedFolder folder(arguments[1]);
    putTextSeeds(folder);
    putDiscSeeds(folder);
    putStatusSeeds(folder);
    putWorkerSeeds(folder);
    putMpegSeeds(folder);
    putMp4Seeds(folder);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "fuzz_seeds: %s\n", error.what());
    return 1;
}
