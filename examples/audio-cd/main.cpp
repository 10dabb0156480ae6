// The smallest host: burns the given audio files to audio-cd.cue. Exits with 0 on success.
#include <glib.h>
#include <iostream>
#include <quarner/desktop.h>
#include <quarner/quarner.h>

namespace {

struct AudioCD : quarner::DiscProjectObserver {
    void fileRefused(const std::string& /*path*/, quarner::RefusalReason /*reason*/,
                     const std::string& text) override {
        std::cerr << text << '\n';
    }
    void addingEnded(bool /*isCanceled*/) override {
        project.burn(project.driveNamed(drive).value_or(0));
    }
    void burnProgress(const quarner::DiscBurnProgress& progress) override {
        std::cout << static_cast<int>(progress.fraction * 100) << "% " << progress.text << '\n';
    }
    void burnEnded(const quarner::DiscBurnEnd& end) override {
        std::cout << end.text << '\n';
        isDone = end.outcome == quarner::DiscBurnEnd::Outcome::Done;
        g_main_loop_quit(loop);
    }
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    const std::string drive = quarner::addImageDrive({.path = "audio-cd.cue"});
    quarner::DiscProject project{quarner::DiscProject::Kind::Audio};
    bool isDone = false;
};
} // namespace

int main(int count, char** arguments) {
    quarner::installDesktopPlatform();
    const auto host = std::make_shared<AudioCD>();
    host->project.addObserver(host);
    host->project.add({arguments + 1, arguments + count});
    g_main_loop_run(host->loop);
    return host->isDone ? 0 : 1;
}
