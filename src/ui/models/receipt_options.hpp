// What a receipt may show beyond its figures, as the user chose it: four
// switches kept in the defaults domain under the receipt keys.
#pragma once

#include "settings/defaults_domain.hpp"

namespace lumenote::ui::models {

// A missing or non-Boolean stored value reads as the default given here.
// The goal, the branding line and the subject summary are shown unless the
// user turns them off; exact start and end times are private by default (a
// shared receipt says the day, not when the student sat down).
struct ReceiptOptions {
    bool includeGoal = true;
    bool includeExactTimes = false;
    bool includeBranding = true;
    bool includeSubjectSummary = true;

    friend bool operator==(const ReceiptOptions&, const ReceiptOptions&) = default;
};

// The options stored in `defaults`, each key read on its own.
ReceiptOptions readReceiptOptions(settings::DefaultsDomain& defaults);

// Stores all four options as Booleans.
void writeReceiptOptions(settings::DefaultsDomain& defaults, const ReceiptOptions& options);

}  // namespace lumenote::ui::models
