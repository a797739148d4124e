// Changing the class of one activity within one finished session: the
// session's segments of that activity take the new class and its stored
// totals are recomputed under its own calculation version. No rule is
// written, so later recordings keep classifying the activity as before.
// Pure functions over plain values; SessionHistory saves the outcome.
#pragma once

#include <optional>
#include <string>

#include "classification/classification_enumerations.hpp"
#include "foundation/result.hpp"
#include "foundation/uuid.hpp"
#include "recording/session_records.hpp"

namespace lumenote::recording {

// What a class change reaches, keyed as the rules key it: an application
// (also a browser recorded without a page) by its bundle identifier, a
// website by its hostname, a local PDF by its identity.
struct ClassifiedActivity {
    enum class Kind { application, website, localPDF };
    Kind kind = Kind::application;
    // The application, or the browser that showed the page or PDF.
    std::string bundleIdentifier;
    // The activity as the replay titles it (recording::segmentTitle).
    std::string name;
    std::optional<std::string> hostname;
    std::optional<Uuid> pdfIdentifier;

    friend bool operator==(const ClassifiedActivity&, const ClassifiedActivity&) = default;
};

// The activity of a segment of computer activity; nullopt for time without
// input and for system stretches (the computer asleep), which have no class
// of their own to change, and for a website or PDF whose key was not
// recorded.
std::optional<ClassifiedActivity> classifiedActivityOf(const ActivitySegment& segment);

enum class ReclassificationError {
    // The session is read under v1 (or has no or an unknown version): its
    // stored totals are kept as they were shown, never recomputed.
    firstMethodSession,
};

// `session` (loaded with its segments and confirmations) with every segment
// of computer activity of `activity` given `classification`, and its stored
// totals, score and coverage recomputed under its own version up to its end
// date. Time without input keeps its class: it counts as no input whatever
// was in front. A session without such a segment comes back unchanged.
Result<StudySession, ReclassificationError> reclassifyActivity(
    StudySession session, const ClassifiedActivity& activity,
    classification::ActivityClassification classification);

}  // namespace lumenote::recording
