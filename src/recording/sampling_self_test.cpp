#include "recording/sampling_self_test.hpp"

#include "recording/activity_timeline.hpp"

namespace lumenote::recording {

bool samplingPipelineSelfTest() {
    const Date start = Date::fromUnixSeconds(0);
    ActivityState first;
    first.applicationName = "Lumenote self-test";
    first.bundleIdentifier = "org.lumenote.SelfTest";
    ActivityState second = first;
    second.isInactive = true;

    ActivityTimelineEngine timeline;
    const auto opened = timeline.observe(first, {start, 10.0});
    const auto unchanged = timeline.observe(first, {start.addingSeconds(1), 11.0});
    const auto closedFirst = timeline.observe(second, {start.addingSeconds(2), 12.0});
    const auto closedSecond = timeline.finalize({start.addingSeconds(5), 15.0});
    return !opened && !unchanged && closedFirst && closedSecond && !timeline.openInterval() &&
           closedFirst->state == first && closedFirst->duration == 2.0 &&
           closedFirst->startDate == start && closedSecond->state == second &&
           closedSecond->duration == 3.0 && closedSecond->endDate == start.addingSeconds(5);
}

}  // namespace lumenote::recording
