#include "recording/tracking_calculation_version.hpp"

namespace lumenote::recording {

std::optional<TrackingCalculationVersion> trackingCalculationVersionFromRaw(long long raw) {
    switch (raw) {
        case 1:
            return TrackingCalculationVersion::v1;
        case 2:
            return TrackingCalculationVersion::v2;
        case 3:
            return TrackingCalculationVersion::v3;
        default:
            return std::nullopt;
    }
}

std::optional<std::string_view> explanationText(TrackingCalculationVersion version) {
    switch (version) {
        case TrackingCalculationVersion::v1:
            return std::nullopt;
        case TrackingCalculationVersion::v2:
            return "Calculation v2 reconciles overlapping activity and limits totals to "
                   "accountable session duration.";
        case TrackingCalculationVersion::v3:
            return "Calculation v3 keeps the v2 computer focus score unchanged and reports "
                   "confirmed off-Mac study and Break time separately.";
    }
    return std::nullopt;
}

}  // namespace lumenote::recording
