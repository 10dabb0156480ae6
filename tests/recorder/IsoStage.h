// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <memory>
#include <span>
#include <utility>

#include "adapters/joliet/JolietDiscs.h"
#include "quarner/platform/DiscFormat.h"
#include "tests/recorder/DataStage.h"
#include "tests/recorder/ImageStage.h"

namespace quarner {

/// Joliet discs that tell when they are being read.
class WatchedDiscs : public DataDiscService {
public:
    /// Called on the reading thread with the bytes read so far and those of the whole disc.
    using ReadHook = std::function<void(std::uint64_t, std::uint64_t)>;
    void setReadHook(ReadHook hook) { _hook = std::move(hook); }

    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override {
        return _discs->trackForRootFolder(std::move(folder));
    }
    DiscContent contentOf(const DRTrack& track, const StopSignal& stop) override {
        DiscContent content = _discs->contentOf(track, stop);
        for (auto& source : content.sources)
            source = std::make_unique<Source>(std::move(source), content.plan.bytes(), _hook);
        return content;
    }

private:
    class Source : public TrackSource {
    public:
        Source(std::unique_ptr<TrackSource> source, std::uint64_t size, ReadHook hook)
            : _source(std::move(source)), _size(size), _hook(std::move(hook)) {}
        void check() override { _source->check(); }
        void close() override { _source->close(); }
        void read(std::span<std::byte> buffer) override {
            if (_hook)
                _hook(_read, _size);
            _source->read(buffer);
            _read += buffer.size();
        }

    private:
        const std::unique_ptr<TrackSource> _source;
        const std::uint64_t _size;
        const ReadHook _hook;
        std::uint64_t _read = 0;
    };

    const std::shared_ptr<DataDiscService> _discs = makeJolietDiscs();
    ReadHook _hook;
};

/// Data discs. The image is mix.iso.
class IsoStage : public DataStage<ImageStage> {
public:
    explicit IsoStage(std::shared_ptr<FileSystem> files = posixFileSystem())
        : IsoStage(std::move(files), std::make_shared<WatchedDiscs>()) {}

    std::uint64_t blocksOnDisc() override {
        return std::filesystem::file_size(image()) / blockSize();
    }
    std::vector<std::string> contentsOf(const std::string& isoPath) const override {
        return filesOf(contentOf(isoPath));
    }
    std::vector<std::string> filesOfImage() const override { return {"mix.iso"}; }
    std::string partEnding() const override { return ".iso.part"; }
    std::uint64_t blockSize() const override { return dataBlockSize; }

    void whileReading(const std::string&, std::function<void()> function) override {
        _discs->setReadHook([=](std::uint64_t read, std::uint64_t size) {
            if (read > size / 2)
                function();
        });
    }
    void beforeReading(std::function<void()> function) override {
        _discs->setReadHook([=](std::uint64_t, std::uint64_t) { function(); });
    }

private:
    IsoStage(std::shared_ptr<FileSystem> files, std::shared_ptr<WatchedDiscs> discs)
        : DataStage(".iso", std::move(files), discs), _discs(std::move(discs)) {}

    const std::shared_ptr<WatchedDiscs> _discs;
};

} // namespace quarner
