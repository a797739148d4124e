#include "platform/wayland/toplevel_tracker.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace lumenote::platform::wayland {
namespace {

enum class Kind { add, appId, state, done, closed, finished };

struct Step {
    Kind kind;
    ToplevelTracker::Handle toplevel = 0;
    std::string appId;
    bool activated = false;
};

Step add(ToplevelTracker::Handle toplevel) {
    return {Kind::add, toplevel};
}
Step appId(ToplevelTracker::Handle toplevel, std::string id) {
    return {Kind::appId, toplevel, std::move(id)};
}
Step state(ToplevelTracker::Handle toplevel, bool activated) {
    return {Kind::state, toplevel, {}, activated};
}
Step done(ToplevelTracker::Handle toplevel) {
    return {Kind::done, toplevel};
}
Step closed(ToplevelTracker::Handle toplevel) {
    return {Kind::closed, toplevel};
}
Step finished() {
    return {Kind::finished};
}

// A toplevel that appears with an app id and a state, as the compositor
// announces it.
std::vector<Step> appear(ToplevelTracker::Handle toplevel, std::string id, bool activated) {
    return {add(toplevel), appId(toplevel, std::move(id)), state(toplevel, activated),
            done(toplevel)};
}

std::vector<Step> operator+(std::vector<Step> first, const std::vector<Step>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

struct TrackerCase {
    const char* label;
    std::vector<Step> steps;
    // What done, closed and finished returned, in order.
    std::vector<bool> changes;
    std::optional<std::string> frontmost;
};

void PrintTo(const TrackerCase& test, std::ostream* stream) {
    *stream << test.label;
}

class ToplevelTrackerTest : public testing::TestWithParam<TrackerCase> {};

TEST_P(ToplevelTrackerTest, FollowsTheActiveToplevel) {
    const TrackerCase& test = GetParam();
    ToplevelTracker tracker;
    std::vector<bool> changes;
    for (const Step& step : test.steps) {
        switch (step.kind) {
            case Kind::add:
                tracker.added(step.toplevel);
                break;
            case Kind::appId:
                tracker.appIdChanged(step.toplevel, step.appId);
                break;
            case Kind::state:
                tracker.stateChanged(step.toplevel, step.activated);
                break;
            case Kind::done:
                changes.push_back(tracker.done(step.toplevel));
                break;
            case Kind::closed:
                changes.push_back(tracker.closed(step.toplevel));
                break;
            case Kind::finished:
                changes.push_back(tracker.finished());
                break;
        }
    }
    EXPECT_EQ(changes, test.changes);
    EXPECT_EQ(tracker.frontmostAppId(), test.frontmost);
}

INSTANTIATE_TEST_SUITE_P(
    Events, ToplevelTrackerTest,
    testing::Values(
        TrackerCase{"an activated toplevel is frontmost once done",
                    appear(1, "foot", true),
                    {true},
                    "foot"},
        TrackerCase{"nothing counts before done",
                    {add(1), appId(1, "foot"), state(1, true)},
                    {},
                    std::nullopt},
        TrackerCase{"an inactive toplevel is not frontmost",
                    appear(1, "foot", false),
                    {false},
                    std::nullopt},
        TrackerCase{"a toplevel without an app id is frontmost with an empty one",
                    {add(1), state(1, true), done(1)},
                    {true},
                    ""},
        //  a: ====|
        //  b:     |====   the old one leaves first: a moment with nothing active
        TrackerCase{"switch: the old one deactivated first",
                    appear(1, "a", true) + appear(2, "b", false) +
                        std::vector<Step>{state(1, false), done(1), state(2, true), done(2)},
                    {true, false, true, true},
                    "b"},
        //  a: ======|
        //  b:    |===     both active for a moment: the later activation wins
        TrackerCase{"switch: the new one activated first",
                    appear(1, "a", true) + appear(2, "b", false) +
                        std::vector<Step>{state(2, true), done(2), state(1, false), done(1)},
                    {true, false, true, false},
                    "b"},
        TrackerCase{"reactivating moves a toplevel to the front again",
                    appear(1, "a", true) + appear(2, "b", true) +
                        std::vector<Step>{state(1, false), done(1), state(1, true), done(1)},
                    {true, true, false, true},
                    "a"},
        TrackerCase{"another window of the same application is a change",
                    appear(1, "foot", true) + appear(2, "foot", true),
                    {true, true},
                    "foot"},
        TrackerCase{"a repeated state is no change",
                    appear(1, "a", true) + std::vector<Step>{state(1, true), done(1)},
                    {true, false},
                    "a"},
        TrackerCase{"the frontmost toplevel's new app id is a change",
                    appear(1, "a", true) + std::vector<Step>{appId(1, "a2"), done(1)},
                    {true, true},
                    "a2"},
        TrackerCase{"a background toplevel's new app id is no change",
                    appear(1, "a", true) + appear(2, "b", false) +
                        std::vector<Step>{appId(2, "b2"), done(2)},
                    {true, false, false},
                    "a"},
        TrackerCase{
            "app id and deactivation in one burst",
            appear(1, "a", true) + std::vector<Step>{appId(1, "a2"), state(1, false), done(1)},
            {true, true},
            std::nullopt},
        TrackerCase{"closing the frontmost toplevel leaves nothing in front",
                    appear(1, "a", true) + appear(2, "b", false) + std::vector<Step>{closed(1)},
                    {true, false, true},
                    std::nullopt},
        TrackerCase{"closing a background toplevel is no change",
                    appear(1, "a", true) + appear(2, "b", false) + std::vector<Step>{closed(2)},
                    {true, false, false},
                    "a"},
        TrackerCase{"closing the latest activation falls back to one still active",
                    appear(1, "a", true) + appear(2, "b", true) + std::vector<Step>{closed(2)},
                    {true, true, true},
                    "a"},
        TrackerCase{"finished forgets every toplevel",
                    appear(1, "a", true) + std::vector<Step>{finished()},
                    {true, true},
                    std::nullopt},
        TrackerCase{"finished with nothing in front is no change",
                    appear(1, "a", false) + std::vector<Step>{finished()},
                    {false, false},
                    std::nullopt},
        TrackerCase{"events for unknown toplevels are ignored",
                    appear(1, "a", true) +
                        std::vector<Step>{appId(9, "x"), state(9, true), done(9), closed(9)},
                    {true, false, false},
                    "a"},
        TrackerCase{"a closed toplevel's events are ignored",
                    appear(1, "a", true) + std::vector<Step>{closed(1), state(1, true), done(1)},
                    {true, true, false},
                    std::nullopt}));

TEST(ToplevelTrackerSizeTest, ForgetsClosedToplevels) {
    ToplevelTracker tracker;
    tracker.added(1);
    tracker.added(2);
    tracker.added(2);
    EXPECT_EQ(tracker.size(), 2u);
    tracker.closed(1);
    EXPECT_EQ(tracker.size(), 1u);
}

}  // namespace
}  // namespace lumenote::platform::wayland
