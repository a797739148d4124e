// The rows of a session's replay: neighbouring segments of the same activity
// (same GroupingKey) become one row, and a stretch of browser activity
// gathers its pages under one "Browser activity" row.
//
// Nesting rule: a run of neighbouring segments recorded in one browser (a
// website, a local PDF, or the browser by its own name while no page was
// known) forms one parent row whenever the run holds more than one row of its
// own; its children are those rows in time order, and the parent has no
// segments of its own. A browser run of a single row, and everything else, is
// a row without children. Only one level deep.
//
// Row ids are fresh for every build: a row exists only on screen, and no id
// of a row is ever stored.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

// Whether two neighbouring segments belong to one row.
struct GroupingKey {
    std::string sessionIdentifier;
    // The PDF identity, else the hostname, else the bundle identifier.
    std::string identity;
    std::string classification;
    bool isInactive = false;
    std::string activitySource;
    std::optional<std::string> fallbackReason;

    static GroupingKey of(const ActivitySegment& segment);
    friend bool operator==(const GroupingKey&, const GroupingKey&) = default;
};

struct ReplayDisplaySegment {
    Uuid id;
    std::vector<ActivitySegment> rawSegments;  // every segment under the row, children's too
    std::vector<ReplayDisplaySegment> children;
    std::vector<ActivitySegment> directSegments;  // the row's own; empty for a parent
    // A row without children shows its first segment's title; a parent
    // "Browser activity".
    std::string title;

    double totalDuration() const;  // seconds, of rawSegments
};

// A segment's title: its hostname ("Website" when missing) for a website,
// its PDF label ("Local PDF" when none) for a PDF, otherwise its application
// name ("Unknown application" when empty).
std::string segmentTitle(const ActivitySegment& segment);

// The rows of `segments` (one session's, in time order).
std::vector<ReplayDisplaySegment> replayRows(const std::vector<ActivitySegment>& segments);

}  // namespace lumenote::recording
