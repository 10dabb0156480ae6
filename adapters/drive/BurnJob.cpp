// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/BurnJob.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <new>
#include <string>
#include <thread>

#include "adapters/drive/BurnLibrary.h"
#include "adapters/drive/Libburn.h"
#include "adapters/engine/BurnFailure.h"
#include "quarner/platform/DRTrack.h"

namespace quarner {
namespace {

constexpr std::chrono::milliseconds pollInterval{10};
constexpr int looksPerDiscQuestion = 20;

struct SessionRelease {
    void operator()(burn::burn_session* session) const { burn::burn_session_free(session); }
};
struct TrackRelease {
    void operator()(burn::burn_track* track) const { burn::burn_track_free(track); }
};
struct SourceRelease {
    void operator()(burn::burn_source* source) const { burn::burn_source_free(source); }
};
struct OptionsRelease {
    void operator()(burn::burn_write_opts* options) const { burn::burn_write_opts_free(options); }
};
using SessionPart = std::unique_ptr<burn::burn_session, SessionRelease>;
using Track = std::unique_ptr<burn::burn_track, TrackRelease>;
using Source = std::unique_ptr<burn::burn_source, SourceRelease>;
using Options = std::unique_ptr<burn::burn_write_opts, OptionsRelease>;

/// The part of the pipe with the data of one track.
struct Feed {
    SectorPipe& pipe;
    WritingThread& thread;
    const off_t size;
    off_t left;
};

Feed& feedOf(burn::burn_source* source) { return *static_cast<Feed*>(source->data); }

// The library calls these functions on its own thread. It signals the end of its work only by an
// unlocked flag. `WritingThread::touch` detects the end of the thread, after which the feed may be
// freed.

int readFeed(burn::burn_source* source, unsigned char* buffer, int size) {
    Feed& feed = feedOf(source);
    feed.thread.touch();
    const std::size_t wanted = std::size_t(std::min<off_t>(size, feed.left));
    const std::size_t count = feed.pipe.take({reinterpret_cast<std::byte*>(buffer), wanted});
    feed.left -= off_t(count);
    return count < wanted ? -1 : int(count);
}

off_t sizeOfFeed(burn::burn_source* source) {
    feedOf(source).thread.touch();
    return feedOf(source).size;
}

int setSizeOfFeed(burn::burn_source*, off_t) { return 1; }
void freeFeed(burn::burn_source* source) { delete &feedOf(source); }
int cancelFeed(burn::burn_source*) { return 1; }

template <typename Pointer>
Pointer made(Pointer pointer) {
    if (!pointer)
        throw std::bad_alloc();
    return pointer;
}

Source makeSource(SectorPipe& pipe, WritingThread& thread, off_t size) {
    auto feed = std::make_unique<Feed>(Feed{pipe, thread, size, size});
    // The library frees it with the C library's function.
    auto* const source =
        made(static_cast<burn::burn_source*>(std::calloc(1, sizeof(burn::burn_source))));
    source->refcount = 1;
    source->version = 1;
    source->read_xt = readFeed;
    source->get_size = sizeOfFeed;
    source->set_size = setSizeOfFeed;
    source->free_data = freeFeed;
    source->cancel = cancelFeed;
    source->data = feed.release();
    return Source(source);
}

Track makeTrack(const DiscPlan& plan, std::size_t index, SectorPipe& pipe, WritingThread& thread) {
    const TrackPlan& planned = plan.tracks[index];
    Track track = made(Track(burn::burn_track_create()));
    const int mode = plan.sectorSize == audioSectorSize ? BURN_AUDIO : BURN_MODE1;
    // The library announces the minimum length of a CD track, but does not pad the track itself.
    const std::uint32_t tail = std::max(planned.length, DRTrack::minimumSectors) - planned.length;
    burn::burn_track_define_data(track.get(), 0, int(tail * plan.sectorSize), 1, mode);
    const Source source = makeSource(pipe, thread, off_t(planned.length) * plan.sectorSize);
    if (burn::burn_track_set_source(track.get(), source.get()) != burn::BURN_SOURCE_OK)
        throw BurnFailure(DRError::Internal, "libburn takes no track from here");
    const std::uint32_t gap = planned.preGap + (index == 0 ? leadingGapSectors : 0);
    burn::burn_track_set_pregap_size(track.get(), gap > 0 ? int(gap) : -1, 0);
    return track;
}

BurnDisc makeDisc(const DiscPlan& plan, SectorPipe& pipe, WritingThread& thread) {
    BurnDisc disc = made(BurnDisc(burn::burn_disc_create()));
    const SessionPart session = made(SessionPart(burn::burn_session_create()));
    if (burn::burn_disc_add_session(disc.get(), session.get(), BURN_POS_END) == 0)
        throw std::bad_alloc();
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        const Track track = makeTrack(plan, i, pipe, thread);
        if (burn::burn_session_add_track(session.get(), track.get(), BURN_POS_END) == 0)
            throw std::bad_alloc();
    }
    return disc;
}

Options makeOptions(burn::burn_drive* drive, const BurnSettings& settings) {
    Options options = made(Options(burn::burn_write_opts_new(drive)));
    burn::burn_write_opts_set_write_type(options.get(), burn::BURN_WRITE_SAO, burn::BURN_BLOCK_SAO);
    burn::burn_write_opts_set_multi(options.get(), settings.appendable ? 1 : 0);
    burn::burn_write_opts_set_underrun_proof(options.get(), 1);
    return options;
}

bool isIdle(burn::burn_drive* drive) {
    return burn::burn_drive_get_status(drive, nullptr) == burn::BURN_DRIVE_IDLE;
}

} // namespace

class BurnJob::Session {
public:
    Session(burn::burn_drive* drive, const DiscPlan& plan, const BurnSettings& settings,
            SectorPipe& pipe, WritingThread& thread)
        : _disc(makeDisc(plan, pipe, thread)), _options(makeOptions(drive, settings)) {}

    std::optional<std::string> refusal() const {
        std::array<char, BURN_REASONS_LEN> reasons = {};
        const int result =
            burn::burn_precheck_write(_options.get(), _disc.get(), reasons.data(), 0);
        return result == 1 ? std::nullopt : std::optional<std::string>(reasons.data());
    }

    void start() { burn::burn_disc_write(_options.get(), _disc.get()); }

private:
    const BurnDisc _disc;
    const Options _options;
};

BurnJob::BurnJob(const GrabbedDrive& drive, const DiscPlan& plan, const BurnSettings& settings,
                 SectorPipe& pipe)
    : _drive(drive.handle()), _pipe(pipe),
      _session(std::make_unique<Session>(_drive, plan, settings, pipe, _thread)) {}

BurnJob::~BurnJob() {
    // Repeated, because a job that is just being started forgets the cancel. Before the pipe is
    // closed, because the library pads a short source with silence.
    while (isRunning()) {
        burn::burn_drive_cancel(_drive);
        _pipe.close();
        std::this_thread::sleep_for(pollInterval);
    }
    _pipe.close();
    BurnLibrary::shared().logMessages();
}

std::optional<std::string> BurnJob::refusal() const { return _session->refusal(); }

void BurnJob::start() { _session->start(); }

bool BurnJob::isWriting() const {
    switch (burn::burn_drive_get_status(_drive, nullptr)) {
    case burn::BURN_DRIVE_SPAWNING:
    case burn::BURN_DRIVE_WRITING_LEADIN:
    case burn::BURN_DRIVE_WRITING_PREGAP:
    case burn::BURN_DRIVE_WRITING:
        return true;
    default:
        return false;
    }
}

bool BurnJob::isRunning() const { return !isIdle(_drive) || _thread.isRunning(); }

bool BurnJob::wroteWell() const { return burn::burn_drive_wrote_well(_drive) == 1; }

std::optional<DRError> blankDisc(GrabbedDrive& grabbed) {
    burn::burn_drive* const drive = grabbed.handle();
    burn::burn_disc_pretend_full(drive); // an interrupted disc would count as unsuitable
    burn::burn_disc_erase(drive, 1);
    for (int look = 1; !isIdle(drive); ++look) {
        if (look % looksPerDiscQuestion == 0 && !grabbed.hasDisc()) {
            grabbed.abandon(); // the library waits for ever for the end of the blanking
            return DRError::MediaNotPresent;
        }
        BurnLibrary::shared().logMessages();
        std::this_thread::sleep_for(pollInterval);
    }
    const bool isWell = burn::burn_drive_wrote_well(drive) == 1;
    burn::burn_drive_re_assess(drive, 0);
    const bool isBlank = isWell && burn::burn_disc_get_status(drive) == burn::BURN_DISC_BLANK;
    return isBlank ? std::nullopt : std::optional(DRError::WriteFailed);
}

void setSpeeds(const GrabbedDrive& drive, std::optional<double> blocksPerSecond) {
    // Thousands of bytes per second, rounded up; 0 is the fastest.
    const double thousands = blocksPerSecond.value_or(0.0) * audioSectorSize / 1000.0;
    burn::burn_drive_set_speed(drive.handle(), 0, int(std::ceil(std::min(thousands, 1e6))));
}

} // namespace quarner
