// Fuzzes the recovery checkpoint, the document the recorder reads at start-up
// to offer the recovery of a session that did not end. Whatever decodes must
// be written back into a document that decodes to the same checkpoint (dates
// to the millisecond), keep its validity through that save and load, and,
// when valid, give a recovery summary that the prompts can show.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "recording/active_session_checkpoint.hpp"
#include "round_trip.hpp"

namespace lumenote::fuzz {
namespace {

using recording::ActiveSessionCheckpoint;

// The most a recovery summary's durations may be, in seconds (a century).
constexpr double kLongestSummaryDuration = 3155760000.0;

// The checkpoint with every date rounded to the millisecond, the precision the
// document carries.
ActiveSessionCheckpoint toMilliseconds(ActiveSessionCheckpoint checkpoint) {
    for (Date* date :
         {&checkpoint.startedAt, &checkpoint.expectedEndAt, &checkpoint.lastConfirmedActivityAt,
          &checkpoint.lastPersistedSegmentBoundaryAt, &checkpoint.savedAt}) {
        *date = Date::fromMillisecondsSince1970(date->millisecondsSince1970());
    }
    return checkpoint;
}

// What the recovery prompts do with a valid checkpoint: summarise it now and
// write its dates.
void showRecovery(const ActiveSessionCheckpoint& checkpoint, std::string_view document) {
    const Date recoveredAt = checkpoint.savedAt.addingSeconds(90.0);
    const auto summary = recording::makeRecoverySummary(checkpoint, recoveredAt);
    for (const double seconds : {summary.confirmedDuration, summary.uncertainDuration}) {
        check(std::isfinite(seconds) && seconds >= 0.0 && seconds <= kLongestSummaryDuration,
              "checkpoint", "a recovery summary duration out of range", document);
    }
    for (const Date date : {summary.startTime, summary.lastConfirmedActivityAt}) {
        const std::string text = formatIso8601(date, {.fractionalSeconds = true});
        check(parseIso8601(text).has_value(), "checkpoint",
              "a date of a valid checkpoint is written as text that does not read back", text);
    }
}

void fuzzCheckpoint(std::string_view bytes) {
    const auto decoded = recording::decodeCheckpoint(bytes);
    if (!decoded) {
        return;
    }
    const std::string written = recording::encodeCheckpoint(*decoded);
    const auto reread = recording::decodeCheckpoint(written);
    check(reread.has_value(), "checkpoint",
          "a decoded checkpoint was written as a document "
          "that does not decode",
          written);
    check(recording::encodeCheckpoint(*reread) == written, "checkpoint",
          "writing the reread checkpoint changed the document", written);
    check(toMilliseconds(*reread) == toMilliseconds(*decoded), "checkpoint",
          "the written document reads back as another checkpoint", written);
    check(recording::checkpointProblem(*reread) == recording::checkpointProblem(*decoded),
          "checkpoint", "saving and loading changed whether the checkpoint is valid", written);
    if (recording::isValidCheckpoint(*decoded)) {
        showRecovery(*decoded, bytes);
    }
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzCheckpoint(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
