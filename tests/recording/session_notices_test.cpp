#include "recording/session_notices.hpp"

#include <gtest/gtest.h>

namespace lumenote::recording {
namespace {

TEST(SessionNoticesTest, TimerCompletionBodyNamesThePlannedDurationAndMaybeTheSubject) {
    struct Case {
        std::string_view subject;
        double planned;
        bool includeSubject;
        const char* body;
    };
    for (const Case& c : {
             Case{"Biology", 1500.0, true, "Biology: 25 min of study is complete."},
             Case{"Biology", 1500.0, false, "Your 25 min study session is complete."},
             Case{"Biology", 3900.0, false, "Your 1 h 5 min study session is complete."},
             // Whole hours drop the minutes; the minutes round half away from zero.
             Case{"Biology", 3600.0, true, "Biology: 1 h of study is complete."},
             Case{"Biology", 89.0, false, "Your 1 min study session is complete."},
             Case{"Biology", 86400.0, false, "Your 24 h study session is complete."},
             // Under a minute the seconds are shown.
             Case{"Biology", 45.0, true, "Biology: 45 s of study is complete."},
             // The subject is taken as it is: non-ASCII, punctuation, a colon.
             Case{"Ökologie: Kapitel 4", 1500.0, true,
                  "Ökologie: Kapitel 4: 25 min of study is complete."},
             // An empty subject never leaves a stray ": ".
             Case{"", 1500.0, true, "Your 25 min study session is complete."},
         }) {
        SCOPED_TRACE(c.body);
        const SessionNotice notice = timerCompletionNotice(c.subject, c.planned, c.includeSubject);
        EXPECT_EQ(notice.title, "Study session complete");
        EXPECT_EQ(notice.body, c.body);
    }
}

}  // namespace
}  // namespace lumenote::recording
