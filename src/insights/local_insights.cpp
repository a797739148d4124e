#include "insights/local_insights.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

#include "foundation/numeric.hpp"
#include "insights/insight_text.hpp"
#include "insights/weekly_figures.hpp"

namespace lumenote::insights {

namespace {

using recording::TrackingCalculationVersion;
using recording::TrackingCalculationService::AccountedState;
using Unit = InsightEvidenceUnit;
using Privacy = InsightEvidencePrivacy;

struct WeekSessions {
    std::vector<const SessionSnapshot*> sessions;
    int activeDays = 0;
};

WeekSessions sessionsOf(const std::vector<SessionSnapshot>& all, const WeekPeriod& week) {
    WeekSessions result;
    std::array<bool, kDaysPerWeek> active{};
    for (const SessionSnapshot& session : all) {
        if (const auto day = week.dayIndex(session.startDate)) {
            result.sessions.push_back(&session);
            active[static_cast<std::size_t>(*day)] = true;
        }
    }
    result.activeDays = static_cast<int>(std::count(active.begin(), active.end(), true));
    return result;
}

InsightEvidenceValue number(std::string key, std::string label, double value, Unit unit) {
    return {std::move(key), std::move(label), value, std::nullopt, unit, Privacy::aggregate};
}

InsightEvidenceValue text(std::string key, std::string label, std::string value, Privacy privacy) {
    return {std::move(key), std::move(label), std::nullopt, std::move(value), Unit::text, privacy};
}

// What every kind shares: the rule, the sessions behind it and their versions.
struct Draft {
    LocalInsightKind kind;
    std::vector<const SessionSnapshot*> basis;
    InsightMinimumDataRule rule;
    std::vector<InsightEvidenceValue> evidence;
    std::string title;
    std::string statement;
    std::string explanation;
    InsightLanguageDirection direction = InsightLanguageDirection::neutral;
};

class Builder {
  public:
    Builder(const WeekPeriod& week, const LocalCalendar& calendar, int activeDays,
            const std::vector<InsightDismissalRecord>& dismissals)
        : week_(week), calendar_(calendar), activeDays_(activeDays), dismissals_(dismissals) {}

    LocalInsightFact finish(Draft draft) const {
        LocalInsightFact fact;
        fact.kind = draft.kind;
        fact.id = localInsightID(draft.kind, calendar_.dayKey(week_.start));
        fact.period = {week_.start, week_.end};
        fact.sampleSize = static_cast<int>(draft.basis.size());
        int unversioned = 0;
        for (const SessionSnapshot* session : draft.basis) {
            fact.calculationVersions.insert(session->effectiveVersion());
            unversioned += session->calculationVersion ? 0 : 1;
        }
        if (fact.calculationVersions.size() > 1) {
            std::string versions;
            for (const TrackingCalculationVersion version : fact.calculationVersions) {
                versions += fmt::format("{}v{}", versions.empty() ? "" : ", ",
                                        recording::rawValue(version));
            }
            draft.evidence.push_back(text("calculationVersions", "Mixed calculation versions",
                                          versions, Privacy::aggregate));
        }
        if (unversioned > 0) {
            draft.evidence.push_back(number("unversionedSessions", "Calculation method unavailable",
                                            unversioned, Unit::count));
        }
        fact.evidenceValues = std::move(draft.evidence);
        fact.minimumDataRule = draft.rule;
        fact.evidenceQuality = gradeEvidenceQuality(fact.sampleSize, activeDays_);
        fact.title = std::move(draft.title);
        fact.statement = std::move(draft.statement);
        fact.explanation = std::move(draft.explanation);
        fact.privacyClassification = InsightPrivacyClassification::aggregateOnly;
        for (const InsightEvidenceValue& value : fact.evidenceValues) {
            if (value.privacy == Privacy::localLabel) {
                fact.privacyClassification = InsightPrivacyClassification::includesLocalLabel;
            }
        }
        fact.evidenceRevision = evidenceRevision(fact.evidenceValues);
        fact.isDismissed = containsDismissal(dismissals_, fact.id, fact.evidenceRevision);
        fact.languageDirection = draft.direction;
        return fact;
    }

  private:
    const WeekPeriod& week_;
    const LocalCalendar& calendar_;
    int activeDays_;
    const std::vector<InsightDismissalRecord>& dismissals_;
};

InsightMinimumDataRule rule(std::string_view text, int requiredSessions, int actualSessions,
                            int requiredDays, int actualDays) {
    return {std::string(text), requiredSessions, actualSessions, requiredDays, actualDays};
}

// The label with the largest seconds; ties to the label that sorts first.
const std::pair<const std::string, double>* largest(const std::map<std::string, double>& totals) {
    const std::pair<const std::string, double>* best = nullptr;
    for (const auto& entry : totals) {
        if (best == nullptr || entry.second > best->second) {
            best = &entry;
        }
    }
    return best;
}

struct EvidenceTotals {
    double focused = 0.0;
    double distracted = 0.0;
};

EvidenceTotals evidenceOf(const std::vector<const SessionSnapshot*>& sessions) {
    EvidenceTotals totals;
    for (const SessionSnapshot* session : sessions) {
        totals.focused = addClampedDuration(totals.focused, session->focused);
        totals.distracted = addClampedDuration(totals.distracted, session->distracted);
    }
    return totals;
}

std::vector<const SessionSnapshot*> versionedOnly(const std::vector<const SessionSnapshot*>& all) {
    std::vector<const SessionSnapshot*> versioned;
    std::copy_if(
        all.begin(), all.end(), std::back_inserter(versioned),
        [](const SessionSnapshot* session) { return session->calculationVersion.has_value(); });
    return versioned;
}

std::optional<Draft> focusTrend(const WeekSessions& selected, const WeekSessions& previous) {
    const auto current = versionedOnly(selected.sessions);
    const auto before = versionedOnly(previous.sessions);
    const EvidenceTotals currentTotals = evidenceOf(current);
    const EvidenceTotals previousTotals = evidenceOf(before);
    const int sample = static_cast<int>(current.size() + before.size());
    const auto currentScore = weeklyFocusScore(currentTotals.focused, currentTotals.distracted);
    const auto previousScore = weeklyFocusScore(previousTotals.focused, previousTotals.distracted);
    if (current.size() < 2 || before.size() < 2 || !currentScore || !previousScore) {
        return std::nullopt;
    }
    const double difference = *currentScore - *previousScore;
    Draft draft{.kind = LocalInsightKind::focusTrend};
    draft.basis = current;
    draft.basis.insert(draft.basis.end(), before.begin(), before.end());
    draft.rule = rule(
        "At least two completed sessions and one minute of Focused + Distracted activity in each "
        "week.",
        4, sample, 0, selected.activeDays);
    draft.evidence = {
        number("currentFocusScore", "Selected week focus score", *currentScore, Unit::percent),
        number("previousFocusScore", "Previous week focus score", *previousScore, Unit::percent),
        number("focusScoreDifference", "Focus score difference", difference,
               Unit::percentagePoints),
        number("completedSessions", "Completed sessions", sample, Unit::count)};
    draft.title = "Focus score trend";
    if (difference > kSimilarFocusBandPoints) {
        draft.direction = InsightLanguageDirection::higher;
        draft.statement =
            fmt::format("Your weekly focus score was {} points higher than the previous week.",
                        printedPoints(difference));
    } else if (difference < -kSimilarFocusBandPoints) {
        draft.direction = InsightLanguageDirection::lower;
        draft.statement =
            fmt::format("Your weekly focus score was {} points lower than the previous week.",
                        printedPoints(difference));
    } else {
        draft.direction = InsightLanguageDirection::similar;
        draft.statement = "Your weekly focus score was similar to the previous week.";
    }
    draft.explanation =
        "Lumenote compared the aggregate Focused and Distracted time from completed, versioned "
        "sessions in two adjacent local-calendar weeks. This is a comparison, not a claim about "
        "why the score changed.";
    return draft;
}

std::optional<Draft> averageSessionLength(const WeekSessions& selected) {
    const int count = static_cast<int>(selected.sessions.size());
    if (count < 3) {
        return std::nullopt;
    }
    double total = 0.0;
    for (const SessionSnapshot* session : selected.sessions) {
        total = addClampedDuration(total, session->duration);
    }
    const double average = total / count;
    Draft draft{.kind = LocalInsightKind::averageSessionLength, .basis = selected.sessions};
    draft.rule = rule("At least three completed sessions in the selected week.", 3, count, 0,
                      selected.activeDays);
    draft.evidence = {
        number("averageSessionDuration", "Average session duration", average, Unit::seconds),
        number("totalSessionDuration", "Total session duration", total, Unit::seconds),
        number("completedSessions", "Completed sessions", count, Unit::count)};
    draft.title = "Typical session length";
    draft.statement =
        fmt::format("Your completed sessions averaged {}.", insightDurationText(average));
    draft.explanation =
        "Lumenote divided total completed session duration by the number of completed sessions "
        "in this selected week. Paused and uncertain recovery time remains excluded.";
    return draft;
}

std::optional<Draft> strongestStudyDay(const WeekSessions& selected, const WeekPeriod& week,
                                       const LocalCalendar& calendar) {
    const int count = static_cast<int>(selected.sessions.size());
    if (count < 3 || selected.activeDays < 2) {
        return std::nullopt;
    }
    std::array<double, kDaysPerWeek> focused{};
    std::array<std::vector<const SessionSnapshot*>, kDaysPerWeek> byDay;
    for (const SessionSnapshot* session : selected.sessions) {
        const auto day = static_cast<std::size_t>(*week.dayIndex(session->startDate));
        focused[day] = addClampedDuration(focused[day], session->focused);
        byDay[day].push_back(session);
    }
    const auto best = static_cast<std::size_t>(std::max_element(focused.begin(), focused.end()) -
                                               focused.begin());
    if (!(focused[best] > 0.0)) {
        return std::nullopt;
    }
    double dayDuration = 0.0;
    for (const SessionSnapshot* session : byDay[best]) {
        dayDuration = addClampedDuration(dayDuration, session->duration);
    }
    const std::string weekday(weekdayName(calendar.weekday(week.dayStarts[best])));
    Draft draft{.kind = LocalInsightKind::strongestStudyDay, .basis = selected.sessions};
    draft.rule = rule("At least three completed sessions across two active days.", 3, count, 2,
                      selected.activeDays);
    draft.evidence = {
        text("weekday", "Strongest day", weekday, Privacy::aggregate),
        number("focusedDuration", "Focused time that day", focused[best], Unit::seconds),
        number("completedSessions", "Sessions that day", static_cast<double>(byDay[best].size()),
               Unit::count),
        number("totalSessionDuration", "Total session duration", dayDuration, Unit::seconds)};
    draft.title = "Strongest study day";
    draft.statement = fmt::format("Your strongest study day this week was {}.", weekday);
    draft.explanation = fmt::format(
        "Among active days in the selected week, {} had the most confirmed Focused time. This "
        "describes the recorded week and does not predict future performance.",
        weekday);
    return draft;
}

std::optional<Draft> longestFocusBlock(const WeekSessions& selected) {
    const int count = static_cast<int>(selected.sessions.size());
    double longest = 0.0;
    for (const SessionSnapshot* session : selected.sessions) {
        longest = std::max(longest, session->longestFocusedRun);
    }
    if (count < 2 || longest < kMinimumInsightEvidenceSeconds) {
        return std::nullopt;
    }
    Draft draft{.kind = LocalInsightKind::longestFocusBlock, .basis = selected.sessions};
    draft.rule = rule("At least two completed sessions and a Focused run of one minute or longer.",
                      2, count, 0, selected.activeDays);
    draft.evidence = {number("longestFocusDuration", "Longest Focused run", longest, Unit::seconds),
                      number("completedSessions", "Completed sessions", count, Unit::count)};
    draft.title = "Longest focus block";
    draft.statement =
        fmt::format("Your longest recorded Focused run was {}.", insightDurationText(longest));
    draft.explanation =
        "This uses the longest contiguous Focused interval produced by each session's stored "
        "calculation version. It excludes gaps and other classifications.";
    return draft;
}

std::optional<Draft> topSubject(const WeekSessions& selected) {
    const int count = static_cast<int>(selected.sessions.size());
    std::map<std::string, double> subjects;
    for (const SessionSnapshot* session : selected.sessions) {
        subjects[session->subject] =
            addClampedDuration(subjects[session->subject], session->studyTime);
    }
    if (count < 3 || subjects.size() < 2) {
        return std::nullopt;
    }
    const auto* best = largest(subjects);
    Draft draft{.kind = LocalInsightKind::topSubject, .basis = selected.sessions};
    draft.rule = rule("At least three completed sessions across two recorded subjects.", 3, count,
                      0, selected.activeDays);
    draft.evidence = {
        text("subject", "Subject", best->first, Privacy::localLabel),
        number("subjectStudyDuration", "Subject study time", best->second, Unit::seconds),
        number("completedSessions", "Completed sessions", count, Unit::count)};
    draft.title = "Most-studied subject";
    draft.statement = fmt::format("{} had the most recorded study time this week.", best->first);
    draft.explanation =
        "Lumenote compared Study Time across the locally stored subject labels in this selected "
        "week. Subject text stays on this Mac.";
    return draft;
}

std::optional<Draft> commonDistraction(const WeekSessions& selected) {
    std::map<std::string, double> distractions;
    std::map<std::string, int> intervalsByLabel;
    std::vector<const SessionSnapshot*> basis;
    int intervals = 0;
    double total = 0.0;
    for (const SessionSnapshot* session : selected.sessions) {
        bool distracted = false;
        for (const ActivityTime& activity : session->activities) {
            if (activity.classification != AccountedState::distracting) {
                continue;
            }
            distracted = true;
            distractions[activity.label] =
                addClampedDuration(distractions[activity.label], activity.seconds);
            intervalsByLabel[activity.label] += activity.intervals;
            intervals += activity.intervals;
            total = addClampedDuration(total, activity.seconds);
        }
        if (distracted) {
            basis.push_back(session);
        }
    }
    if (intervals < 2 || total < kMinimumInsightEvidenceSeconds) {
        return std::nullopt;
    }
    const auto* best = largest(distractions);
    Draft draft{.kind = LocalInsightKind::commonDistraction, .basis = basis};
    draft.rule = rule("At least two recorded distracting intervals totalling one minute.", 2,
                      intervals, 0, selected.activeDays);
    draft.evidence = {
        text("activityLabel", "Local activity label", best->first, Privacy::localLabel),
        number("distractingDuration", "Distracted time", best->second, Unit::seconds),
        number("recordedIntervals", "Recorded intervals", intervalsByLabel[best->first],
               Unit::count)};
    draft.title = "Most common distraction";
    draft.statement =
        fmt::format("{} had the most recorded Distracted time this week.", best->first);
    draft.explanation =
        "Lumenote compared version-reconciled Distracted intervals. Website labels are hostnames "
        "only; URLs, paths, page titles, searches, and page contents are not available to this "
        "engine.";
    return draft;
}

}  // namespace

std::vector<LocalInsightFact> buildLocalInsights(
    const std::vector<SessionSnapshot>& selected, const std::vector<SessionSnapshot>& previous,
    const WeekPeriod& selectedWeek, const WeekPeriod& previousWeek, const LocalCalendar& calendar,
    const std::vector<InsightDismissalRecord>& dismissals) {
    const WeekSessions current = sessionsOf(selected, selectedWeek);
    const WeekSessions before = sessionsOf(previous, previousWeek);
    const Builder builder(selectedWeek, calendar, current.activeDays, dismissals);
    std::vector<LocalInsightFact> facts;
    for (auto& draft :
         {focusTrend(current, before), averageSessionLength(current),
          strongestStudyDay(current, selectedWeek, calendar), longestFocusBlock(current),
          topSubject(current), commonDistraction(current)}) {
        if (draft) {
            facts.push_back(builder.finish(*draft));
        }
    }
    return facts;
}

}  // namespace lumenote::insights
