// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Gives every file of the folders named on the command line to a target, without a fuzzer: the
// regression inputs run with every compiler and under every sanitizer.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Target.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> filesIn(const char* folder) {
    std::vector<std::string> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::vector<std::uint8_t> bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void replay(const std::string& path) {
    std::printf("%s\n", path.c_str());
    std::fflush(stdout); // the last line names the input that ended the program
    const std::vector<std::uint8_t> bytes = bytesOf(path);
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace

int main(int count, char** arguments) {
    std::size_t inputs = 0;
    for (int i = 1; i < count; ++i)
        for (const std::string& path : filesIn(arguments[i])) {
            replay(path);
            ++inputs;
        }
    if (inputs == 0)
        std::fprintf(stderr, "There is no input to replay.\n");
    return inputs == 0 ? 1 : 0;
}
