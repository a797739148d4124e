// The content of a session receipt: what one stored session shows when it
// is saved as a picture or a page. Every figure is the core's own, read
// under the session's calculation version; the receipt only words it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/dates.hpp"
#include "recording/personal_best.hpp"
#include "recording/session_records.hpp"
#include "ui/models/receipt_options.hpp"
#include "ui/models/receipt_parts.hpp"

namespace lumenote::ui::models {

struct SessionReceipt {
    std::string subject;
    // The session's goal; absent when it has none or includeGoal is off.
    std::optional<std::string> goal;
    std::string dayText;  // "Monday 23 November 2026", the local start day
    // "09:00 – 10:30"; absent unless includeExactTimes is on.
    std::optional<std::string> timesText;
    std::string duration;   // timer time, pauses left out
    std::string studyTime;  // recording/study_time.hpp
    // "82%", or absent with the sentence that says why.
    std::optional<std::string> focusScore;
    std::string focusScoreAbsence;  // empty when a score is shown
    ClassSplit split;
    // Computer activity largest first, named as the replay names it
    // (recording::segmentTitle), at most kReceiptActivityCount.
    std::vector<ReceiptLine> topActivities;
    std::vector<std::string> personalBests;  // "New longest focus: 42 min"
    std::optional<std::string> branding;

    friend bool operator==(const SessionReceipt&, const SessionReceipt&) = default;
};

// The receipt of `session`, a stored session loaded with its segments and
// confirmations. The class split, study time and score are the session's
// stored totals (a v1 session keeps the figures it was shown with); the
// activities come from its calculation under its own version. `bests` are
// the personal bests it set when it ended; `calendar` is the zone the day
// and times are written in.
SessionReceipt makeSessionReceipt(const recording::StudySession& session,
                                  const std::vector<recording::PersonalBest>& bests,
                                  const ReceiptOptions& options, const LocalCalendar& calendar);

}  // namespace lumenote::ui::models
