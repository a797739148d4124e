#include "portability/backup_conversion.hpp"

#include "recording/tracking_calculation.hpp"

namespace lumenote::portability {

RestoredSession storedRecords(BackupSession&& backup) {
    RestoredSession restored;
    recording::StudySession& session = restored.session;
    session.id = backup.id;
    session.subject = std::move(backup.subject);
    session.goal = std::move(backup.goal);
    if (!backup.notes.empty()) {
        session.notesStorage = std::move(backup.notes);
    }
    session.plannedDuration = backup.plannedDuration;
    session.timingModeStorage = std::move(backup.timingMode);
    session.startDate = backup.startDate;
    session.endDate = backup.endDate;
    session.statusRawValue = std::move(backup.status);
    session.timerDuration = backup.timerDuration;
    session.calculationVersionStorage = backup.calculationVersion;
    session.studyModeStorage = std::move(backup.studyMode);
    session.schemaVersionStorage = backup.schemaVersion;
    session.segments = std::move(backup.segments);
    for (recording::ActivitySegment& segment : session.segments) {
        segment.session = session.id;
    }
    if (backup.confirmedNoInputIntervals) {
        session.confirmedNoInputIntervals = std::move(*backup.confirmedNoInputIntervals);
    }
    for (recording::ConfirmedNoInputInterval& interval : session.confirmedNoInputIntervals) {
        interval.session = session.id;
    }
    restored.pdfIdentities = std::move(backup.localPDFIdentities);
    for (classification::LocalPDFIdentity& identity : restored.pdfIdentities) {
        identity.session = session.id;
        session.localPDFIdentities.push_back(identity.id);
    }
    return restored;
}

RestoredSession restoredSession(BackupSession&& backup) {
    RestoredSession restored = storedRecords(std::move(backup));
    recording::StudySession& session = restored.session;
    const auto stored = session.calculationVersionStorage;
    namespace calculation = recording::TrackingCalculationService;
    const auto version = calculation::effectiveCalculationVersion(session);
    calculation::applyTotals(calculation::calculateSessionTotals(
                                 session, session.endDate.value_or(session.startDate), version),
                             session);
    session.calculationVersionStorage = stored;
    return restored;
}

}  // namespace lumenote::portability
