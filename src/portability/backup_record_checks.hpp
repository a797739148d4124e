// The checks every decoded record of a backup must pass before anything is
// restored: the bounds of BackupValidationLimits, well-formed rules, text
// without control characters, and confirmations in force that do not
// overlap. Pure functions over decoded values.
//
// Beyond the bounds themselves:
// - A session must be finished: its status may not be "running" or "paused"
//   and it must have an end date. A backup is only made while no session is
//   active, and a restored live session would block every change to the
//   history as an active session does. Other status texts (a later
//   release's) are kept, as the store keeps them.
// - Free texts (subject, goal, notes) may hold tabs and line breaks; no text
//   may hold other control characters (C0, DEL or C1), which a terminal
//   would obey rather than show. Texts are UTF-8 by then (the decoder
//   refuses anything else).
// - Raw enumeration values a release does not know are accepted when they
//   fit the identifier bound, as the store accepts them; rules must name one
//   of the five classifications, and a website rule's hostname must be
//   normalised (normalizedHostname() leaves it unchanged).
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "portability/backup_error.hpp"
#include "portability/backup_records.hpp"
#include "portability/backup_validation_limits.hpp"

namespace lumenote::portability {

// Whether `text` holds no control characters; `freeText` allows tab, line
// feed and carriage return.
bool isAcceptableText(std::string_view text, bool freeText);

// The first bound the session or one of its children breaks, in this order:
// the per-session counts, the session's own members, its segments, its
// confirmations, its PDF identities; nullopt when it keeps them all.
std::optional<TallywiseBackupError> checkSession(const BackupSession& session,
                                                 const BackupValidationLimits& limits);
std::optional<TallywiseBackupError> checkApplicationRule(const BackupApplicationRule& rule,
                                                         const BackupValidationLimits& limits);
std::optional<TallywiseBackupError> checkWebsiteRule(const BackupWebsiteRule& rule,
                                                     const BackupValidationLimits& limits);
// The document's own members: the app version, the creation date and the
// appearance's text.
std::optional<TallywiseBackupError> checkMetadata(const BackupDocumentSummary& document,
                                                  const BackupValidationLimits& limits);

// The first confirmation in force that shares more than `tolerance` seconds
// with an earlier-starting one in force of another state (equal starts keep
// their order); nullopt when none does. Confirmations of the same state may
// overlap: the recorder stores such pairs itself and counts their time once.
std::optional<Uuid> firstOverlappingConfirmation(
    const std::vector<BackupConfirmedInterval>& intervals, double tolerance);

// How many of the session's records (itself included) carry a raw value
// that names no case this release knows.
std::size_t recordsWithUnknownValues(const BackupSession& session);

}  // namespace lumenote::portability
