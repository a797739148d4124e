// The rule for moments with no application in front, over sequences of
// samples: what each sample records and since when.
#include "recording/frontmost_gaps.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace lumenote::recording {
namespace {

TrackingInstant at(double seconds) {
    return {Date{5000 + seconds}, seconds};
}

// One sample: what the source reports ("" for nothing in front) at a moment.
struct Sample {
    double time;
    std::string reported;
};

// What a sample counts as: the bundle recorded ("" for none) and the moment
// since which it has been in front, when that lies in the past (-1: none).
struct Counted {
    std::string recorded;
    double since = -1;

    friend bool operator==(const Counted&, const Counted&) = default;
};

std::ostream& operator<<(std::ostream& out, const Counted& counted) {
    return out << "\"" << counted.recorded << "\" since " << counted.since;
}

std::vector<Counted> countAll(const std::vector<Sample>& samples, FrontmostMemory memory = {}) {
    std::vector<Counted> counted;
    for (const Sample& sample : samples) {
        std::optional<FrontmostApplication> reported;
        if (!sample.reported.empty()) {
            reported = FrontmostApplication{sample.reported + " name", sample.reported};
        }
        const FrontmostReading reading = readFrontmost(memory, reported, at(sample.time));
        memory = reading.memory;
        Counted one{reading.application ? reading.application->bundleIdentifier : ""};
        if (reading.inFrontSince) {
            EXPECT_EQ(*reading.inFrontSince, at(reading.inFrontSince->monotonicTime))
                << "the wall date belongs to the same sample";
            one.since = reading.inFrontSince->monotonicTime;
        }
        counted.push_back(one);
    }
    return counted;
}

TEST(FrontmostGapsTest, SequencesOfSamples) {
    struct Case {
        const char* what;
        std::vector<Sample> samples;
        std::vector<Counted> expected;
    };
    const std::vector<Case> cases{
        {"named applications are recorded from their sample",
         {{0, "editor"}, {3, "video"}},
         {{"editor"}, {"video"}}},
        {"a switch through a gap begins where the gap began",
         {{0, "editor"}, {10, ""}, {10.3, "video"}},
         {{"editor"}, {"editor"}, {"video", 10}}},
        {"a sample inside a gap shorter than the tolerance holds the last application",
         {{0, "editor"}, {10.5, ""}, {11, ""}, {11.499, ""}, {11.6, "video"}},
         {{"editor"}, {"editor"}, {"editor"}, {"editor"}, {"video", 10.5}}},
        {"a gap reaching the tolerance at a sample is a stretch from its first sample",
         {{0, "editor"}, {10, ""}, {10.5, ""}, {11, ""}},
         {{"editor"}, {"editor"}, {"editor"}, {"", 10}}},
        {"after becoming a stretch, a gap neither reaches back again nor delays the next",
         {{0, "editor"}, {10, ""}, {11.2, ""}, {12.2, ""}, {13.7, "video"}},
         {{"editor"}, {"editor"}, {"", 10}, {""}, {"video"}}},
        {"the next gap is bridged again",
         {{0, "editor"}, {10, ""}, {11, ""}, {13, "video"}, {20, ""}, {20.2, "editor"}},
         {{"editor"}, {"editor"}, {"", 10}, {"video"}, {"video"}, {"editor", 20}}},
        {"the same application back after a moment",
         {{0, "editor"}, {10, ""}, {10.4, "editor"}},
         {{"editor"}, {"editor"}, {"editor", 10}}},
        {"nothing named yet: no application at once, bridged all the same",
         {{0, ""}, {0.4, "editor"}},
         {{""}, {"editor", 0}}},
        {"nothing named ever: no application, from the first sample",
         {{0, ""}, {1, ""}, {2, ""}},
         {{""}, {"", 0}, {""}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(countAll(c.samples), c.expected);
    }
}

}  // namespace
}  // namespace lumenote::recording
