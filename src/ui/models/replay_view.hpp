// What the Replay page shows of one stored session: its header, the totals
// card, the timeline and the replay rows, as words and plain values. Every
// figure is the session's stored total, computed by the core under the
// session's own calculation version; nothing here recomputes one, so a
// session of the first method shows exactly what it was shown with.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "classification/classification_enumerations.hpp"
#include "foundation/dates.hpp"
#include "recording/enumerations.hpp"
#include "recording/session_reclassification.hpp"
#include "recording/session_records.hpp"
#include "ui/models/timeline_model.hpp"

namespace lumenote::ui::models {

// One line of the totals card: "Computer study", "1 h 05 min".
struct ReplayFigure {
    std::string name;
    std::string value;

    friend bool operator==(const ReplayFigure&, const ReplayFigure&) = default;
};

// What a row stands for: an activity at the computer, a browser's run of
// pages (a parent row), time without input, or the computer asleep or locked.
enum class ReplayRowKind { activity, browserGroup, noInput, system };

// The words of a no-input row's chip, by what its time was confirmed as.
inline constexpr const char* kUnconfirmedChipText = "Unconfirmed";
inline constexpr const char* kPartlyConfirmedChipText = "Partly confirmed";
// The chip of a system row: that time is never counted.
inline constexpr const char* kNotCountedChipText = "Not counted";

struct ReplayRow {
    ReplayRowKind kind = ReplayRowKind::activity;
    std::string times;     // "09:00–09:25", local 24-hour times
    std::string name;      // "Text Editor", "Browser activity", "No input"
    std::string duration;  // "25 min": the measured seconds of its segments
    // "Focused", "Unconfirmed", "Studying away from Mac", "Break", "Partly
    // confirmed", "Not counted"; empty for a browser group.
    std::string chipText;
    // The class of an activity row, which colours its chip.
    std::optional<classification::ActivityClassification> classification;
    // What a class change of an activity row reaches; nullopt for other rows
    // and for activity whose key was not recorded.
    std::optional<recording::ClassifiedActivity> activity;
    // The row's stretch: from its first segment's start to the latest
    // placed end (start plus measured duration) of its segments.
    Date start;
    Date end;
    std::vector<ReplayRow> children;

    friend bool operator==(const ReplayRow&, const ReplayRow&) = default;
};

struct ReplayView {
    std::string subject;
    std::string goal;      // empty when the session has none
    std::string dateText;  // "Monday 23 November 2026 · 09:00 – 10:00"
    std::string duration;  // the timer's time, pauses left out: "1 h 00 min"
    recording::StudySessionStatus status = recording::StudySessionStatus::completed;
    // Study time, Computer study, Studying away from Mac, Break and No
    // input, unconfirmed, in that order, each present even when zero.
    std::vector<ReplayFigure> figures;
    // "82%"; absent when no score may be shown (under a minute of evidence).
    std::optional<std::string> focusScore;
    // The score's coverage ("64% score coverage"), or, without a score, the
    // sentence that says why there is none.
    std::string focusScoreNote;
    // The calculation method the figures come from, in words.
    std::string versionText;
    std::vector<TimelineBlock> timeline;
    std::vector<ReplayRow> rows;
    // Why no class can be changed for this session only, or empty when it can.
    std::string reclassifyRefusal;
    // Why time without input cannot be relabelled here, or empty when it can.
    std::string relabelRefusal;
    std::string notes;

    friend bool operator==(const ReplayView&, const ReplayView&) = default;
};

// The method sentence of a session: the core's explanation of v2 and v3,
// and for the first method, an unversioned or an unknown later version a
// sentence saying the stored totals are shown as they are.
std::string calculationVersionText(const recording::StudySession& session);

// The view of `session`, loaded with its segments (in start order) and
// confirmations; days and times are written in `calendar`'s zone.
ReplayView makeReplayView(const recording::StudySession& session, const LocalCalendar& calendar);

}  // namespace lumenote::ui::models
