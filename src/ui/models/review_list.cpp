#include "ui/models/review_list.hpp"

#include <numeric>

#include "foundation/text.hpp"
#include "shell/duration_text.hpp"

namespace lumenote::ui::models {

namespace {

using recording::UnclassifiedActivityGroup;

double totalDuration(const std::vector<UnclassifiedActivityGroup>& groups) {
    return std::accumulate(groups.begin(), groups.end(), 0.0,
                           [](double sum, const UnclassifiedActivityGroup& group) {
                               return sum + group.totalDuration;
                           });
}

std::string activitiesText(std::size_t count) {
    return text::countText(count, "activity", "activities");
}

}  // namespace

std::vector<ReviewRow> reviewRows(const std::vector<UnclassifiedActivityGroup>& groups) {
    std::vector<ReviewRow> rows;
    rows.reserve(groups.size());
    for (const UnclassifiedActivityGroup& group : groups) {
        rows.push_back({
            .groupId = group.id,
            .title = group.title,
            .subtitle = group.subtitle,
            .durationText = shell::durationText(group.totalDuration),
            .evidenceText = text::countText(group.segmentCount, "stretch", "stretches") + " in " +
                            text::countText(group.sessionCount, "session", "sessions"),
            .isLocalPDF = group.kind == UnclassifiedActivityGroup::Kind::localPDF,
        });
    }
    return rows;
}

std::string reviewSummaryText(const std::vector<UnclassifiedActivityGroup>& groups) {
    if (groups.empty()) {
        return "Nothing waits for review: every recorded activity has a class.";
    }
    return activitiesText(groups.size()) + (groups.size() == 1 ? " holds " : " hold ") +
           shell::durationText(totalDuration(groups)) + " without a class.";
}

std::string reviewInvitationText(const std::vector<UnclassifiedActivityGroup>& groups) {
    if (groups.empty()) {
        return {};
    }
    return activitiesText(groups.size()) + (groups.size() == 1 ? " waits" : " wait") +
           " for review (" + shell::durationText(totalDuration(groups)) + ")";
}

}  // namespace lumenote::ui::models
