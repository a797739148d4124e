#include "ui/models/receipt_options.hpp"

#include "settings/preference_keys.hpp"

namespace lumenote::ui::models {

namespace keys = settings::preference_keys;

namespace {

bool readBool(settings::DefaultsDomain& defaults, std::string_view key, bool fallback) {
    return settings::asBool(defaults.object(key)).value_or(fallback);
}

}  // namespace

ReceiptOptions readReceiptOptions(settings::DefaultsDomain& defaults) {
    const ReceiptOptions fallback;
    return {
        .includeGoal = readBool(defaults, keys::receiptIncludeGoal, fallback.includeGoal),
        .includeExactTimes =
            readBool(defaults, keys::receiptIncludeExactTimes, fallback.includeExactTimes),
        .includeBranding =
            readBool(defaults, keys::receiptIncludeBranding, fallback.includeBranding),
        .includeSubjectSummary =
            readBool(defaults, keys::receiptIncludeSubjectSummary, fallback.includeSubjectSummary),
    };
}

void writeReceiptOptions(settings::DefaultsDomain& defaults, const ReceiptOptions& options) {
    defaults.set(keys::receiptIncludeGoal, options.includeGoal);
    defaults.set(keys::receiptIncludeExactTimes, options.includeExactTimes);
    defaults.set(keys::receiptIncludeBranding, options.includeBranding);
    defaults.set(keys::receiptIncludeSubjectSummary, options.includeSubjectSummary);
}

}  // namespace lumenote::ui::models
