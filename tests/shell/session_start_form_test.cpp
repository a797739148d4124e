// The panel's start form: the request it makes, where a refusal belongs, the
// templates offered for one-click starts and what a start leaves remembered.
#include "shell/session_start_form.hpp"

#include <gtest/gtest.h>

#include "settings/in_memory_defaults_domain.hpp"

namespace lumenote::shell {
namespace {

using recording::SessionTimingMode;

SessionStartForm form(std::string subject, std::string minutes,
                      SessionTimingMode timing = SessionTimingMode::timer) {
    SessionStartForm made;
    made.subject = std::move(subject);
    made.durationMinutes = std::move(minutes);
    made.timingMode = timing;
    return made;
}

TEST(SessionStartFormRequest, DurationsAreWholeMinutesWithinTheManagersLimits) {
    auto made = sessionStartRequest(form("Biology", " 50 "));
    ASSERT_TRUE(made.ok());
    EXPECT_DOUBLE_EQ(made->plannedDuration, 3000.0);
    EXPECT_EQ(made->subject, "Biology");
    EXPECT_TRUE(sessionStartRequest(form("Biology", "1440")).ok());
    for (const char* bad : {"", "abc", "2.5", "25min", "99999999999999999999"}) {
        auto refused = sessionStartRequest(form("Biology", bad));
        ASSERT_FALSE(refused.ok()) << bad;
        EXPECT_EQ(refused.error().field, FormField::duration) << bad;
        EXPECT_EQ(refused.error().message, "Enter the duration as whole minutes.") << bad;
    }
    for (const char* outOfRange : {"0", "-5", "1441"}) {
        auto refused = sessionStartRequest(form("Biology", outOfRange));
        ASSERT_FALSE(refused.ok()) << outOfRange;
        EXPECT_EQ(refused.error().field, FormField::duration);
        EXPECT_EQ(refused.error().message,
                  recording::sessionFailureMessage(recording::SessionFailure::invalidDuration));
    }
}

TEST(SessionStartFormRequest, OpenEndedIgnoresTheDurationAndSubjectsAreChecked) {
    EXPECT_TRUE(sessionStartRequest(form("History", "oops", SessionTimingMode::openEnded)).ok());
    auto missing = sessionStartRequest(form("  ", "25"));
    ASSERT_FALSE(missing.ok());
    EXPECT_EQ(missing.error().field, FormField::subject);
    EXPECT_EQ(missing.error().message, "Add a subject.");
    auto tooLong = sessionStartRequest(form(std::string(201, 'x'), "25"));
    ASSERT_FALSE(tooLong.ok());
    EXPECT_EQ(tooLong.error().field, FormField::subject);
    // A subject refusal comes before a duration refusal only when the
    // duration is a number: a bad number is reported first.
    EXPECT_EQ(sessionStartRequest(form("", "x")).error().field, FormField::duration);
}

TEST(SessionStartFormRefusals, BelongBesideTheirFields) {
    using recording::SessionFailure;
    EXPECT_EQ(fieldOfFailure(SessionFailure::subjectMissing), FormField::subject);
    EXPECT_EQ(fieldOfFailure(SessionFailure::subjectTooLong), FormField::subject);
    EXPECT_EQ(fieldOfFailure(SessionFailure::goalTooLong), FormField::goal);
    EXPECT_EQ(fieldOfFailure(SessionFailure::invalidDuration), FormField::duration);
    EXPECT_EQ(fieldOfFailure(SessionFailure::recoveryPending), FormField::wholeForm);
    EXPECT_EQ(fieldOfFailure(SessionFailure::sessionAlreadyActive), FormField::wholeForm);
}

TEST(QuickStartTemplates, EnabledOnlyFavouritesFirstThenTheUsersOrder) {
    std::vector<settings::SessionTemplate> templates(5);
    const char* names[] = {"a", "b", "c", "d", "e"};
    for (std::size_t i = 0; i < templates.size(); ++i) {
        templates[i].name = names[i];
        templates[i].manualSortOrder = static_cast<long long>(10 - i);
    }
    templates[1].isEnabled = false;
    templates[3].isFavorite = true;
    const auto offered = quickStartTemplates(templates, 3);
    ASSERT_EQ(offered.size(), 3u);
    EXPECT_EQ(offered[0]->name, "d");
    EXPECT_EQ(offered[1]->name, "e");
    EXPECT_EQ(offered[2]->name, "c");
    EXPECT_TRUE(quickStartTemplates(templates, 0).empty());
}

TEST(SessionStartFormMemory, FillsFromPreferencesAndRemembersOnlyWhatIsAskedFor) {
    settings::InMemoryDefaultsDomain domain;
    settings::PreferencesStore preferences(domain);
    preferences.setDefaultDuration(2700.0);
    preferences.setDefaultSubject("Maths");
    const SessionStartForm initial = initialSessionStartForm(preferences);
    EXPECT_EQ(initial.subject, "Maths");
    EXPECT_EQ(initial.durationMinutes, "45");

    recording::SessionStartRequest request;
    request.subject = "  Physics ";
    request.goal = "Chapter 2";
    request.plannedDuration = 600.0;
    request.timingMode = SessionTimingMode::openEnded;
    rememberStartedSession(preferences, request);
    EXPECT_EQ(preferences.defaultSubject(), "Maths");
    EXPECT_EQ(preferences.lastTimingMode(), SessionTimingMode::openEnded);

    preferences.setRememberLastSubject(true);
    preferences.setRememberLastDuration(true);
    request.timingMode = SessionTimingMode::timer;
    rememberStartedSession(preferences, request);
    EXPECT_EQ(preferences.defaultSubject(), "Physics");
    EXPECT_EQ(preferences.defaultGoal(), "");
    EXPECT_DOUBLE_EQ(preferences.defaultDuration(), 600.0);
}

}  // namespace
}  // namespace lumenote::shell
