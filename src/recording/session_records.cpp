#include "recording/session_records.hpp"

#include <algorithm>

namespace lumenote::recording {

namespace {

template <typename E>
std::optional<E> parseOptional(const std::optional<std::string>& raw) {
    return raw ? fromRawValue<E>(*raw) : std::nullopt;
}

template <typename E>
std::optional<std::string> storeOptional(std::optional<E> value) {
    return value ? std::optional<std::string>(std::string(rawValue(*value))) : std::nullopt;
}

}  // namespace

ActivitySegment::ActivitySegment(Uuid id_, Date startDate_, Date endDate_, double duration_,
                                 std::string applicationName_, std::string bundleIdentifier_,
                                 classification::ActivityClassification classification_,
                                 bool isInactive_)
    : id(id_),
      startDate(startDate_),
      endDate(endDate_),
      duration(duration_),
      applicationName(std::move(applicationName_)),
      bundleIdentifier(std::move(bundleIdentifier_)),
      classificationRawValue(rawValue(classification_)),
      isInactive(isInactive_) {}

classification::ActivityClassification ActivitySegment::classification() const {
    return classification::classificationFromRawValue(classificationRawValue);
}

void ActivitySegment::setClassification(classification::ActivityClassification value) {
    classificationRawValue = rawValue(value);
}

ActivitySourceType ActivitySegment::activitySource() const {
    return parseOptional<ActivitySourceType>(activitySourceRawValue)
        .value_or(ActivitySourceType::application);
}

void ActivitySegment::setActivitySource(ActivitySourceType value) {
    activitySourceRawValue = std::string(rawValue(value));
}

std::optional<BrowserFallbackReason> ActivitySegment::browserFallbackReason() const {
    if (!browserFallbackReasonRawValue) {
        return std::nullopt;
    }
    return fromRawValue<BrowserFallbackReason>(*browserFallbackReasonRawValue)
        .value_or(BrowserFallbackReason::unknown);
}

void ActivitySegment::setBrowserFallbackReason(std::optional<BrowserFallbackReason> value) {
    browserFallbackReasonRawValue = storeOptional(value);
}

std::optional<classification::BrowserPDFLabelSource> ActivitySegment::pdfLabelSource() const {
    return parseOptional<classification::BrowserPDFLabelSource>(pdfLabelSourceRawValue);
}

void ActivitySegment::setPdfLabelSource(
    std::optional<classification::BrowserPDFLabelSource> value) {
    pdfLabelSourceRawValue = storeOptional(value);
}

ConfirmedNoInputInterval::ConfirmedNoInputInterval(Uuid id_, Date startDate_, Date endDate_,
                                                   ConfirmedStudyState state_,
                                                   ConfirmedStudyStateSource source_,
                                                   Date createdAt_)
    : id(id_),
      startDate(startDate_),
      endDate(endDate_),
      stateRawValue(rawValue(state_)),
      sourceRawValue(rawValue(source_)),
      createdAt(createdAt_) {}

ConfirmedStudyState ConfirmedNoInputInterval::state() const {
    return fromRawValue<ConfirmedStudyState>(stateRawValue)
        .value_or(ConfirmedStudyState::confirmedBreak);
}

ConfirmedStudyStateSource ConfirmedNoInputInterval::source() const {
    return fromRawValue<ConfirmedStudyStateSource>(sourceRawValue)
        .value_or(ConfirmedStudyStateSource::returnPrompt);
}

std::vector<ConfirmedStudyInterval> confirmedStudyIntervalsInForce(
    const std::vector<ConfirmedNoInputInterval>& intervals) {
    std::vector<const ConfirmedNoInputInterval*> inForce;
    for (const auto& interval : intervals) {
        if (interval.isInForce()) {
            inForce.push_back(&interval);
        }
    }
    std::stable_sort(inForce.begin(), inForce.end(),
                     [](const auto* a, const auto* b) { return a->createdAt < b->createdAt; });
    std::vector<ConfirmedStudyInterval> result;
    result.reserve(inForce.size());
    for (const auto* interval : inForce) {
        result.push_back({interval->id, interval->startDate, interval->endDate, interval->state(),
                          interval->source()});
    }
    return result;
}

StudySession::StudySession(Uuid id_, std::string subject_, std::string goal_,
                           double plannedDuration_, Date startDate_)
    : id(id_),
      subject(std::move(subject_)),
      goal(std::move(goal_)),
      plannedDuration(plannedDuration_),
      startDate(startDate_),
      statusRawValue(rawValue(StudySessionStatus::running)) {}

SessionTimingMode StudySession::timingMode() const {
    return parseOptional<SessionTimingMode>(timingModeStorage).value_or(SessionTimingMode::timer);
}

StudySessionStatus StudySession::status() const {
    if (auto status = fromRawValue<StudySessionStatus>(statusRawValue)) {
        return *status;
    }
    return endDate ? StudySessionStatus::completed : StudySessionStatus::interrupted;
}

bool StudySession::isLive() const {
    const auto current = status();
    return current == StudySessionStatus::running || current == StudySessionStatus::paused;
}

StudySessionMode StudySession::studyMode() const {
    return parseOptional<StudySessionMode>(studyModeStorage)
        .value_or(StudySessionMode::computerBased);
}

std::optional<TrackingCalculationVersion> StudySession::calculationVersion() const {
    return calculationVersionStorage ? trackingCalculationVersionFromRaw(*calculationVersionStorage)
                                     : std::nullopt;
}

void StudySession::setCalculationVersion(std::optional<TrackingCalculationVersion> value) {
    calculationVersionStorage =
        value ? std::optional<long long>(static_cast<long long>(*value)) : std::nullopt;
}

}  // namespace lumenote::recording
