#include "portability/backup_record_checks.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>

#include "classification/rule_keys.hpp"
#include "recording/enumerations.hpp"
#include "recording/tracking_calculation_version.hpp"

namespace lumenote::portability {

namespace {

using recording::StudySessionStatus;

// Checks one record's members, remembering whether any failed.
class RecordCheck {
  public:
    explicit RecordCheck(const BackupValidationLimits& limits) : limits_(limits) {}

    RecordCheck& that(bool condition) {
        valid_ = valid_ && condition;
        return *this;
    }
    RecordCheck& text(std::string_view text, std::size_t maximumBytes, bool freeText = false) {
        return that(text.size() <= maximumBytes && isAcceptableText(text, freeText));
    }
    RecordCheck& identifier(std::string_view text) {
        return this->text(text, limits_.maximumIdentifierBytes);
    }
    RecordCheck& requiredIdentifier(std::string_view text) {
        return that(!text.empty()).identifier(text);
    }
    RecordCheck& identifierIfPresent(const std::optional<std::string>& text) {
        return text ? identifier(*text) : *this;
    }
    RecordCheck& date(Date date) {
        return that(std::isfinite(date.secondsSinceReferenceDate) && date >= limits_.earliestDate &&
                    date < limits_.latestDate);
    }
    RecordCheck& date(const std::optional<Date>& value) { return value ? date(*value) : *this; }
    RecordCheck& seconds(double value, double maximum) {
        return that(std::isfinite(value) && value >= 0.0 && value <= maximum);
    }

    bool valid() const { return valid_; }

  private:
    const BackupValidationLimits& limits_;
    bool valid_ = true;
};

bool isLive(std::string_view status) {
    const auto known = fromRawValue<StudySessionStatus>(status);
    return known == StudySessionStatus::running || known == StudySessionStatus::paused;
}

bool namesClassification(std::string_view raw) {
    return fromRawValue<classification::ActivityClassification>(raw).has_value();
}

bool checkSessionItself(const BackupSession& session, const BackupValidationLimits& limits) {
    RecordCheck check(limits);
    check.text(session.subject, limits.maximumSubjectBytes, true)
        .text(session.goal, limits.maximumGoalBytes, true)
        .text(session.notes, limits.maximumNotesBytes, true)
        .requiredIdentifier(session.status)
        .that(!isLive(session.status))
        .identifierIfPresent(session.studyMode)
        .identifierIfPresent(session.timingMode)
        .that(session.calculationVersion.value_or(1) >= 1)
        .that(session.schemaVersion.value_or(1) >= 1)
        .date(session.startDate)
        .that(session.endDate.has_value())
        .date(session.endDate)
        .seconds(session.plannedDuration, limits.maximumPlannedDuration)
        .seconds(session.timerDuration, limits.maximumSessionDuration);
    if (!check.valid()) {
        return false;
    }
    // A wall clock set back during the session may put the end a little
    // before the start; the timer never counts more than the span.
    const double span = session.endDate->secondsSince(session.startDate);
    return span >= -limits.endpointDurationTolerance && span <= limits.maximumSessionDuration &&
           session.timerDuration <= span + limits.endpointDurationTolerance;
}

bool checkSegment(const BackupSegment& segment, const BackupValidationLimits& limits) {
    RecordCheck check(limits);
    check.date(segment.startDate)
        .date(segment.endDate)
        .seconds(segment.duration, limits.maximumSessionDuration)
        .text(segment.applicationName, limits.maximumApplicationNameBytes)
        .identifier(segment.bundleIdentifier)
        .requiredIdentifier(segment.classificationRawValue)
        .identifierIfPresent(segment.activitySourceRawValue)
        .identifierIfPresent(segment.browserBundleIdentifier)
        .identifierIfPresent(segment.hostname)
        .identifierIfPresent(segment.pdfLabelSourceRawValue)
        .identifierIfPresent(segment.browserFallbackReasonRawValue);
    if (segment.pdfDisplayLabelStorage) {
        check.text(*segment.pdfDisplayLabelStorage, limits.maximumPDFLabelBytes);
    }
    if (!check.valid()) {
        return false;
    }
    const double span = segment.endDate.secondsSince(segment.startDate);
    return std::abs(segment.duration - span) <= limits.endpointDurationTolerance;
}

bool checkConfirmation(const BackupConfirmedInterval& interval,
                       const BackupValidationLimits& limits) {
    RecordCheck check(limits);
    check.date(interval.startDate)
        .date(interval.endDate)
        .date(interval.createdAt)
        .date(interval.supersededAt)
        .requiredIdentifier(interval.stateRawValue)
        .requiredIdentifier(interval.sourceRawValue)
        .that(interval.endDate.secondsSince(interval.startDate) >= -limits.intervalTolerance);
    return check.valid();
}

bool checkPDFIdentity(const BackupPDFIdentity& identity, const BackupValidationLimits& limits) {
    RecordCheck check(limits);
    check.identifier(identity.browserBundleIdentifier)
        .identifierIfPresent(identity.labelSourceRawValue)
        .requiredIdentifier(identity.classificationRawValue)
        .date(identity.createdAt);
    if (identity.displayLabelStorage) {
        check.text(*identity.displayLabelStorage, limits.maximumPDFLabelBytes);
    }
    return check.valid();
}

template <typename E>
bool isUnknown(std::string_view raw) {
    return !fromRawValue<E>(raw).has_value();
}

template <typename E>
bool isUnknownIfPresent(const std::optional<std::string>& raw) {
    return raw && isUnknown<E>(*raw);
}

}  // namespace

bool isAcceptableText(std::string_view text, bool freeText) {
    // Eight bytes at a time while they are all printable ASCII (no byte
    // below 0x20, none equal to 0x7F, none with the high bit set), which
    // nearly every text is; the rest byte by byte.
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::size_t index = 0;
    for (; index + 8 <= text.size(); index += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + index, 8);
        const std::uint64_t deletes = word ^ (kOnes * 0x7F);
        const std::uint64_t unusual =
            ((word - kOnes * 0x20) & ~word) | word | ((deletes - kOnes) & ~deletes);
        if ((unusual & kHighBits) != 0) {
            break;
        }
    }
    for (; index < text.size(); ++index) {
        const auto c = static_cast<unsigned char>(text[index]);
        if (c < 0x20) {
            if (!(freeText && (c == '\t' || c == '\n' || c == '\r'))) {
                return false;
            }
        } else if (c == 0x7F) {
            return false;
        } else if (c == 0xC2 && index + 1 < text.size()) {
            // U+0080 to U+009F, the C1 controls.
            const auto next = static_cast<unsigned char>(text[index + 1]);
            if (next >= 0x80 && next <= 0x9F) {
                return false;
            }
        }
    }
    return true;
}

std::optional<TallywiseBackupError> checkSession(const BackupSession& session,
                                                 const BackupValidationLimits& limits) {
    const std::size_t confirmations =
        session.confirmedNoInputIntervals ? session.confirmedNoInputIntervals->size() : 0;
    if (session.segments.size() > limits.maximumSegmentsPerSession) {
        return invalidRecord(invalid_record::tooManySegments);
    }
    if (confirmations > limits.maximumConfirmationsPerSession) {
        return invalidRecord(invalid_record::tooManyConfirmations);
    }
    if (session.localPDFIdentities.size() > limits.maximumPDFIdentitiesPerSession) {
        return invalidRecord(invalid_record::tooManyPDFIdentities);
    }
    if (!checkSessionItself(session, limits)) {
        return invalidRecord(invalid_record::invalidSession(session.id));
    }
    for (const BackupSegment& segment : session.segments) {
        if (!checkSegment(segment, limits)) {
            return invalidRecord(invalid_record::invalidSegment(segment.id));
        }
    }
    if (session.confirmedNoInputIntervals) {
        for (const BackupConfirmedInterval& interval : *session.confirmedNoInputIntervals) {
            if (!checkConfirmation(interval, limits)) {
                return invalidRecord(invalid_record::invalidConfirmation(interval.id));
            }
        }
    }
    for (const BackupPDFIdentity& identity : session.localPDFIdentities) {
        if (!checkPDFIdentity(identity, limits)) {
            return invalidRecord(invalid_record::invalidPDFIdentity(identity.id));
        }
    }
    return std::nullopt;
}

std::optional<TallywiseBackupError> checkApplicationRule(const BackupApplicationRule& rule,
                                                         const BackupValidationLimits& limits) {
    RecordCheck check(limits);
    check.requiredIdentifier(rule.bundleIdentifier)
        .text(rule.applicationName, limits.maximumApplicationNameBytes)
        .that(namesClassification(rule.classificationRawValue))
        .date(rule.updatedAt);
    if (!check.valid()) {
        return invalidRecord(invalid_record::invalidApplicationRule);
    }
    return std::nullopt;
}

std::optional<TallywiseBackupError> checkWebsiteRule(const BackupWebsiteRule& rule,
                                                     const BackupValidationLimits& limits) {
    RecordCheck check(limits);
    check.requiredIdentifier(rule.hostname)
        .that(classification::normalizedHostname(rule.hostname) == rule.hostname)
        .that(namesClassification(rule.classificationRawValue))
        .date(rule.updatedAt);
    if (!check.valid()) {
        return invalidRecord(invalid_record::invalidWebsiteRule);
    }
    return std::nullopt;
}

std::optional<TallywiseBackupError> checkMetadata(const BackupDocumentSummary& document,
                                                  const BackupValidationLimits& limits) {
    RecordCheck check(limits);
    check.text(document.appVersion, limits.maximumAppVersionBytes)
        .date(document.createdAt)
        .identifierIfPresent(document.preferences.appearance);
    if (!check.valid()) {
        return invalidRecord(invalid_record::metadataOrPreferences);
    }
    return std::nullopt;
}

std::optional<Uuid> firstOverlappingConfirmation(
    const std::vector<BackupConfirmedInterval>& intervals, double tolerance) {
    std::vector<const BackupConfirmedInterval*> inForce;
    for (const BackupConfirmedInterval& interval : intervals) {
        if (interval.isInForce()) {
            inForce.push_back(&interval);
        }
    }
    std::stable_sort(inForce.begin(), inForce.end(),
                     [](const auto* a, const auto* b) { return a->startDate < b->startDate; });
    // The latest end, per state, among the confirmations that started
    // earlier. Time answered twice with the same state (an away period
    // inside the no-input time an offline book session declares as study)
    // is no contradiction and counts once; only time that is both study and
    // a break at once is refused.
    std::map<std::string, Date, std::less<>> reach;
    for (const BackupConfirmedInterval* interval : inForce) {
        for (const auto& [state, end] : reach) {
            if (state != interval->stateRawValue &&
                std::min(end, interval->endDate).secondsSince(interval->startDate) > tolerance) {
                return interval->id;
            }
        }
        auto [entry, added] = reach.emplace(interval->stateRawValue, interval->endDate);
        if (!added) {
            entry->second = std::max(entry->second, interval->endDate);
        }
    }
    return std::nullopt;
}

std::size_t recordsWithUnknownValues(const BackupSession& session) {
    using namespace recording;
    const bool sessionUnknown = isUnknown<StudySessionStatus>(session.status) ||
                                isUnknownIfPresent<SessionTimingMode>(session.timingMode) ||
                                isUnknownIfPresent<StudySessionMode>(session.studyMode) ||
                                (session.calculationVersion &&
                                 !trackingCalculationVersionFromRaw(*session.calculationVersion));
    std::size_t count = sessionUnknown ? 1 : 0;
    for (const BackupSegment& segment : session.segments) {
        if (isUnknown<classification::ActivityClassification>(segment.classificationRawValue) ||
            isUnknownIfPresent<ActivitySourceType>(segment.activitySourceRawValue) ||
            isUnknownIfPresent<BrowserFallbackReason>(segment.browserFallbackReasonRawValue) ||
            isUnknownIfPresent<classification::BrowserPDFLabelSource>(
                segment.pdfLabelSourceRawValue)) {
            ++count;
        }
    }
    if (session.confirmedNoInputIntervals) {
        for (const BackupConfirmedInterval& interval : *session.confirmedNoInputIntervals) {
            if (isUnknown<ConfirmedStudyState>(interval.stateRawValue) ||
                isUnknown<ConfirmedStudyStateSource>(interval.sourceRawValue)) {
                ++count;
            }
        }
    }
    for (const BackupPDFIdentity& identity : session.localPDFIdentities) {
        if (isUnknown<classification::ActivityClassification>(identity.classificationRawValue) ||
            isUnknownIfPresent<classification::BrowserPDFLabelSource>(
                identity.labelSourceRawValue)) {
            ++count;
        }
    }
    return count;
}

}  // namespace lumenote::portability
