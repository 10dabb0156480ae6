// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "adapters/image/FileSystem.h"

namespace quarner {

/// A file system that forwards every call to another one. A test overrides the call that must fail.
class ForwardingFiles : public FileSystem {
public:
    explicit ForwardingFiles(std::shared_ptr<FileSystem> files = posixFileSystem())
        : _files(std::move(files)) {}

    std::unique_ptr<ImageLock> lock(const std::string& path, const StopSignal& stop) override {
        return _files->lock(path, stop);
    }
    std::unique_ptr<ImageFile> create(const std::string& path,
                                      const std::string& replaced) override {
        return _files->create(path, replaced);
    }
    std::optional<std::string> content(const std::string& path) override {
        return _files->content(path);
    }
    void rename(const std::string& from, const std::string& to) override {
        _files->rename(from, to);
    }
    bool link(const std::string& existing, const std::string& name) override {
        return _files->link(existing, name);
    }
    void remove(const std::string& path) override { _files->remove(path); }
    void syncFolder(const std::string& folder) override { _files->syncFolder(folder); }

private:
    const std::shared_ptr<FileSystem> _files;
};

/// The same for one file.
class ForwardingFile : public ImageFile {
public:
    explicit ForwardingFile(std::unique_ptr<ImageFile> file) : _file(std::move(file)) {}

    void reserve(std::uint64_t size) override { _file->reserve(size); }
    void append(std::span<const std::byte> bytes) override { _file->append(bytes); }
    void sync() override { _file->sync(); }
    void read(std::uint64_t offset, std::span<std::byte> buffer) override {
        _file->read(offset, buffer);
    }

private:
    const std::unique_ptr<ImageFile> _file;
};

} // namespace quarner
