// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quarner {

/// A new, empty folder for one test. It is removed with its content.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "quarner-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder: " + name);
        _path = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }

    /// Returns the path of a name in this folder, whether or not the file exists.
    std::string file(std::string_view name) const { return (_path / name).string(); }

    /// Writes a file and returns its path.
    std::string write(std::string_view name, std::string_view content = {}) const {
        const std::string path = file(name);
        std::ofstream out(path, std::ios::binary);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
        if (!out.flush())
            throw std::runtime_error("cannot write " + path);
        return path;
    }

private:
    std::filesystem::path _path;
};

} // namespace quarner
