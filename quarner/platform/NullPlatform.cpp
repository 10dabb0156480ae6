// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quarner/platform/NullPlatform.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <thread>

namespace quarner {
namespace {

class NullBurn : public DRBurn {
public:
    void setProperties(Dictionary) override {}
    void writeLayout(DRLayout) override {}
    void abort() override {}
};

class NullNotificationCenter : public DRNotificationCenter {
public:
    void addObserver(const void*, Handler, std::string_view, const DRObject*) override {}
    void removeObserver(const void*, std::string_view, const DRObject*) override {}
};

class NullRecordingService : public RecordingService {
public:
    std::vector<std::shared_ptr<DRDevice>> devices() override { return {}; }
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice>) override {
        return std::make_shared<NullBurn>();
    }
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string&) override { return nullptr; }
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override { return _center; }

private:
    std::shared_ptr<DRNotificationCenter> _center = std::make_shared<NullNotificationCenter>();
};

class NullMediaService : public MediaService {
public:
    std::unique_ptr<QTMovie> movieWithFile(const std::string&) override { return nullptr; }
    std::vector<std::string> movieFileTypes(std::uint32_t) override { return {}; }
};

class NullFileService : public FileService {
public:
    std::string displayName(const std::string& path) override {
        return path.substr(path.find_last_of('/') + 1);
    }
    std::optional<FileAttributes> attributes(const std::string&) override { return std::nullopt; }
    Icon icon(const std::string&) override { return {}; }
    std::optional<std::string> resolveAlias(const std::string&) override { return std::nullopt; }
};

class NullDispatchService : public DispatchService {
public:
    void asyncGlobal(std::function<void()> work) override { std::thread(std::move(work)).detach(); }
    void syncMain(std::function<void()> work) override { work(); }
    void asyncMain(std::function<void()> /*work*/) override {} // there is no main queue
};

class NullTextService : public TextService {
public:
    int compareLocalizedCaseInsensitive(const std::string& a, const std::string& b) override {
        const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
        const auto [left, right] =
            std::mismatch(a.begin(), a.end(), b.begin(), b.end(),
                          [&](char x, char y) { return lower(x) == lower(y); });
        const int leftEnd = left == a.end() ? -1 : lower(*left);
        const int rightEnd = right == b.end() ? -1 : lower(*right);
        return leftEnd - rightEnd;
    }
    std::string localizedNumber(double number, int decimals) override {
        const int length = std::snprintf(nullptr, 0, "%.*f", decimals, number);
        std::string text(static_cast<std::size_t>(length) + 1, '\0');
        std::snprintf(text.data(), text.size(), "%.*f", decimals, number);
        text.pop_back();
        return text;
    }
    std::string localizedString(const std::string& key) override { return key; }
};

class NullLogSink : public LogSink {
public:
    void log(const std::string&) override {}
};

} // namespace

Platform nullPlatform() {
    return {.recording = std::make_shared<NullRecordingService>(),
            .media = std::make_shared<NullMediaService>(),
            .files = std::make_shared<NullFileService>(),
            .dispatch = std::make_shared<NullDispatchService>(),
            .text = std::make_shared<NullTextService>(),
            .log = std::make_shared<NullLogSink>()};
}

} // namespace quarner
