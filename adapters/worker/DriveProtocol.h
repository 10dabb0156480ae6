// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstdint>

#include "adapters/engine/BurnFailure.h"
#include "adapters/engine/BurnSettings.h"
#include "adapters/engine/DiscPlan.h"
#include "adapters/worker/DiscFacts.h"
#include "adapters/worker/DriveRecord.h"
#include "quarner/platform/Value.h"

namespace quarner {

/// The program that has a drive open, one process for each question or burn.
constexpr char driveProgram[] = "quarner-drive";

/// A request of the library to the program. The program replies with `done` or `failed`, and sends
/// events in between.
struct DriveRequest {
    const char* name;
    /// The longest time until the reply or a sign of life. A program that is later is killed.
    std::chrono::seconds timeout;
};

/// The requests, in the order of a burn. Any other order fails.
namespace drive {
using namespace std::chrono_literals;

/// The version of this protocol and the user's language. First, and without a reply.
inline constexpr DriveRequest hello = {"hello", 0s};
constexpr std::int64_t version = 1;

inline constexpr DriveRequest facts = {"facts", 20s}; ///< opens the drive, reads the disc
inline constexpr DriveRequest accessProblem = {"access-problem",
                                               5s}; ///< why the drive cannot be opened
inline constexpr DriveRequest eject = {"eject", 30s};
/// Unlocks the tray that a dead process has locked. The library hardly waits for it.
inline constexpr DriveRequest unlock = {"unlock", 0s};

/// Opens the drive for a burn and refuses a disc that cannot take it. Waits for a new disc.
inline constexpr DriveRequest claim = {"claim", 60s};
inline constexpr DriveRequest openSession = {"open-session", 120s}; ///< blanks, with signs of life
/// The bytes of the plan follow in the stream. The reply comes when all were taken.
inline constexpr DriveRequest write = {"write", 120s};
inline constexpr DriveRequest closeSession = {"close-session", 120s};
inline constexpr DriveRequest finish = {"finish", 120s}; ///< closes the disc, with signs of life
inline constexpr DriveRequest beginVerification = {"begin-verification", 120s};
/// Bytes of the disc; they follow the reply in the stream.
inline constexpr DriveRequest readBack = {"read-back", 120s};
inline constexpr DriveRequest release = {"release", 120s}; ///< ends the burn and unlocks the tray
inline constexpr DriveRequest reload = {"reload", 60s};    ///< after a release: see `DiscReload`

/// Ends what is being done with an error code. At any moment, without a reply of its own.
inline constexpr DriveRequest stop = {"stop", 0s};
/// The time for the reply after a stop, or for another sign of life.
constexpr std::chrono::milliseconds stopTimeout{3500};

/// The time for the other side to take a message when it has not taken those before.
constexpr std::chrono::milliseconds sendTimeout{3500};
/// The time for one request, whatever signs of life there are. Blanking a whole disc at its lowest
/// speed takes less than two hours.
constexpr std::chrono::hours longest{3};

constexpr char done[] = "done";
constexpr char failed[] = "failed";
// Events.
constexpr char disc[] = "disc";   ///< of a claim: the disc that was found
constexpr char alive[] = "alive"; ///< the drive responds, but has not finished
constexpr char log[] = "log";

/// The most bytes of a line of the log.
constexpr std::size_t mostLogBytes = 4096;
/// The most sectors of one `readBack`.
constexpr std::uint64_t mostSectorsRead = 4096;
} // namespace drive

/// A drive that the program could not open, for no reason that the system has. Another process may
/// be able to.
class DriveNotTaken : public BurnFailure {
public:
    using BurnFailure::BurnFailure;
};

// What the messages contain. What is read is checked: a number that cannot be is replaced by one
// that can, and a plan that no disc has throws `BurnFailure`.

Dictionary fieldsOf(const DriveRecord& record);
Dictionary fieldsOf(const DiscFacts& disc);
Dictionary fieldsOf(const DiscPlan& plan);
Dictionary fieldsOf(const BurnSettings& settings);
Dictionary fieldsOf(const BurnFailure& failure);

DriveRecord driveRecordOf(const Dictionary& fields);
DiscFacts discFactsOf(const Dictionary& fields);
DiscPlan discPlanOf(const Dictionary& fields);
BurnSettings burnSettingsOf(const Dictionary& fields);
/// A code that the library does not have is an internal error.
DRError errorFor(std::uint64_t number);
/// Throws the failure, as `DriveNotTaken` if it was one.
[[noreturn]] void throwFailure(const Dictionary& fields);

/// The dictionary under a key; an empty one if there is none.
const Dictionary& dictionaryFor(const Dictionary& fields, std::string_view key);
/// The text under a key; empty if there is none.
const std::string& textFor(const Dictionary& fields, std::string_view key);

} // namespace quarner
