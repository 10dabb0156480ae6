// The smallest host: burns the given audio files to audio-cd.cue. Exits with 0 on success.
#include <glib.h>
#include <iostream>
#include <quarner/desktop.h>
#include <quarner/quarner.h>

namespace {

class AudioCD : public quarner::QuarnDelegate {
public:
    explicit AudioCD(const std::string& drive) : _drive(drive) { _burner->setDelegate(this); }
    int burnFiles(const std::vector<std::string>& paths) {
        if (_burner->addFiles(paths)) // if false, nothing is reported
            g_main_loop_run(_loop.get());
        return _status;
    }

private:
    void addFilesProgressDidEnd(const quarner::EndReport& report) override {
        for (const auto& [reason, paths] : report)
            for (const std::string& path : paths)
                std::cerr << path << ": " << reason << '\n';
        // Called on the thread that adds the files. Burn on the main thread.
        g_idle_add_once([](void* self) { static_cast<AudioCD*>(self)->burn(); }, this);
    }

    void burn() {
        if (_burner->isContentBlank() || _burner->isContentOverflowForDevice(_drive))
            quit(1);
        else
            _burner->burnWithDevice(_drive, std::nullopt);
    }

    void burnProgressIsOpeningTrack(std::int64_t track, std::int64_t of) override {
        std::cout << "Track " << track << " of " << of << std::endl;
    }
    void burnProgressDidDone() override { quit(0); }
    void burnProgressDidCanceled() override { quit(1); }
    void burnProgressDidError(const quarner::BurnError& /*error*/) override { quit(1); }

    void quit(int status) {
        _status = status;
        g_main_loop_quit(_loop.get());
    }

    quarner::QuarnerDevice _drive;
    std::shared_ptr<quarner::Quarner> _burner = quarner::Quarner::audioCDBurner();
    std::shared_ptr<GMainLoop> _loop{g_main_loop_new(nullptr, FALSE), g_main_loop_unref};
    int _status = 1;
};

} // namespace

int main(int count, char** arguments) {
    quarner::installDesktopPlatform();
    const std::vector<std::string> files(arguments + 1, arguments + count);
    return AudioCD(quarner::addImageDrive({.path = "audio-cd.cue"})).burnFiles(files);
}
