#include "recording/active_session_checkpoint.hpp"

#include <cmath>
#include <cstdint>
#include <limits>

#include <nlohmann/json.hpp>

#include "foundation/numeric.hpp"
#include "recording/tracking_calculation_version.hpp"

namespace lumenote::recording {

namespace {

constexpr double kSlackMilliseconds = kCheckpointDateSlackSeconds * 1000.0;

// Doubles hold every whole number up to 2^53 exactly; such dates are written
// as JSON integers, anything larger as a plain number.
constexpr double kLargestExactInteger = 9007199254740992.0;

// The first and last millisecond of the years 0000 to 9999 (UTC), the dates
// the recovery prompts can write.
constexpr double kFirstWritableMillisecond = -62167219200000.0;
constexpr double kLastWritableMillisecond = 253402300799999.0;

bool isWritableDate(Date date) {
    const double milliseconds = date.millisecondsSince1970();
    return std::isfinite(milliseconds) && milliseconds >= kFirstWritableMillisecond &&
           milliseconds <= kLastWritableMillisecond;
}

bool isValidDuration(double seconds) {
    return std::isfinite(seconds) && seconds >= 0.0;
}

// `earlier` is no more than the slack after `later`.
bool inOrder(Date earlier, Date later) {
    return earlier.millisecondsSince1970() <= later.millisecondsSince1970() + kSlackMilliseconds;
}

nlohmann::json dateJson(Date date) {
    const double milliseconds = date.millisecondsSince1970();
    if (std::fabs(milliseconds) <= kLargestExactInteger) {
        return static_cast<std::int64_t>(milliseconds);
    }
    return milliseconds;
}

// The members of one JSON object, read strictly. Each reader returns false
// when the member is missing or of the wrong type.
class MemberReader {
  public:
    explicit MemberReader(const nlohmann::json& object) : object_(object) {}

    bool integer(const char* key, long long& out) const {
        const auto member = object_.find(key);
        if (member == object_.end() || !member->is_number_integer()) {
            return false;
        }
        if (member->is_number_unsigned()) {
            const auto value = member->get<std::uint64_t>();
            if (value > static_cast<std::uint64_t>(std::numeric_limits<long long>::max())) {
                return false;
            }
            out = static_cast<long long>(value);
            return true;
        }
        out = member->get<long long>();
        return true;
    }

    bool number(const char* key, double& out) const {
        const auto member = object_.find(key);
        if (member == object_.end() || !member->is_number()) {
            return false;
        }
        out = member->get<double>();
        return true;
    }

    bool date(const char* key, Date& out) const {
        double milliseconds = 0.0;
        if (!number(key, milliseconds)) {
            return false;
        }
        out = Date::fromMillisecondsSince1970(milliseconds);
        return true;
    }

    bool uuid(const char* key, Uuid& out) const {
        const auto member = object_.find(key);
        if (member == object_.end() || !member->is_string()) {
            return false;
        }
        const auto parsed = Uuid::parse(member->get_ref<const std::string&>());
        if (!parsed) {
            return false;
        }
        out = *parsed;
        return true;
    }

    bool state(const char* key, ActiveSessionCheckpointState& out) const {
        const auto member = object_.find(key);
        if (member == object_.end() || !member->is_string()) {
            return false;
        }
        const auto parsed =
            fromRawValue<ActiveSessionCheckpointState>(member->get_ref<const std::string&>());
        if (!parsed) {
            return false;
        }
        out = *parsed;
        return true;
    }

    bool contains(const char* key) const { return object_.contains(key); }

  private:
    const nlohmann::json& object_;
};

}  // namespace

std::optional<ActiveSessionCheckpointProblem> checkpointProblem(
    const ActiveSessionCheckpoint& checkpoint) {
    const auto& c = checkpoint;
    if (c.formatVersion != kActiveSessionCheckpointFormatVersion) {
        return ActiveSessionCheckpointProblem::formatVersion;
    }
    if (!trackingCalculationVersionFromRaw(c.calculationVersion)) {
        return ActiveSessionCheckpointProblem::calculationVersion;
    }
    if (!isValidDuration(c.confirmedDuration) || !isValidDuration(c.accumulatedPauseDuration)) {
        return ActiveSessionCheckpointProblem::durations;
    }
    for (const Date date : {c.startedAt, c.expectedEndAt, c.lastConfirmedActivityAt,
                            c.lastPersistedSegmentBoundaryAt, c.savedAt}) {
        if (!isWritableDate(date)) {
            return ActiveSessionCheckpointProblem::datesNotFinite;
        }
    }
    const bool ordered = inOrder(c.startedAt, c.lastConfirmedActivityAt) &&
                         inOrder(c.startedAt, c.lastPersistedSegmentBoundaryAt) &&
                         inOrder(c.startedAt, c.savedAt) &&
                         inOrder(c.lastConfirmedActivityAt, c.savedAt) &&
                         inOrder(c.lastPersistedSegmentBoundaryAt, c.savedAt) &&
                         inOrder(c.startedAt, c.expectedEndAt);
    if (!ordered) {
        return ActiveSessionCheckpointProblem::datesOutOfOrder;
    }
    return std::nullopt;
}

std::string encodeCheckpoint(const ActiveSessionCheckpoint& checkpoint) {
    // nlohmann::json keeps object members in a std::map: the text comes out
    // with its keys sorted.
    nlohmann::json object = {
        {"formatVersion", checkpoint.formatVersion},
        {"sessionID", checkpoint.sessionID.upperString()},
        {"startedAt", dateJson(checkpoint.startedAt)},
        {"expectedEndAt", dateJson(checkpoint.expectedEndAt)},
        {"state", rawValue(checkpoint.state)},
        {"confirmedDuration", checkpoint.confirmedDuration},
        {"accumulatedPauseDuration", checkpoint.accumulatedPauseDuration},
        {"lastConfirmedActivityAt", dateJson(checkpoint.lastConfirmedActivityAt)},
        {"lastPersistedSegmentBoundaryAt", dateJson(checkpoint.lastPersistedSegmentBoundaryAt)},
        {"savedAt", dateJson(checkpoint.savedAt)},
        {"calculationVersion", checkpoint.calculationVersion},
    };
    if (checkpoint.templateID) {
        object["templateID"] = checkpoint.templateID->upperString();
    }
    return object.dump() + "\n";
}

std::optional<ActiveSessionCheckpoint> decodeCheckpoint(std::string_view text) {
    const nlohmann::json document = nlohmann::json::parse(text, nullptr, false);
    if (!document.is_object()) {
        return std::nullopt;
    }
    const MemberReader read(document);
    ActiveSessionCheckpoint c;
    const bool complete =
        read.integer("formatVersion", c.formatVersion) && read.uuid("sessionID", c.sessionID) &&
        read.date("startedAt", c.startedAt) && read.date("expectedEndAt", c.expectedEndAt) &&
        read.state("state", c.state) && read.number("confirmedDuration", c.confirmedDuration) &&
        read.number("accumulatedPauseDuration", c.accumulatedPauseDuration) &&
        read.date("lastConfirmedActivityAt", c.lastConfirmedActivityAt) &&
        read.date("lastPersistedSegmentBoundaryAt", c.lastPersistedSegmentBoundaryAt) &&
        read.date("savedAt", c.savedAt) && read.integer("calculationVersion", c.calculationVersion);
    if (!complete) {
        return std::nullopt;
    }
    if (read.contains("templateID")) {
        Uuid templateID;
        if (!read.uuid("templateID", templateID)) {
            return std::nullopt;
        }
        c.templateID = templateID;
    }
    return c;
}

ActiveSessionRecoverySummary makeRecoverySummary(const ActiveSessionCheckpoint& checkpoint,
                                                 Date recoveredAt) {
    ActiveSessionRecoverySummary summary;
    summary.sessionID = checkpoint.sessionID;
    summary.originalState = checkpoint.state;
    summary.startTime = checkpoint.startedAt;
    summary.lastConfirmedActivityAt = checkpoint.lastConfirmedActivityAt;
    summary.confirmedDuration = clampDuration(checkpoint.confirmedDuration);
    summary.uncertainDuration =
        clampDuration(recoveredAt.secondsSince(checkpoint.lastConfirmedActivityAt));
    summary.recoveredAt = recoveredAt;
    return summary;
}

}  // namespace lumenote::recording
