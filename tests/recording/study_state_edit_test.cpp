#include "recording/study_state_edit.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace lumenote::recording {
namespace {

struct DurationCase {
    double seconds;
    const char* expected;
};

class StudyStateEditDurationTest : public ::testing::TestWithParam<DurationCase> {};

TEST_P(StudyStateEditDurationTest, Formats) {
    EXPECT_EQ(formatStudyStateEditDuration(GetParam().seconds), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, StudyStateEditDurationTest,
    ::testing::Values(DurationCase{0, "0 s"}, DurationCase{0.49, "0 s"}, DurationCase{0.5, "1 s"},
                      DurationCase{45, "45 s"}, DurationCase{59.4, "59 s"},
                      // 59.5 s rounds to a whole minute, not to "60 s".
                      DurationCase{59.5, "1 min"}, DurationCase{89, "1 min"},
                      DurationCase{90, "2 min"}, DurationCase{1500, "25 min"},
                      DurationCase{3569, "59 min"}, DurationCase{3570, "1 h"},
                      DurationCase{3900, "1 h 5 min"}, DurationCase{96000, "26 h 40 min"},
                      DurationCase{-30, "0 s"},
                      DurationCase{std::numeric_limits<double>::quiet_NaN(), "0 s"},
                      DurationCase{std::numeric_limits<double>::infinity(), "0 s"}));

TEST(StudyStateEditTest, DescriptionNamesTheNewState) {
    const Date start = Date{1000};
    StudyStateEdit edit{
        Uuid::generate(),          Uuid::generate(), start,
        start.addingSeconds(1500), std::nullopt,     ConfirmedStudyState::passiveStudy};
    EXPECT_EQ(studyStateEditDescription(edit), "25 min marked as Studying away from Mac");
    edit.newState = ConfirmedStudyState::confirmedBreak;
    edit.endDate = start.addingSeconds(3900);
    EXPECT_EQ(studyStateEditDescription(edit), "1 h 5 min marked as Break");
    edit.previousState = ConfirmedStudyState::confirmedBreak;
    edit.newState.reset();
    edit.endDate = start.addingSeconds(45);
    EXPECT_EQ(studyStateEditDescription(edit), "45 s returned to Unconfirmed");
}

}  // namespace
}  // namespace lumenote::recording
