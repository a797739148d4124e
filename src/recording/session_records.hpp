// The stored records of a study session: StudySession, ActivitySegment and
// ConfirmedNoInputInterval, with typed accessors over their raw columns.
//
// Optional `...Storage` columns stay optional so that records written by older
// layouts load unchanged; each accessor substitutes a fallback when the column
// is empty or names no known case:
//   durations 0; timing mode `timer`; study mode `computerBased`; activity
//   source `application`; classification `unclassified`; fallback reason
//   `unknown`; calculation version none (treated as v1 by readers).
// An unknown status reads as `completed` when the record has an end date and
// `interrupted` otherwise, so a record from a later release is never taken
// for the live session. An unknown confirmation state reads as
// `confirmedBreak` (it then adds no study time) and an unknown source as
// `returnPrompt`. Raw columns are never rewritten by a read.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/enumerations.hpp"
#include "recording/tracking_calculation_version.hpp"

namespace lumenote::recording {

// The record layout written by this release.
inline constexpr int kCurrentSessionSchemaVersion = 3;

struct ActivitySegment {
    Uuid id;
    Date startDate;
    Date endDate;
    double duration = 0.0;  // monotonic seconds; may differ from endDate - startDate
    std::string applicationName;
    std::string bundleIdentifier;
    std::string classificationRawValue;
    bool isInactive = false;
    std::optional<std::string> activitySourceRawValue;
    std::optional<std::string> browserBundleIdentifier;
    std::optional<std::string> hostname;
    std::optional<Uuid> tabSessionIdentifier;
    std::optional<Uuid> pdfIdentifier;
    std::optional<std::string> pdfDisplayLabelStorage;
    std::optional<std::string> pdfLabelSourceRawValue;
    std::optional<std::string> browserFallbackReasonRawValue;
    std::optional<Uuid> session;  // the owning session's id

    ActivitySegment() = default;
    ActivitySegment(Uuid id, Date startDate, Date endDate, double duration,
                    std::string applicationName, std::string bundleIdentifier,
                    classification::ActivityClassification classification, bool isInactive);

    classification::ActivityClassification classification() const;
    void setClassification(classification::ActivityClassification value);
    ActivitySourceType activitySource() const;
    void setActivitySource(ActivitySourceType value);
    std::optional<BrowserFallbackReason> browserFallbackReason() const;
    void setBrowserFallbackReason(std::optional<BrowserFallbackReason> value);
    std::optional<classification::BrowserPDFLabelSource> pdfLabelSource() const;
    void setPdfLabelSource(std::optional<classification::BrowserPDFLabelSource> value);
    const std::optional<std::string>& pdfDisplayLabel() const { return pdfDisplayLabelStorage; }
    void setPdfDisplayLabel(std::optional<std::string> value) {
        pdfDisplayLabelStorage = std::move(value);
    }

    friend bool operator==(const ActivitySegment&, const ActivitySegment&) = default;
};

struct ConfirmedNoInputInterval {
    Uuid id;
    Date startDate;
    Date endDate;
    std::string stateRawValue;
    std::string sourceRawValue;
    Date createdAt;
    std::optional<Date> supersededAt;  // set when a later confirmation replaced this one
    std::optional<Uuid> session;

    ConfirmedNoInputInterval() = default;
    ConfirmedNoInputInterval(Uuid id, Date startDate, Date endDate, ConfirmedStudyState state,
                             ConfirmedStudyStateSource source, Date createdAt);

    ConfirmedStudyState state() const;
    void setState(ConfirmedStudyState value) { stateRawValue = rawValue(value); }
    ConfirmedStudyStateSource source() const;
    void setSource(ConfirmedStudyStateSource value) { sourceRawValue = rawValue(value); }
    // Only intervals that no later confirmation replaced are counted.
    bool isInForce() const { return !supersededAt.has_value(); }

    friend bool operator==(const ConfirmedNoInputInterval&,
                           const ConfirmedNoInputInterval&) = default;
};

// The plain value form of a confirmation, as the calculation reads it.
struct ConfirmedStudyInterval {
    Uuid id;
    Date startDate;
    Date endDate;
    ConfirmedStudyState state = ConfirmedStudyState::passiveStudy;
    ConfirmedStudyStateSource source = ConfirmedStudyStateSource::returnPrompt;

    friend bool operator==(const ConfirmedStudyInterval&, const ConfirmedStudyInterval&) = default;
};

// The value forms of a session's confirmations that are in force, oldest
// first (by createdAt; equal times keep their order).
std::vector<ConfirmedStudyInterval> confirmedStudyIntervalsInForce(
    const std::vector<ConfirmedNoInputInterval>& intervals);

struct StudySession {
    Uuid id;
    std::string subject;
    std::string goal;
    std::optional<std::string> notesStorage;
    double plannedDuration = 0.0;
    std::optional<std::string> timingModeStorage;
    Date startDate;
    std::optional<Date> endDate;
    std::string statusRawValue;
    double timerDuration = 0.0;
    double focusedDuration = 0.0;
    double distractedDuration = 0.0;
    double neutralDuration = 0.0;
    std::optional<double> unclassifiedDurationStorage;
    double inactiveDuration = 0.0;
    std::optional<double> ignoredDurationStorage;
    std::optional<double> focusScore;  // percentage 0...100, kept unrounded
    std::optional<long long> calculationVersionStorage;
    std::optional<Uuid> originatingTemplateIDStorage;
    std::optional<std::string> studyModeStorage;
    std::optional<long long> schemaVersionStorage;
    std::optional<double> passiveStudyDurationStorage;
    std::optional<double> confirmedBreakDurationStorage;
    std::optional<double> systemExcludedDurationStorage;
    std::vector<ActivitySegment> segments;
    std::vector<ConfirmedNoInputInterval> confirmedNoInputIntervals;
    std::vector<Uuid> localPDFIdentities;  // ids of the PDFs seen in the session

    StudySession() = default;
    // A new running session: optional columns empty, totals zero.
    StudySession(Uuid id, std::string subject, std::string goal, double plannedDuration,
                 Date startDate);

    const std::optional<std::string>& notes() const { return notesStorage; }
    void setNotes(std::optional<std::string> value) { notesStorage = std::move(value); }
    SessionTimingMode timingMode() const;
    void setTimingMode(SessionTimingMode value) {
        timingModeStorage = std::string(rawValue(value));
    }
    StudySessionStatus status() const;
    void setStatus(StudySessionStatus value) { statusRawValue = rawValue(value); }
    bool isLive() const;  // running or paused
    StudySessionMode studyMode() const;
    void setStudyMode(StudySessionMode value) { studyModeStorage = std::string(rawValue(value)); }
    std::optional<TrackingCalculationVersion> calculationVersion() const;
    void setCalculationVersion(std::optional<TrackingCalculationVersion> value);
    const std::optional<Uuid>& originatingTemplateID() const {
        return originatingTemplateIDStorage;
    }
    void setOriginatingTemplateID(std::optional<Uuid> value) {
        originatingTemplateIDStorage = value;
    }
    std::optional<long long> schemaVersion() const { return schemaVersionStorage; }
    void setSchemaVersion(std::optional<long long> value) { schemaVersionStorage = value; }

    double unclassifiedDuration() const { return unclassifiedDurationStorage.value_or(0.0); }
    void setUnclassifiedDuration(double value) { unclassifiedDurationStorage = value; }
    double ignoredDuration() const { return ignoredDurationStorage.value_or(0.0); }
    void setIgnoredDuration(double value) { ignoredDurationStorage = value; }
    double passiveStudyDuration() const { return passiveStudyDurationStorage.value_or(0.0); }
    void setPassiveStudyDuration(double value) { passiveStudyDurationStorage = value; }
    double confirmedBreakDuration() const { return confirmedBreakDurationStorage.value_or(0.0); }
    void setConfirmedBreakDuration(double value) { confirmedBreakDurationStorage = value; }
    double systemExcludedDuration() const { return systemExcludedDurationStorage.value_or(0.0); }
    void setSystemExcludedDuration(double value) { systemExcludedDurationStorage = value; }

    friend bool operator==(const StudySession&, const StudySession&) = default;
};

}  // namespace lumenote::recording
