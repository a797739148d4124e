#include "classification/starter_suggestions.hpp"

#include <array>
#include <initializer_list>
#include <unordered_map>

#include "classification/linux_starter_applications.hpp"
#include "classification/rule_keys.hpp"

namespace lumenote::classification {
namespace {

using namespace starter_tables;

constexpr std::array<StarterRule, 26> kWebsiteRules{{
    {"docs.google.com", "Google Docs", kFocused},
    {"classroom.google.com", "Google Classroom", kFocused},
    {"scholar.google.com", "Google Scholar", kFocused},
    {"desmos.com", "Desmos", kFocused},
    {"overleaf.com", "Overleaf", kFocused},
    {"khanacademy.org", "Khan Academy", kFocused},
    {"coursera.org", "Coursera", kFocused},
    {"edx.org", "edX", kFocused},
    {"quizlet.com", "Quizlet", kFocused},
    {"ankiweb.net", "AnkiWeb", kFocused},
    {"notion.so", "Notion", kFocused},
    {"github.com", "GitHub", kFocused},
    {"wolframalpha.com", "WolframAlpha", kFocused},
    {"wikipedia.org", "Wikipedia", kNeutral},
    {"chatgpt.com", "ChatGPT", kNeutral},
    {"claude.ai", "Claude", kNeutral},
    {"zoom.us", "Zoom", kNeutral},
    {"teams.microsoft.com", "Microsoft Teams", kNeutral},
    {"mail.google.com", "Gmail", kNeutral},
    {"calendar.google.com", "Google Calendar", kNeutral},
    {"drive.google.com", "Google Drive", kNeutral},
    {"discord.com", "Discord", kNeutral},
    {"instagram.com", "Instagram", kDistracting},
    {"tiktok.com", "TikTok", kDistracting},
    {"netflix.com", "Netflix", kDistracting},
    {"twitch.tv", "Twitch", kDistracting},
}};

constexpr std::array<StarterRule, 27> kApplicationRules{{
    {"com.microsoft.Word", "Microsoft Word", kFocused},
    {"com.microsoft.Excel", "Microsoft Excel", kFocused},
    {"com.microsoft.Powerpoint", "Microsoft PowerPoint", kFocused},
    {"com.microsoft.onenote.mac", "Microsoft OneNote", kFocused},
    {"com.apple.iWork.Pages", "Pages", kFocused},
    {"com.apple.iWork.Numbers", "Numbers", kFocused},
    {"com.apple.iWork.Keynote", "Keynote", kFocused},
    {"com.apple.Preview", "Preview", kFocused},
    {"com.apple.Notes", "Notes", kFocused},
    {"com.apple.dt.Xcode", "Xcode", kFocused},
    {"net.ankiweb.dtop", "Anki", kFocused},
    {"md.obsidian", "Obsidian", kFocused},
    {"notion.id", "Notion", kFocused},
    {"com.openai.chat", "ChatGPT", kNeutral},
    {"com.anthropic.claudefordesktop", "Claude", kNeutral},
    {"us.zoom.xos", "Zoom", kNeutral},
    {"com.microsoft.teams2", "Microsoft Teams", kNeutral},
    {"com.microsoft.teams", "Microsoft Teams (classic)", kNeutral},
    {"com.apple.mail", "Mail", kNeutral},
    {"com.apple.MobileSMS", "Messages", kNeutral},
    {"net.whatsapp.WhatsApp", "WhatsApp", kNeutral},
    {"com.tinyspeck.slackmacgap", "Slack", kNeutral},
    {"com.burbn.instagram", "Instagram", kDistracting},
    {"com.zhiliaoapp.musically", "TikTok", kDistracting},
    {"com.netflix.Netflix", "Netflix", kDistracting},
    {"tv.twitch", "Twitch", kDistracting},
    {"com.valvesoftware.steam", "Steam", kDistracting},
}};

const std::unordered_map<std::string, ActivityClassification>& applicationRulesByLowercasedKey() {
    static const auto rules = [] {
        std::unordered_map<std::string, ActivityClassification> map;
        for (const auto table : {starterApplicationRules(), linuxStarterApplicationRules()}) {
            for (const StarterRule& rule : table) {
                map.emplace(asciiLowercased(rule.key), rule.classification);
            }
        }
        return map;
    }();
    return rules;
}

std::vector<StarterClassificationRow> rowsOf(std::span<const StarterRule> rules) {
    std::vector<StarterClassificationRow> rows;
    rows.reserve(rules.size());
    for (const StarterRule& rule : rules) {
        rows.push_back({std::string(rule.displayName), std::string(rule.key), rule.classification});
    }
    return rows;
}

bool hostnameMatches(std::string_view hostname, std::string_view ruleHostname) {
    if (hostname == ruleHostname) {
        return true;
    }
    return hostname.size() > ruleHostname.size() && hostname.ends_with(ruleHostname) &&
           hostname[hostname.size() - ruleHostname.size() - 1] == '.';
}

}  // namespace

std::span<const StarterRule> starterWebsiteRules() {
    return kWebsiteRules;
}

std::span<const StarterRule> starterApplicationRules() {
    return kApplicationRules;
}

std::vector<StarterClassificationRow> starterWebsiteRows() {
    return rowsOf(kWebsiteRules);
}

std::vector<StarterClassificationRow> starterApplicationRows() {
    return rowsOf(kApplicationRules);
}

std::vector<StarterClassificationRow> linuxStarterApplicationRows() {
    return rowsOf(linuxStarterApplicationRules());
}

std::string recognisedByDefaultText(std::size_t count) {
    return std::to_string(count) + " recognised by default";
}

std::optional<ActivityClassification> starterWebsiteClassification(std::string_view hostname) {
    return starterWebsiteMatch(normalizedHostname(hostname));
}

std::optional<ActivityClassification> starterWebsiteMatch(std::string_view normalized) {
    if (normalized.empty()) {
        return std::nullopt;
    }
    for (const StarterRule& rule : kWebsiteRules) {
        if (hostnameMatches(normalized, rule.key)) {
            return rule.classification;
        }
    }
    return std::nullopt;
}

std::optional<ActivityClassification> starterApplicationClassification(
    std::string_view bundleIdentifier) {
    const auto& rules = applicationRulesByLowercasedKey();
    const auto found = rules.find(asciiLowercased(bundleIdentifier));
    if (found == rules.end()) {
        return std::nullopt;
    }
    return found->second;
}

bool isStarterApplicationKey(std::string_view bundleIdentifier) {
    for (const auto table : {starterApplicationRules(), linuxStarterApplicationRules()}) {
        for (const StarterRule& rule : table) {
            if (rule.key == bundleIdentifier) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace lumenote::classification
