// The review of unclassified activity: every stored segment that was recorded
// as unclassified (and is not time without input), gathered across sessions
// into one group per application, website or local PDF, so that the user can
// classify each once.
//
// A group is offered only while its activity would still be unclassified
// today: once the user gave the application or hostname a rule (or a starter
// suggestion now covers it), or classified the PDF, the group leaves the list.
// The recorded segments keep the class they were recorded with; the choice
// reaches every later recording (and, through the replay, a single past
// session when the user asks for that).
//
// System segments (the machine asleep) are not activity and are never offered.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "classification/classification_lookup.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::recording {

// The unclassified segments of one activity in one session, as the store sums
// them. `currentPDFClassification` is the PDF identity's class now (raw
// value), when the activity is a local PDF whose identity is still stored.
struct UnclassifiedActivityTally {
    enum class Kind { application, website, localPDF };
    Kind kind = Kind::application;
    std::string bundleIdentifier;  // the application, or the browser for websites and PDFs
    std::string applicationName;
    std::optional<std::string> browserBundleIdentifier;
    std::optional<std::string> hostname;
    std::optional<Uuid> pdfIdentifier;
    std::optional<std::string> pdfDisplayLabel;
    std::optional<std::string> currentPDFClassification;
    Uuid session;
    std::size_t segmentCount = 0;
    double totalDuration = 0.0;  // seconds
};

struct UnclassifiedActivityGroup {
    using Kind = UnclassifiedActivityTally::Kind;

    // "application:org.gnome.TextEditor", "website:en.wikipedia.org" or
    // "localPDF:<upper-case UUID>": the kind and identity, stable across runs.
    std::string id;
    Kind kind = Kind::application;
    // The application's name ("Unknown application" when empty), the hostname
    // ("Website" when missing) or the PDF's label ("Local PDF" when none).
    std::string title;
    // The bundle identifier for an application, "Website" for a website,
    // "Local PDF" for a PDF.
    std::string subtitle;
    std::string bundleIdentifier;
    std::optional<std::string> hostname;
    std::optional<std::string> browserBundleIdentifier;
    std::optional<Uuid> pdfIdentifier;
    std::size_t segmentCount = 0;
    double totalDuration = 0.0;  // seconds
    std::size_t sessionCount = 0;
    std::set<Uuid> sessionIDs;
};

std::string_view rawValue(UnclassifiedActivityGroup::Kind kind);

// The groups of `tallies` whose activity `lookup` still leaves unclassified,
// longest total first (then by title, then id, so the order is stable).
std::vector<UnclassifiedActivityGroup> unclassifiedActivityGroups(
    const std::vector<UnclassifiedActivityTally>& tallies,
    const classification::ClassificationLookup& lookup);

}  // namespace lumenote::recording
