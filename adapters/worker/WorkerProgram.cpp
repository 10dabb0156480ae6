// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/worker/WorkerProgram.h"

#include <fcntl.h>
#include <libintl.h>
#include <locale.h>
#include <signal.h>
#include <sys/socket.h>

#include <string>
#include <utility>

#include "adapters/glib/GlibServices.h"
#include "adapters/worker/DriveProtocol.h"
#include "quarner/platform/Platform.h"

namespace quarner {
namespace {

constexpr char domain[] = "quarner";

bool isSocket(int descriptor, int type) {
    int found = 0;
    socklen_t size = sizeof found;
    return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &found, &size) == 0 && found == type &&
           fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0;
}

class ChannelLog : public LogSink {
public:
    explicit ChannelLog(const Channel& channel) : _channel(channel) {}
    void log(const std::string& line) override {
        _channel.send({drive::log, {{"line", line.substr(0, drive::mostLogBytes)}}});
    }

private:
    const Channel& _channel;
};

std::string orEmpty(const char* text) { return text == nullptr ? "" : text; }

} // namespace

std::optional<Channel> channelOfWorker() {
    if (!isSocket(Channel::messageDescriptor, SOCK_SEQPACKET) ||
        !isSocket(Channel::streamDescriptor, SOCK_STREAM))
        return std::nullopt;
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        signal(number, SIG_IGN);
    return Channel(FileDescriptor(Channel::messageDescriptor),
                   FileDescriptor(Channel::streamDescriptor));
}

Dictionary helloFields() {
    return {{"version", drive::version},
            {"language", orEmpty(setlocale(LC_MESSAGES, nullptr))},
            {"translations", orEmpty(bindtextdomain(domain, nullptr))}};
}

void installWorkerPlatform(const Dictionary& hello, const Channel& channel) {
    setlocale(LC_CTYPE, "C.UTF-8");
    setlocale(LC_MESSAGES, textFor(hello, "language").c_str());
    Platform platform;
    platform.text = makeGlibTextService();
    platform.log = std::make_shared<ChannelLog>(channel);
    installPlatform(std::move(platform));
    if (const std::string& folder = textFor(hello, "translations"); !folder.empty())
        bindtextdomain(domain, folder.c_str());
}

} // namespace quarner
