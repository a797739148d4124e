#include "classification/classification_messages.hpp"

#include <gtest/gtest.h>

namespace lumenote::classification {
namespace {

using F = ClassificationFailure;

TEST(ClassificationMessagesTest, PlaceholdersAreFilledWithTheirOwnValue) {
    struct Case {
        F failure;
        const char* expected;
    };
    const Case cases[] = {
        {F::applicationRulesNotLoaded, "Saved app classifications could not be loaded."},
        {F::classificationNotSaved, "The classification for zoom.us could not be saved."},
        {F::classificationNotRemoved, "The classification for zoom.us could not be removed."},
        {F::applicationRulesNotCleared,
         "Could not clear application classifications: disk is full"},
        {F::websiteRulesNotCleared, "Could not clear website classifications: disk is full"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(classificationFailureMessage(c.failure, "zoom.us", "disk is full"), c.expected);
    }
}

TEST(ClassificationMessagesTest, BracesInsideANameAreNotExpanded) {
    EXPECT_EQ(classificationFailureMessage(F::classificationNotSaved, "App {error}", "boom"),
              "The classification for App {error} could not be saved.");
}

TEST(ClassificationMessagesTest, EveryFailureHasACompleteSentence) {
    for (const F failure :
         {F::applicationRulesNotLoaded, F::websiteRulesNotLoaded, F::pdfPreferencesNotLoaded,
          F::classificationNotSaved, F::classificationNotRemoved, F::filenameLabelsNotCleared,
          F::applicationRulesNotCleared, F::websiteRulesNotCleared, F::pdfRecordsNotCleared}) {
        const std::string message = classificationFailureMessage(failure, "n", "e");
        EXPECT_FALSE(message.empty());
        EXPECT_EQ(message.find('{'), std::string::npos) << message;
    }
}

}  // namespace
}  // namespace lumenote::classification
