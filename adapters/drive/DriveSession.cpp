// SPDX-License-Identifier: LGPL-2.1-or-later
#include "adapters/drive/DriveSession.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "adapters/drive/AccessProblem.h"
#include "adapters/drive/DiscReader.h"
#include "adapters/drive/DiscRefusal.h"
#include "adapters/drive/DriveNode.h"
#include "adapters/drive/FailureCause.h"
#include "adapters/drive/GrabbedDrive.h"
#include "adapters/drive/LifeSigns.h"
#include "adapters/drive/StreamBuffer.h"
#include "adapters/worker/DriveProtocol.h"

namespace quarner {
namespace {

/// The timeout for a drive that another program has open. The system itself opens a drive for a
/// moment after each event.
constexpr std::chrono::milliseconds queryTimeout{500};
constexpr std::chrono::milliseconds burnTimeout{3000};

/// The time that a burn waits for a new disc to become ready.
constexpr std::chrono::seconds loadingTimeout{30};

constexpr std::size_t sectorsAtOnce = 32;
constexpr std::chrono::milliseconds checkInterval{50};

} // namespace

DriveSession::DriveSession(const Channel& channel, std::shared_ptr<StopSignal> stop)
    : _channel(channel), _stop(std::move(stop)) {}

DriveSession::~DriveSession() = default;

Dictionary DriveSession::execute(const Message& request) {
    using Handler = Dictionary (DriveSession::*)(const Dictionary&);
    static constexpr std::pair<std::string_view, Handler> handlers[] = {
        {drive::facts.name, &DriveSession::facts},
        {drive::accessProblem.name, &DriveSession::accessProblem},
        {drive::eject.name, &DriveSession::eject},
        {drive::unlock.name, &DriveSession::unlock},
        {drive::claim.name, &DriveSession::claim},
        {drive::openSession.name, &DriveSession::openSession},
        {drive::write.name, &DriveSession::write},
        {drive::closeSession.name, &DriveSession::closeSession},
        {drive::finish.name, &DriveSession::finish},
        {drive::beginVerification.name, &DriveSession::beginVerification},
        {drive::readBack.name, &DriveSession::readBack},
        {drive::release.name, &DriveSession::release},
        {drive::reload.name, &DriveSession::reload},
    };
    for (const auto& [name, handler] : handlers)
        if (name == request.name)
            return (this->*handler)(request.fields);
    throw BurnFailure(DRError::Internal, "unknown request");
}

Dictionary DriveSession::facts(const Dictionary& fields) {
    DiscFacts disc;
    bool isTransient = false;
    try {
        const GrabbedDrive drive(driveRecordOf(fields), {queryTimeout, {}}, _stop.get());
        disc = readDiscFacts(drive);
        isTransient = disc.state == DiscFacts::State::NotReady;
    } catch (const DiscIsLoading&) {
        disc.state = DiscFacts::State::NotReady;
        isTransient = true;
    }
    return {{"disc", fieldsOf(disc)}, {"isTransient", isTransient}};
}

Dictionary DriveSession::accessProblem(const Dictionary& fields) {
    return {{"problem", quarner::accessProblem(textFor(fields, "node")).value_or("")}};
}

Dictionary DriveSession::eject(const Dictionary& fields) {
    return {{"isOut", DriveNode(textFor(fields, "node"), queryTimeout, nullptr).openTray()}};
}

Dictionary DriveSession::unlock(const Dictionary& fields) {
    unlockTray(textFor(fields, "node"));
    return {};
}

Dictionary DriveSession::claim(const Dictionary& fields) {
    if (_writer)
        throw BurnFailure(DRError::DeviceBusy, "the drive is burning");
    const DriveRecord record = driveRecordOf(dictionaryFor(fields, "drive"));
    const BurnSettings settings = burnSettingsOf(dictionaryFor(fields, "settings"));
    _plan = discPlanOf(dictionaryFor(fields, "plan"));
    _node = record.node;
    auto drive = std::make_unique<GrabbedDrive>(record, DriveTimeouts{burnTimeout, loadingTimeout},
                                                _stop.get());
    const DiscFacts disc = readDiscFacts(*drive);
    _channel.send({drive::disc, fieldsOf(disc)});
    _stop->throwIfRequested();
    if (const std::optional<BurnFailure> failure = refusalOf(disc, _plan, settings))
        throw BurnFailure(causeBehind(failure->error(), *drive, record, *_stop),
                          textFor(fields, "name") + ": " + failure->info());
    _reload.emplace(record, _plan);
    _step = Step::Claim;
    _writer = std::make_unique<OpticalWriter>(std::move(drive), record, settings,
                                              disc.state != DiscFacts::State::Blank, _stop);
    return {};
}

OpticalWriter& DriveSession::writer() {
    if (!_writer)
        throw BurnFailure(DRError::Internal, "no burn has begun");
    return *_writer;
}

/// libburn is not asked for anything that it has not been prepared for.
void DriveSession::perform(Step step, const std::function<void(OpticalWriter&)>& act) {
    OpticalWriter& target = writer();
    if (int(step) != int(_step) + 1)
        throw BurnFailure(DRError::Internal, "this is not the next step of a burn");
    _step = Step::Failed;
    act(target);
    _step = step;
}

Dictionary DriveSession::openSession(const Dictionary&) {
    const LifeSigns signs(_channel, _node);
    perform(Step::OpenSession, [this](auto& target) { target.openSession(_plan); });
    return {};
}

Dictionary DriveSession::write(const Dictionary&) {
    perform(Step::Write, [this](auto& target) { writeAll(target); });
    return {};
}

void DriveSession::writeAll(OpticalWriter& target) {
    StreamBuffer stream(_channel, _plan.bytes(), *_stop);
    _buffer.resize(sectorsAtOnce * _plan.sectorSize);
    for (std::uint64_t left = _plan.bytes(); left > 0;) {
        const auto part =
            std::span(_buffer).first(std::size_t(std::min<std::uint64_t>(left, _buffer.size())));
        stream.take(part);
        target.write(part);
        left -= part.size();
    }
}

Dictionary DriveSession::closeSession(const Dictionary&) {
    perform(Step::CloseSession, [](auto& target) { target.closeSession(); });
    return {};
}

Dictionary DriveSession::finish(const Dictionary&) {
    const LifeSigns signs(_channel, _node);
    perform(Step::Finish, [](auto& target) { target.finish(); });
    return {};
}

Dictionary DriveSession::beginVerification(const Dictionary&) {
    perform(Step::BeginVerification, [](auto& target) { target.beginVerification(); });
    return {};
}

Dictionary DriveSession::readBack(const Dictionary& fields) {
    const std::uint64_t first = valueFor(fields, "first").asUInt64();
    const std::uint64_t count = valueFor(fields, "count").asUInt64();
    OpticalWriter& target = writer();
    if (_step != Step::BeginVerification || count > drive::mostSectorsRead ||
        first > _plan.sectors() || count > _plan.sectors() - first)
        throw BurnFailure(DRError::Internal, "no such sectors");
    _buffer.resize(std::size_t(count) * _plan.sectorSize);
    target.readBack(first, _buffer);
    _readBytes = _buffer.size();
    return {};
}

void DriveSession::afterReply() {
    std::span<const std::byte> left = std::span(_buffer).first(std::exchange(_readBytes, 0));
    while (!left.empty() && !_stop->reason()) // after a stop nobody takes them
        if (_channel.give(left, Channel::Clock::now() + checkInterval) == Channel::Result::Closed)
            return;
}

Dictionary DriveSession::release(const Dictionary&) {
    const LifeSigns signs(_channel, _node);
    _writer.reset();
    return {};
}

Dictionary DriveSession::reload(const Dictionary&) {
    if (_writer || !_reload)
        throw BurnFailure(DRError::Internal, "nothing was written");
    const bool isSupported = _reload->perform() != DiscReload::Result::NotSupported;
    return {{"isSupported", isSupported}};
}

} // namespace quarner
