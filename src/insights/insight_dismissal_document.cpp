#include "insights/insight_dismissal_document.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace lumenote::insights {

namespace {

std::optional<std::string> nonEmptyString(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end() || !found->is_string() ||
        found->get_ref<const std::string&>().empty()) {
        return std::nullopt;
    }
    return found->get<std::string>();
}

std::optional<InsightDismissalRecord> decodeRecord(const nlohmann::json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    const auto key = json.find("key");
    if (key == json.end() || !key->is_object()) {
        return std::nullopt;
    }
    auto id = nonEmptyString(*key, "insightID");
    auto revision = nonEmptyString(*key, "evidenceRevision");
    const auto dismissedAtText = nonEmptyString(json, "dismissedAt");
    const auto dismissedAt = dismissedAtText ? parseIso8601(*dismissedAtText) : std::nullopt;
    if (!id || !revision || !dismissedAt) {
        return std::nullopt;
    }
    return InsightDismissalRecord{{std::move(*id), std::move(*revision)}, *dismissedAt};
}

}  // namespace

std::string encodeInsightDismissalDocument(const InsightDismissalDocument& document) {
    nlohmann::json records = nlohmann::json::array();
    for (const InsightDismissalRecord& record : document.records) {
        records.push_back(
            {{"key",
              {{"insightID", record.key.insightID},
               {"evidenceRevision", record.key.evidenceRevision}}},
             {"dismissedAt", formatIso8601(record.dismissedAt, {.fractionalSeconds = true})}});
    }
    const nlohmann::json root{{"formatVersion", document.formatVersion}, {"records", records}};
    return root.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::optional<InsightDismissalDocument> decodeInsightDismissalDocument(std::string_view text) {
    const nlohmann::json root = nlohmann::json::parse(text, nullptr, false);
    if (root.is_discarded() || !root.is_object()) {
        return std::nullopt;
    }
    const auto records = root.find("records");
    if (records == root.end() || !records->is_array()) {
        return std::nullopt;
    }
    InsightDismissalDocument document;
    for (const nlohmann::json& json : *records) {
        auto record = decodeRecord(json);
        if (!record) {
            return std::nullopt;
        }
        document.records.push_back(std::move(*record));
    }
    return document;
}

bool containsDismissal(const std::vector<InsightDismissalRecord>& records,
                       std::string_view insightID, std::string_view evidenceRevision) {
    return std::any_of(records.begin(), records.end(), [&](const InsightDismissalRecord& record) {
        return record.key.insightID == insightID && record.key.evidenceRevision == evidenceRevision;
    });
}

}  // namespace lumenote::insights
