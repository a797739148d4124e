#include "ui/models/session_settings.hpp"

#include <gtest/gtest.h>

namespace lumenote::ui::models {
namespace {

settings::SessionTemplate chemistry() {
    settings::SessionTemplate sessionTemplate;
    sessionTemplate.name = "Deep work";
    sessionTemplate.subject = "Chemistry";
    sessionTemplate.duration = 3000.0;
    return sessionTemplate;
}

TEST(SessionSettings, TheDetailLineSaysLengthBreakAndWhetherItIsHidden) {
    settings::SessionTemplate sessionTemplate = chemistry();
    EXPECT_EQ(templateDetailText(sessionTemplate), "Chemistry \u00b7 50 min");
    sessionTemplate.breakDuration = 600.0;
    EXPECT_EQ(templateDetailText(sessionTemplate), "Chemistry \u00b7 50 min, break 10 min");
    sessionTemplate.setTimingMode(recording::SessionTimingMode::openEnded);
    sessionTemplate.isEnabled = false;
    EXPECT_EQ(templateDetailText(sessionTemplate),
              "Chemistry \u00b7 open end, break 10 min \u00b7 hidden from the panel");
}

TEST(SessionSettings, AnEntryRoundTripsThroughItsDraft) {
    settings::SessionTemplate sessionTemplate = chemistry();
    sessionTemplate.defaultGoal = "Chapter 4";
    sessionTemplate.breakDuration = 90.0;
    const TemplateEntry entry = templateEntry(sessionTemplate);
    EXPECT_EQ(entry.durationMinutes, "50");
    EXPECT_EQ(entry.breakMinutes, "1.5");
    const auto draft = templateDraft(entry);
    ASSERT_TRUE(draft.ok());
    EXPECT_EQ(draft->name, "Deep work");
    EXPECT_EQ(draft->defaultGoal, "Chapter 4");
    EXPECT_EQ(draft->duration, 3000.0);
    EXPECT_EQ(draft->breakDuration, 90.0);
    EXPECT_EQ(draft->timingMode, recording::SessionTimingMode::timer);

    const TemplateEntry fresh = templateEntry(std::nullopt);
    EXPECT_EQ(fresh.durationMinutes, "25");
    EXPECT_FALSE(fresh.hasBreak);
    EXPECT_FALSE(templateDraft(fresh)->breakDuration.has_value());
}

TEST(SessionSettings, NumbersThatAreNoneAreRefusedBeforeTheStoreSeesThem) {
    TemplateEntry entry = templateEntry(chemistry());
    entry.durationMinutes = "fifty";
    EXPECT_EQ(templateDraft(entry).error(), "Enter the duration in minutes.");
    entry.durationMinutes = "50";
    entry.hasBreak = true;
    entry.breakMinutes = "";
    EXPECT_EQ(templateDraft(entry).error(), "Enter the break in minutes.");
    // A break that is off is not read at all.
    entry.hasBreak = false;
    EXPECT_TRUE(templateDraft(entry).ok());
}

}  // namespace
}  // namespace lumenote::ui::models
