#include "platform/linux/system_event_source.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace lumenote::platform::linux_desktop {
namespace {

SystemEventSourceStatus everything() {
    SystemEventSourceStatus status;
    status.systemBusAvailable = true;
    status.logindAvailable = true;
    status.sessionFound = true;
    status.sessionPath = "/org/freedesktop/login1/session/c2";
    status.inhibitorHeld = true;
    status.sessionBusAvailable = true;
    status.screenSaverAvailable = true;
    return status;
}

TEST(SystemEventGaps, AMissingBusOrServiceHidesWhatDependsOnIt) {
    using G = SystemEventGap;
    struct Case {
        const char* label;
        void (*change)(SystemEventSourceStatus&);
        std::vector<G> gaps;
    };
    const std::vector<Case> cases{
        {"everything there", [](SystemEventSourceStatus&) {}, {}},
        {"no system bus",
         [](SystemEventSourceStatus& s) {
             s = everything();
             s.systemBusAvailable = false;
             s.logindAvailable = s.sessionFound = s.inhibitorHeld = false;
         },
         {G::noSystemBus}},
        {"no logind",
         [](SystemEventSourceStatus& s) {
             s.logindAvailable = s.sessionFound = s.inhibitorHeld = false;
         },
         {G::noLogind}},
        {"no session, inhibitor held",
         [](SystemEventSourceStatus& s) { s.sessionFound = false; },
         {G::noLogindSession}},
        {"session, inhibitor refused",
         [](SystemEventSourceStatus& s) { s.inhibitorHeld = false; },
         {G::noInhibitor}},
        {"neither session nor inhibitor",
         [](SystemEventSourceStatus& s) { s.sessionFound = s.inhibitorHeld = false; },
         {G::noLogindSession, G::noInhibitor}},
        {"no screen saver",
         [](SystemEventSourceStatus& s) { s.screenSaverAvailable = false; },
         {G::noScreenSaver}},
        {"no session bus",
         [](SystemEventSourceStatus& s) { s.sessionBusAvailable = s.screenSaverAvailable = false; },
         {G::noSessionBus}},
        {"no buses at all",
         [](SystemEventSourceStatus& s) { s = SystemEventSourceStatus{}; },
         {G::noSystemBus, G::noSessionBus}},
    };
    for (const Case& test : cases) {
        SystemEventSourceStatus status = everything();
        test.change(status);
        EXPECT_EQ(systemEventGaps(status), test.gaps) << test.label;
    }
}

TEST(SystemEventGaps, EachGapHasItsOwnSentence) {
    std::set<std::string> sentences;
    for (const SystemEventGap gap : {SystemEventGap::noSystemBus, SystemEventGap::noLogind,
                                     SystemEventGap::noLogindSession, SystemEventGap::noInhibitor,
                                     SystemEventGap::noSessionBus, SystemEventGap::noScreenSaver}) {
        const std::string sentence = systemEventGapMessage(gap);
        EXPECT_FALSE(sentence.empty());
        EXPECT_EQ(sentence.back(), '.') << sentence;
        EXPECT_TRUE(sentences.insert(sentence).second) << sentence;
    }
}

}  // namespace
}  // namespace lumenote::platform::linux_desktop
