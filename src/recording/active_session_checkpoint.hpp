// The recovery checkpoint of the running session: its record, JSON form and
// validation, the summary shown when recovery is offered, and the texts of
// the recovery prompt and of its failures.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/dates.hpp"
#include "foundation/raw_enum.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::recording {

// The only layout this release reads and writes.
inline constexpr long long kActiveSessionCheckpointFormatVersion = 1;

// Slack of every date-order comparison, in seconds: the wall clock may step
// a little between the readings that fill one checkpoint.
inline constexpr double kCheckpointDateSlackSeconds = 5.0;

enum class ActiveSessionCheckpointState { recording, paused };

}  // namespace lumenote::recording

// Raw values are specialised where the template lives.
namespace lumenote {

template <>
struct RawValues<recording::ActiveSessionCheckpointState> {
    using E = recording::ActiveSessionCheckpointState;
    static constexpr std::array<std::pair<E, std::string_view>, 2> entries{{
        {E::recording, "recording"},
        {E::paused, "paused"},
    }};
};

}  // namespace lumenote

namespace lumenote::recording {

// What the recorder knows for certain about the running session at one
// moment. Versions are kept as the raw integers read or to be written, so that
// an out-of-range value survives decoding and is caught by validation.
struct ActiveSessionCheckpoint {
    long long formatVersion = kActiveSessionCheckpointFormatVersion;
    Uuid sessionID;
    Date startedAt;
    Date expectedEndAt;  // start plus planned duration
    ActiveSessionCheckpointState state = ActiveSessionCheckpointState::recording;
    double confirmedDuration = 0.0;         // seconds confirmed up to lastConfirmedActivityAt
    double accumulatedPauseDuration = 0.0;  // seconds paused so far
    Date lastConfirmedActivityAt;
    Date lastPersistedSegmentBoundaryAt;
    Date savedAt;
    long long calculationVersion = 3;  // a TrackingCalculationVersion: 1, 2 or 3
    std::optional<Uuid> templateID;

    friend bool operator==(const ActiveSessionCheckpoint&,
                           const ActiveSessionCheckpoint&) = default;
};

// The rule a checkpoint breaks, in the order they are checked.
enum class ActiveSessionCheckpointProblem {
    formatVersion,       // not 1
    calculationVersion,  // not 1, 2 or 3
    durations,           // a duration negative, NaN or infinite
    datesNotFinite,      // a date NaN, infinite or outside the years 0000 to 9999 (UTC)
    datesOutOfOrder      // see checkpointProblem
};

// The first rule `checkpoint` breaks; nullopt when it is valid. Dates must be
// in this order, each comparison allowing kCheckpointDateSlackSeconds:
//   startedAt <= lastConfirmedActivityAt, startedAt <= lastPersistedSegmentBoundaryAt,
//   startedAt <= savedAt, lastConfirmedActivityAt <= savedAt,
//   lastPersistedSegmentBoundaryAt <= savedAt, startedAt <= expectedEndAt.
// The confirmed-activity and segment-boundary times are not compared with each
// other: either may be the later one. expectedEndAt is the planned end, so it
// may lie after savedAt (and a timer session may run past it). Dates are
// compared in whole milliseconds, the precision they are stored at, so that a
// checkpoint valid when saved is valid when loaded back.
std::optional<ActiveSessionCheckpointProblem> checkpointProblem(
    const ActiveSessionCheckpoint& checkpoint);

inline bool isValidCheckpoint(const ActiveSessionCheckpoint& checkpoint) {
    return !checkpointProblem(checkpoint).has_value();
}

// The JSON text of `checkpoint`: one object, keys sorted, dates as
// milliseconds since 1970 (whole-number JSON numbers), UUIDs in upper case,
// `templateID` left out when absent. Encodes whatever it is given; callers
// validate first.
std::string encodeCheckpoint(const ActiveSessionCheckpoint& checkpoint);

// Reads the text written by encodeCheckpoint. Strict: nullopt for text that is
// not a JSON object, a missing member, a member of the wrong JSON type (the
// versions must be integers; the dates and durations any number), a malformed
// UUID, an unknown state or a null templateID. Members it does not know are
// ignored. The values are not validated.
std::optional<ActiveSessionCheckpoint> decodeCheckpoint(std::string_view text);

// Shown when recovery is offered.
struct ActiveSessionRecoverySummary {
    Uuid sessionID;
    ActiveSessionCheckpointState originalState = ActiveSessionCheckpointState::recording;
    Date startTime;
    Date lastConfirmedActivityAt;
    double confirmedDuration = 0.0;  // seconds, kept
    double uncertainDuration = 0.0;  // seconds after the last confirmed boundary, excluded
    Date recoveredAt;

    friend bool operator==(const ActiveSessionRecoverySummary&,
                           const ActiveSessionRecoverySummary&) = default;
};

// The summary of recovering `checkpoint` at `recoveredAt`. The uncertain time
// runs from the last confirmed activity to `recoveredAt`; both durations are
// clamped to 0 ... 3155760000 seconds, so a wall clock set back since the
// crash gives no uncertain time rather than a negative one.
ActiveSessionRecoverySummary makeRecoverySummary(const ActiveSessionCheckpoint& checkpoint,
                                                 Date recoveredAt);

// The recovery prompt.
inline constexpr std::string_view kRecoveryPromptTitle = "Lumenote found an unfinished session.";
inline constexpr std::string_view kRecoveryPromptDetail =
    "Confirmed activity is preserved. Time after the last confirmed boundary is excluded.";
inline constexpr std::string_view kContinueFromNowAction = "Continue From Now";

}  // namespace lumenote::recording
