// A JSON view of stored sessions under their public field names, for the
// command line and the scenario runner. Dates are ISO 8601 UTC with
// milliseconds; enumerations their raw text; absent optional values are left
// out.
#pragma once

#include <nlohmann/json.hpp>

#include "recording/session_records.hpp"

namespace lumenote::recording {

nlohmann::json segmentJson(const ActivitySegment& segment);
nlohmann::json confirmedIntervalJson(const ConfirmedNoInputInterval& interval);
// The session's own fields; with `includeChildren` also its `segments` and
// `confirmedNoInputIntervals` arrays.
nlohmann::json sessionJson(const StudySession& session, bool includeChildren);

}  // namespace lumenote::recording
