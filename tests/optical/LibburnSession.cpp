// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/optical/LibburnSession.h"

#include <stdint.h>
#include <stdio.h>
#include <sys/types.h>

#include <libburn/libburn.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <span>
#include <thread>

#include "adapters/drive/WritingThread.h"
#include "quarner/platform/DiscFormat.h"

namespace quarner {
namespace {

using namespace burn;

constexpr int cdSector = audioSectorSize;
constexpr int dataSector = dataBlockSize;

struct FreeDisc {
    void operator()(burn_disc* disc) const { burn_disc_free(disc); }
};
struct FreeSession {
    void operator()(burn_session* session) const { burn_session_free(session); }
};
struct FreeTrack {
    void operator()(burn_track* track) const { burn_track_free(track); }
};
struct FreeOptions {
    void operator()(burn_write_opts* options) const { burn_write_opts_free(options); }
};

/// The part of a track that is not read yet.
struct Rest {
    std::span<const std::byte> bytes;
    WritingThread& reader;
};
Rest& restOf(burn_source* source) { return *static_cast<Rest*>(source->data); }

int readRest(burn_source* source, unsigned char* buffer, int size) {
    Rest& rest = restOf(source);
    rest.reader.touch();
    const std::size_t count = std::min(rest.bytes.size(), static_cast<std::size_t>(size));
    std::memcpy(buffer, rest.bytes.data(), count);
    rest.bytes = rest.bytes.subspan(count);
    return static_cast<int>(count);
}
off_t sizeOfRest(burn_source* source) {
    restOf(source).reader.touch();
    return static_cast<off_t>(restOf(source).bytes.size());
}
int refuseSize(burn_source*, off_t) { return 0; }
void freeRest(burn_source* source) { delete &restOf(source); }

/// A source for libburn, which libburn frees after its last use.
burn_source* sourceOf(const std::vector<std::byte>& content, WritingThread& reader) {
    auto* source = static_cast<burn_source*>(std::calloc(1, sizeof(burn_source)));
    source->refcount = 1;
    source->read = readRest;
    source->get_size = sizeOfRest;
    source->set_size = refuseSize;
    source->free_data = freeRest;
    source->data = new Rest{content, reader};
    return source;
}

std::unique_ptr<burn_track, FreeTrack> trackOf(const LibburnSession::Track& track,
                                               WritingThread& reader) {
    std::unique_ptr<burn_track, FreeTrack> made(burn_track_create());
    constexpr int noPadding = 0;
    burn_track_define_data(made.get(), 0, 0, noPadding, track.isAudio ? BURN_AUDIO : BURN_MODE1);
    if (track.preGap > 0)
        burn_track_set_pregap_size(made.get(), track.preGap, 0);
    burn_source* source = sourceOf(track.content, reader);
    burn_track_set_source(made.get(), source);
    burn_source_free(source);
    return made;
}

} // namespace

class LibburnSession::Library {
public:
    explicit Library(std::string node) {
        burn_initialize();
        std::string never = "NEVER";
        burn_msgs_set_severities(never.data(), never.data(), never.data());
        constexpr int keepTray = 0;
        if (burn_drive_scan_and_grab(&_infos, node.data(), keepTray) > 0)
            drive = _infos[0].drive;
    }
    ~Library() {
        if (drive != nullptr)
            burn_drive_release(drive, 0);
        if (_infos != nullptr)
            burn_drive_info_free(_infos);
        burn_finish();
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    const burn_drive_info& info() const { return _infos[0]; }
    void waitUntilIdle() const {
        while (burn_drive_get_status(drive, nullptr) != BURN_DRIVE_IDLE)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    burn_drive* drive = nullptr;

private:
    burn_drive_info* _infos = nullptr;
};

LibburnSession::LibburnSession(const std::string& node)
    : _library(std::make_unique<Library>(node)) {}
LibburnSession::~LibburnSession() = default;

bool LibburnSession::isGrabbed() const { return _library->drive != nullptr; }
std::string LibburnSession::vendor() const { return _library->info().vendor; }
std::string LibburnSession::product() const { return _library->info().product; }

int LibburnSession::profile() const {
    int number = 0;
    std::array<char, 80> name = {};
    burn_disc_get_profile(_library->drive, &number, name.data());
    return number;
}

bool LibburnSession::isBlank() const {
    return burn_disc_get_status(_library->drive) == BURN_DISC_BLANK;
}
bool LibburnSession::isAppendable() const {
    return burn_disc_get_status(_library->drive) == BURN_DISC_APPENDABLE;
}
bool LibburnSession::isFull() const {
    return burn_disc_get_status(_library->drive) == BURN_DISC_FULL;
}
bool LibburnSession::isErasable() const { return burn_disc_erasable(_library->drive) != 0; }

std::int64_t LibburnSession::freeSectors() const {
    return burn_disc_available_space(_library->drive, nullptr) / dataSector;
}

std::vector<int> LibburnSession::writeSpeeds() const {
    burn_speed_descriptor* list = nullptr;
    std::vector<int> speeds;
    if (burn_drive_get_speedlist(_library->drive, &list) <= 0)
        return speeds;
    for (const burn_speed_descriptor* i = list; i != nullptr; i = i->next)
        if (i->write_speed > 0)
            speeds.push_back(i->write_speed);
    burn_drive_free_speedlist(&list);
    std::sort(speeds.begin(), speeds.end());
    speeds.erase(std::unique(speeds.begin(), speeds.end()), speeds.end());
    return speeds;
}

std::vector<int> LibburnSession::trackStarts() const {
    std::vector<int> starts;
    const std::unique_ptr<burn_disc, FreeDisc> disc(burn_drive_get_disc(_library->drive));
    if (!disc)
        return starts;
    burn_toc_entry entry = {};
    int sessionCount = 0;
    burn_session** sessions = burn_disc_get_sessions(disc.get(), &sessionCount);
    for (int s = 0; s < sessionCount; ++s) {
        int trackCount = 0;
        burn_track** tracks = burn_session_get_tracks(sessions[s], &trackCount);
        for (int t = 0; t < trackCount; ++t) {
            burn_track_get_entry(tracks[t], &entry);
            starts.push_back(burn_msf_to_lba(entry.pmin, entry.psec, entry.pframe));
        }
        burn_session_get_leadout_entry(sessions[s], &entry);
        starts.push_back(burn_msf_to_lba(entry.pmin, entry.psec, entry.pframe));
    }
    return starts;
}

bool LibburnSession::burn(const std::vector<Track>& tracks, bool isAtOnce, bool isMultiSession) {
    const std::unique_ptr<burn_disc, FreeDisc> disc(burn_disc_create());
    const std::unique_ptr<burn_session, FreeSession> session(burn_session_create());
    burn_disc_add_session(disc.get(), session.get(), BURN_POS_END);
    WritingThread thread;
    std::vector<std::unique_ptr<burn_track, FreeTrack>> made;
    for (const Track& track : tracks) {
        made.push_back(trackOf(track, thread));
        burn_session_add_track(session.get(), made.back().get(), BURN_POS_END);
    }
    const std::unique_ptr<burn_write_opts, FreeOptions> options(
        burn_write_opts_new(_library->drive));
    if (isAtOnce)
        burn_write_opts_set_write_type(options.get(), BURN_WRITE_SAO, BURN_BLOCK_SAO);
    else
        burn_write_opts_set_write_type(options.get(), BURN_WRITE_TAO, BURN_BLOCK_MODE1);
    burn_write_opts_set_multi(options.get(), isMultiSession ? 1 : 0);
    burn_disc_write(options.get(), disc.get());
    _library->waitUntilIdle();
    while (thread.isRunning())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return burn_drive_wrote_well(_library->drive) == 1;
}

bool LibburnSession::blank() {
    constexpr int fast = 1;
    burn_disc_erase(_library->drive, fast);
    _library->waitUntilIdle();
    return burn_drive_wrote_well(_library->drive) == 1;
}

void LibburnSession::eject() {
    constexpr int withTray = 1;
    burn_drive_release(_library->drive, withTray);
    _library->drive = nullptr;
}

std::optional<std::vector<std::byte>> LibburnSession::readData(int sector, int count) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(count) * dataSector);
    off_t got = 0;
    burn_read_data(_library->drive, off_t{sector} * dataSector,
                   reinterpret_cast<char*>(bytes.data()), static_cast<off_t>(bytes.size()), &got,
                   1);
    return got == static_cast<off_t>(bytes.size()) ? std::optional(bytes) : std::nullopt;
}

std::optional<std::vector<std::byte>> LibburnSession::readAudio(int sector, int count) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(count) * cdSector);
    off_t got = 0;
    burn_read_audio(_library->drive, sector, reinterpret_cast<char*>(bytes.data()),
                    static_cast<off_t>(bytes.size()), &got, 0);
    return got == static_cast<off_t>(bytes.size()) ? std::optional(bytes) : std::nullopt;
}

} // namespace quarner
