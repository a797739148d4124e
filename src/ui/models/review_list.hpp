// What the review of unclassified activity shows: one row per application,
// website or local PDF that recorded time without a class, longest first (the
// core's order), each with how much time it holds and where, and one line
// that sums the whole list up.
#pragma once

#include <string>
#include <vector>

#include "recording/unclassified_activity_review.hpp"

namespace lumenote::ui::models {

struct ReviewRow {
    std::string groupId;       // the core's stable group id
    std::string title;         // application name, hostname or PDF label
    std::string subtitle;      // "org.gnome.TextEditor", "Website" or "Local PDF"
    std::string durationText;  // "1 h 05 min"
    std::string evidenceText;  // "3 stretches in 2 sessions"
    // A PDF's class reaches as far as the chosen scope; an application's or
    // a website's becomes a rule.
    bool isLocalPDF = false;

    friend bool operator==(const ReviewRow&, const ReviewRow&) = default;
};

std::vector<ReviewRow> reviewRows(const std::vector<recording::UnclassifiedActivityGroup>& groups);

// "Nothing waits for review: every recorded activity has a class." for an
// empty list, otherwise "4 activities hold 2 h 10 min without a class."
std::string reviewSummaryText(const std::vector<recording::UnclassifiedActivityGroup>& groups);

// The tray's and Today's invitation, or empty when nothing waits:
// "2 activities wait for review (1 h 05 min)".
std::string reviewInvitationText(const std::vector<recording::UnclassifiedActivityGroup>& groups);

}  // namespace lumenote::ui::models
