// The two fixed starter tables that classify well-known study and distraction
// websites and applications until the user rules on them, the Linux
// application table beside them (see linux_starter_applications.hpp), and the
// rows the settings screen lists them with.
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

// Short names for the classification column of the starter tables.
namespace starter_tables {
inline constexpr auto kFocused = ActivityClassification::focused;
inline constexpr auto kNeutral = ActivityClassification::neutral;
inline constexpr auto kDistracting = ActivityClassification::distracting;
}  // namespace starter_tables

// The 26 website rows in the order they are consulted.
std::span<const StarterRule> starterWebsiteRules();
// The 27 application rows, keyed by bundle identifier, in the order the
// settings screen lists them. The Linux rows are not among them.
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
std::vector<StarterClassificationRow> linuxStarterApplicationRows();

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

// The suggestion for an application from the fixed table or the Linux table
// (they share no key), matched in any letter case: both are held as one map
// keyed by lowercased identifiers, built on first use.
std::optional<ActivityClassification> starterApplicationClassification(
    std::string_view bundleIdentifier);

// Whether a row of either application table has exactly this key, letter case
// included: the spelling a stored rule needs to match what the row stands for.
bool isStarterApplicationKey(std::string_view bundleIdentifier);

}  // namespace lumenote::classification
