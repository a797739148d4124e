// The effective classification of an application or a website: the session
// manager's in-memory caches of the stored rules and the session-only
// overrides, consulted in a fixed order before the starter tables.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "classification/classification_enumerations.hpp"
#include "classification/classification_records.hpp"
#include "foundation/uuid.hpp"

namespace lumenote::classification {

// Bundle identifier of the pseudo activity recorded while the system sleeps.
inline constexpr std::string_view kSystemSleepBundleIdentifier = "com.apple.system.sleep";

// Owned by the session manager, which loads it from the store at start-up and
// writes each cache entry after the store has saved the matching record. It
// does no I/O and never reads a clock; all calls come from the main thread.
class ClassificationLookup {
  public:
    using RuleCache = std::map<std::string, ActivityClassification, std::less<>>;
    using TabOverrides = std::unordered_map<Uuid, ActivityClassification>;

    // `ownBundleIdentifier` is the recorder's own; activity of it is ignored.
    explicit ClassificationLookup(std::string ownBundleIdentifier);

    // The effective classification of a website, never empty:
    // 1. the override chosen for this browser tab in this session;
    // 2. the user's stored rule for the normalised hostname;
    // 3. the starter website table;
    // 4. unclassified.
    // An empty or white-space hostname has no rule and no suggestion.
    ActivityClassification websiteClassification(std::string_view hostname,
                                                 std::optional<Uuid> tabSessionIdentifier) const;

    // The effective classification of an application:
    // 1. ignored for the recorder itself (its own bundle identifier, its names
    //    "Tallywise" and "Lumenote") and for system sleep, whatever any rule says;
    // 2. the override chosen for this session (exact bundle identifier);
    // 3. the user's stored rule (exact bundle identifier, letter case included);
    // 4. the starter application tables, the fixed one and the Linux one
    //    (any letter case);
    // 5. unclassified.
    ActivityClassification applicationClassification(std::string_view bundleIdentifier,
                                                     std::string_view applicationName) const;

    // Replace a cache with every stored rule of its kind. Records are keyed as
    // stored (website hostnames were normalised when saved and are not
    // normalised again). A record whose classification text names no case (a
    // later version's) is skipped, so the starter suggestion still applies.
    // Should the store hold two records for one key, the later `updatedAt` wins.
    void loadApplicationRules(std::span<const AppClassification> records);
    void loadWebsiteRules(std::span<const WebsiteClassification> records);

    // Write one cache entry after its record was saved. `normalizedHostname`
    // is the key the record was saved under (see normalizedHostname()); an
    // empty key is not a website and is not cached.
    void setApplicationRule(std::string bundleIdentifier, ActivityClassification classification);
    void setWebsiteRule(std::string normalizedHostname, ActivityClassification classification);

    // Forget one cache entry after its record was deleted.
    void removeApplicationRule(std::string_view bundleIdentifier);
    void removeWebsiteRule(std::string_view normalizedHostname);

    // Empty a cache after every record of its kind was deleted.
    void clearApplicationRules() { classificationCache_.clear(); }
    void clearWebsiteRules() { websiteClassificationCache_.clear(); }

    // Session-only choices, for the running session alone.
    void setSessionApplicationOverride(std::string bundleIdentifier,
                                       ActivityClassification classification);
    void setTabOverride(Uuid tabSessionIdentifier, ActivityClassification classification);
    // Forgets both kinds of session-only choice (at the end of each session and
    // when every session is deleted).
    void clearSessionOverrides();

    const std::string& ownBundleIdentifier() const { return ownBundleIdentifier_; }
    const RuleCache& classificationCache() const { return classificationCache_; }
    const RuleCache& websiteClassificationCache() const { return websiteClassificationCache_; }
    const RuleCache& sessionApplicationClassificationOverrides() const {
        return sessionApplicationClassificationOverrides_;
    }
    const TabOverrides& tabClassificationOverrides() const { return tabClassificationOverrides_; }

  private:
    bool isRecorderOrSleep(std::string_view bundleIdentifier,
                           std::string_view applicationName) const;

    std::string ownBundleIdentifier_;
    RuleCache classificationCache_;
    RuleCache websiteClassificationCache_;
    RuleCache sessionApplicationClassificationOverrides_;
    TabOverrides tabClassificationOverrides_;
};

}  // namespace lumenote::classification
