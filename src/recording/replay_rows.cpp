#include "recording/replay_rows.hpp"

#include <numeric>

namespace lumenote::recording {

namespace {

constexpr std::string_view kBrowserActivityTitle = "Browser activity";

// The browser a segment was recorded in, when it is browser activity.
std::optional<std::string> browserOf(const ActivitySegment& segment) {
    const std::string source = segment.activitySourceRawValue.value_or("application");
    if ((source == "website" || source == "localPDF" || source == "browserFallback") &&
        segment.browserBundleIdentifier) {
        return segment.browserBundleIdentifier;
    }
    return std::nullopt;
}

ReplayDisplaySegment leafRow(std::vector<ActivitySegment> segments) {
    ReplayDisplaySegment row;
    row.id = segments.front().id;
    row.title = segmentTitle(segments.front());
    row.rawSegments = segments;
    row.directSegments = std::move(segments);
    return row;
}

// Rows of neighbouring segments with equal keys.
std::vector<ReplayDisplaySegment> keyedRows(std::vector<ActivitySegment>::const_iterator begin,
                                            std::vector<ActivitySegment>::const_iterator end) {
    std::vector<ReplayDisplaySegment> rows;
    std::vector<ActivitySegment> current;
    GroupingKey currentKey;
    for (auto segment = begin; segment != end; ++segment) {
        GroupingKey key = GroupingKey::of(*segment);
        if (!current.empty() && !(key == currentKey)) {
            rows.push_back(leafRow(std::move(current)));
            current.clear();
        }
        currentKey = std::move(key);
        current.push_back(*segment);
    }
    if (!current.empty()) {
        rows.push_back(leafRow(std::move(current)));
    }
    return rows;
}

}  // namespace

GroupingKey GroupingKey::of(const ActivitySegment& segment) {
    GroupingKey key;
    key.sessionIdentifier = segment.session ? segment.session->upperString() : std::string();
    if (segment.pdfIdentifier) {
        key.identity = segment.pdfIdentifier->upperString();
    } else if (segment.hostname) {
        key.identity = *segment.hostname;
    } else {
        key.identity = segment.bundleIdentifier;
    }
    key.classification = segment.classificationRawValue;
    key.isInactive = segment.isInactive;
    key.activitySource = segment.activitySourceRawValue.value_or("application");
    key.fallbackReason = segment.browserFallbackReasonRawValue;
    return key;
}

double ReplayDisplaySegment::totalDuration() const {
    return std::accumulate(rawSegments.begin(), rawSegments.end(), 0.0,
                           [](double sum, const ActivitySegment& s) { return sum + s.duration; });
}

std::string segmentTitle(const ActivitySegment& segment) {
    const std::string source = segment.activitySourceRawValue.value_or("application");
    if (source == "website") {
        return segment.hostname && !segment.hostname->empty() ? *segment.hostname : "Website";
    }
    if (source == "localPDF") {
        return segment.pdfDisplayLabelStorage && !segment.pdfDisplayLabelStorage->empty()
                   ? *segment.pdfDisplayLabelStorage
                   : "Local PDF";
    }
    return segment.applicationName.empty() ? "Unknown application" : segment.applicationName;
}

std::vector<ReplayDisplaySegment> replayRows(const std::vector<ActivitySegment>& segments) {
    std::vector<ReplayDisplaySegment> rows;
    auto runStart = segments.begin();
    while (runStart != segments.end()) {
        const auto browser = browserOf(*runStart);
        auto runEnd = std::next(runStart);
        while (runEnd != segments.end() && browserOf(*runEnd) == browser) {
            ++runEnd;
        }
        std::vector<ReplayDisplaySegment> run = keyedRows(runStart, runEnd);
        if (browser && run.size() > 1) {
            ReplayDisplaySegment parent;
            parent.id = Uuid::generate();
            parent.title = std::string(kBrowserActivityTitle);
            parent.rawSegments.assign(runStart, runEnd);
            parent.children = std::move(run);
            rows.push_back(std::move(parent));
        } else {
            for (ReplayDisplaySegment& row : run) {
                rows.push_back(std::move(row));
            }
        }
        runStart = runEnd;
    }
    return rows;
}

}  // namespace lumenote::recording
