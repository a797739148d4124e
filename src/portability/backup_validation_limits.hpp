// The bounds every history backup must meet before anything of it is
// written, sized for the heaviest realistic history with room to spare.
//
// The reference is ten years of heavy use: 20,000 sessions and 2,000,000
// activity segments (about 100 segments a session), whose backup takes
// 668 MB (measured with bench/backup_history_main.cpp). The segments and the
// file size may be three times that, the sessions five times; confirmations
// and PDF identities, rare in that history, may be half as many as segments.
// The per-session bounds allow a 24-hour session that switches activity
// every two seconds (43,200 segments); they also bound the memory a restore
// needs, since one session is decoded at a time (at most
// maximumSessionBytes of JSON). Text bounds are in UTF-8 bytes, four bytes
// for every character the editors allow (200 for a subject, 500 for a goal,
// 5,000 for notes). Dates must lie in 2000 to 2099 (UTC): a recorder never
// wrote anything else, so a date outside is damage, not history.
//
// Tolerances: a segment's duration is measured on the monotonic clock and its
// dates on the wall clock, which may be set right while the segment runs (a
// time-zone or daylight-saving mistake corrected by hand, a network time
// correction), so up to an hour of difference is history; more is damage.
// Two confirmations in force must not share more than a second.
#pragma once

#include <cstddef>

#include "foundation/dates.hpp"

namespace lumenote::portability {

struct BackupValidationLimits {
    std::size_t maximumSessions = 100'000;
    std::size_t maximumSegments = 6'000'000;
    std::size_t maximumSegmentsPerSession = 50'000;
    std::size_t maximumConfirmations = 3'000'000;
    std::size_t maximumConfirmationsPerSession = 10'000;
    std::size_t maximumPDFIdentities = 3'000'000;
    std::size_t maximumPDFIdentitiesPerSession = 10'000;
    std::size_t maximumApplicationRules = 10'000;
    std::size_t maximumWebsiteRules = 100'000;
    std::size_t maximumTotalRecords = 8'000'000;

    std::size_t maximumAppVersionBytes = 64;
    std::size_t maximumSubjectBytes = 800;
    std::size_t maximumGoalBytes = 2'000;
    std::size_t maximumNotesBytes = 20'000;
    std::size_t maximumApplicationNameBytes = 1'024;
    // Bundle identifiers, hostnames, raw enumeration values, the appearance.
    std::size_t maximumIdentifierBytes = 512;
    std::size_t maximumPDFLabelBytes = 1'024;

    Date earliestDate = Date::fromUnixSeconds(946'684'800.0);  // 2000-01-01T00:00:00Z
    Date latestDate = Date::fromUnixSeconds(4'102'444'800.0);  // 2100-01-01T00:00:00Z
    double maximumPlannedDuration = 86'400.0;                  // the longest timer
    double maximumSessionDuration = 31.0 * 86'400.0;           // end date minus start date
    double endpointDurationTolerance = 3'600.0;
    double intervalTolerance = 1.0;

    // The size limit checked before a file is read, in MB of 1,000,000 bytes.
    std::size_t maximumFileMegabytes = 2'000;
    // The largest JSON text of one session (or rule) that is decoded.
    std::size_t maximumSessionBytes = 64'000'000;
};

}  // namespace lumenote::portability
