#include "recording/study_time.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "foundation/numeric.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/session_figures.hpp"

namespace lumenote::recording {

double computerStudyTime(const StudySession& session) {
    return clampDuration(session.focusedDuration + session.distractedDuration +
                         session.neutralDuration + session.unclassifiedDuration());
}

double unconfirmedNoInputTime(const StudySession& session) {
    // A live away period may also cover moments with input, so the
    // confirmed time can exceed the recorded time without input.
    return clampDuration(std::max(0.0, session.inactiveDuration - session.passiveStudyDuration() -
                                           session.confirmedBreakDuration()));
}

double studyTime(const StudySession& session) {
    return clampDuration(computerStudyTime(session) + session.passiveStudyDuration());
}

std::vector<TotalsLine> totalsBreakdown(const StudySession& session) {
    const double notCounted =
        clampDuration(session.confirmedBreakDuration() + unconfirmedNoInputTime(session) +
                      session.ignoredDuration() + session.systemExcludedDuration());
    std::vector<TotalsLine> lines{
        {kStudyTimeName, studyTime(session), 0},
        {kComputerStudyName, computerStudyTime(session), 1},
        {kFocusedName, session.focusedDuration, 2},
        {kDistractingName, session.distractedDuration, 2},
        {kNeutralName, session.neutralDuration, 2},
        {kUnclassifiedName, session.unclassifiedDuration(), 2},
        {kStudyingAwayFromMac, session.passiveStudyDuration(), 1},
        {kNotCountedName, notCounted, 0},
        {kBreakAnswer, session.confirmedBreakDuration(), 1},
        {kUnconfirmedNoInputName, unconfirmedNoInputTime(session), 1},
        {kIgnoredName, session.ignoredDuration(), 1},
        {kAsleepOrLockedName, session.systemExcludedDuration(), 1},
    };
    for (TotalsLine& line : lines) {
        line.seconds = clampDuration(line.seconds);
    }
    return lines;
}

std::string totalsBreakdownText(const StudySession& session, TotalsTextOptions options) {
    std::string text;
    for (const TotalsLine& line : totalsBreakdown(session)) {
        if (options.skipEmpty && line.depth > 0 && line.seconds < 0.5) {
            continue;
        }
        const std::size_t indent = options.indent + 2 * static_cast<std::size_t>(line.depth);
        text += fmt::format("{}{:<{}}{:>9}\n", std::string(indent, ' '), line.name,
                            kTotalsNameColumn - 2 * static_cast<std::size_t>(line.depth),
                            clockDurationText(line.seconds));
        std::string_view explanation;
        if (line.name == kStudyingAwayFromMac) {
            explanation = kPassiveStudyStateDescription;
        } else if (line.name == kBreakAnswer) {
            explanation = kConfirmedBreakStateDescription;
        } else if (line.name == kAsleepOrLockedName) {
            explanation = kSystemExcludedExplanation;
        }
        if (options.explain && !explanation.empty() && line.seconds >= 0.5) {
            text += fmt::format("{}{}\n", std::string(indent + 2, ' '), explanation);
        }
    }
    return text;
}

}  // namespace lumenote::recording
