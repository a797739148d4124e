// The two fixed starter tables that classify well-known study and distraction
// websites and applications until the user rules on them, and the rows the
// settings screen lists them with.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "classification/classification_enumerations.hpp"

namespace lumenote::classification {

// One row of a starter table: a hostname or a bundle identifier, the name the
// settings screen shows and the suggested classification (only focused,
// distracting or neutral). The tables are compiled in and never stored; any
// stored rule for the same key replaces the suggestion.
struct StarterRule {
    std::string_view key;
    std::string_view displayName;
    ActivityClassification classification;
};

// The 26 website rows in the order they are consulted.
std::span<const StarterRule> starterWebsiteRules();
// The 27 application rows in the order the settings screen lists them.
std::span<const StarterRule> starterApplicationRules();

// A row of the settings list: `detail` is the hostname or bundle identifier.
struct StarterClassificationRow {
    std::string name;
    std::string detail;
    ActivityClassification classification = ActivityClassification::unclassified;

    friend bool operator==(const StarterClassificationRow&,
                           const StarterClassificationRow&) = default;
};

inline constexpr std::string_view kStarterSuggestionsHeading = "Starter suggestions";

std::vector<StarterClassificationRow> starterWebsiteRows();
std::vector<StarterClassificationRow> starterApplicationRows();

// "26 recognised by default": the count of rows followed by that literal.
std::string recognisedByDefaultText(std::size_t count);

// The suggestion for a website: the hostname is normalised, then the rows are
// walked in order and the first whose hostname equals it, or is preceded in it
// by ".", wins (en.wikipedia.org matches wikipedia.org; notwikipedia.org does
// not). nullopt when no row matches or the normalised hostname is empty.
std::optional<ActivityClassification> starterWebsiteClassification(std::string_view hostname);

// The same walk for a hostname that is already normalised; it is not
// normalised again (that would drop a second final dot).
std::optional<ActivityClassification> starterWebsiteMatch(std::string_view normalizedHostname);

// The suggestion for an application, matched in any letter case: the table is
// held as a map keyed by lowercased bundle identifiers, built on first use.
std::optional<ActivityClassification> starterApplicationClassification(
    std::string_view bundleIdentifier);

}  // namespace lumenote::classification
