// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzz/Messages.h"

#include <array>

#include "adapters/worker/DriveProtocol.h"
#include "adapters/worker/JolietProtocol.h"
#include "quarner/platform/DRKeys.h"

namespace quarner::fuzz {
namespace {

constexpr int deepest = 3;

// The place of each word is part of the inputs' format: add new ones at the end.
constexpr std::array<const char*, 22> names = {drive::done,          drive::failed,
                                               drive::disc,          drive::alive,
                                               drive::log,           drive::hello.name,
                                               drive::facts.name,    drive::accessProblem.name,
                                               drive::eject.name,    drive::unlock.name,
                                               drive::claim.name,    drive::openSession.name,
                                               drive::write.name,    drive::closeSession.name,
                                               drive::finish.name,   drive::beginVerification.name,
                                               drive::readBack.name, drive::release.name,
                                               drive::reload.name,   drive::stop.name,
                                               joliet::layOut,       "unknown"};

constexpr std::array<const char*, 40> keys = {
    "node",       "sysPath",        "vendor",     "product",      "canWriteCD",
    "state",      "type",           "isErasable", "speeds",       "isOverwritable",
    "usedBlocks", "freeBlocks",     "preGap",     "length",       "tracks",
    "sectorSize", "requestedSpeed", "verify",     "overwrite",    "appendable",
    "error",      "info",           "path",       "sector",       "isNotTaken",
    "version",    "line",           "language",   "translations", "drive",
    "settings",   "plan",           "name",       "first",        "count",
    "bytes",      "blocks",         "headBytes",  "problem",      "disc"};

constexpr std::array<const char*, 3> nodes = {"/dev/sr-none", "/dev/null", ""};

constexpr std::array<const char*, 4> texts = {DRDeviceMediaTypeCDR, DRDeviceMediaTypeCDRW,
                                              "de_DE.UTF-8", "C"};

/// Numbers that mean something are much more frequent than by chance.
std::int64_t numberFrom(Input& input) {
    const int kind = input.byte() % 4;
    if (kind == 0)
        return input.byte();
    if (kind == 1)
        return input.number<std::uint32_t>();
    return kind == 2 ? std::int64_t(0x8002F000U | input.byte()) : input.number<std::int64_t>();
}

std::string textFrom(Input& input) {
    const std::size_t choice = input.byte();
    return choice < texts.size() ? texts[choice] : input.text();
}

Dictionary fieldsFrom(Input& input, int depth);

Value valueFrom(Input& input, int depth);

Array listFrom(Input& input, int depth) {
    const std::size_t count = input.byte() % (depth == 1 ? 256U : 4U);
    return Array(count, valueFrom(input, depth));
}

Value valueFrom(Input& input, int depth) {
    switch (input.byte() % (depth < deepest ? 8 : 5)) {
    case 0:
        return Value();
    case 1:
        return Value(input.byte() % 2 == 1);
    case 2:
        return Value(numberFrom(input));
    case 3:
        return Value(input.number<double>());
    case 4:
        return Value(textFrom(input));
    case 5:
        return Value(listFrom(input, depth + 1));
    default:
        return Value(fieldsFrom(input, depth + 1));
    }
}

Dictionary fieldsFrom(Input& input, int depth) {
    Dictionary fields;
    for (int count = input.byte() % 8; count > 0; --count) {
        const std::size_t key = input.byte() % keys.size();
        if (key == 0)
            fields["node"] = nodes[input.byte() % nodes.size()];
        else
            fields[keys[key]] = valueFrom(input, depth);
    }
    return fields;
}

} // namespace

Dictionary fieldsFrom(Input& input) { return fieldsFrom(input, 0); }

Message messageFrom(Input& input) {
    const char* const name = names[input.byte() % names.size()];
    return {name, fieldsFrom(input)};
}

} // namespace quarner::fuzz
