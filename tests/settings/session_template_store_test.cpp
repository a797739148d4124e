#include "settings/session_template_store.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "settings/in_memory_session_template_repository.hpp"

namespace lumenote::settings {
namespace {

using Kind = SessionTemplateValidationErrorKind;

const Date kCreated = Date::fromUnixSeconds(1763280000.0);

SessionTemplateDraft draft(std::string name, double duration = 1500) {
    return {std::move(name), "Maths", "", duration, recording::SessionTimingMode::timer,
            std::nullopt};
}

template <typename T>
Kind kindOf(const Result<T, SessionTemplateValidationError>& result) {
    EXPECT_FALSE(result.ok());
    return result.ok() ? Kind::persistenceFailure : result.error().kind;
}

class SessionTemplateStoreTest : public ::testing::Test {
  protected:
    SessionTemplateStore& open() {
        store_.emplace(repository_, [this] { return now_; });
        return *store_;
    }

    Uuid add(SessionTemplateStore& store, const std::string& name) {
        auto created = store.create(draft(name));
        EXPECT_TRUE(created.ok()) << name;
        return created.ok() ? created->id : Uuid();
    }

    std::vector<std::string> listedNames() const {
        std::vector<std::string> names;
        for (const auto& t : store_->templates()) {
            names.push_back(t.name);
        }
        return names;
    }

    InMemorySessionTemplateRepository repository_;
    Date now_ = kCreated;
    std::optional<SessionTemplateStore> store_;
};

TEST_F(SessionTemplateStoreTest, ValidationReportsTheFirstRuleBroken) {
    const std::string long81(81, 'n');
    const std::string subject201(201, 's');
    const std::string goal1001(1001, 'g');
    struct Case {
        const char* label;
        SessionTemplateDraft draft;
        Kind expected;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Case> cases{
        {"empty name beats empty subject", {" \n", "", "", 0, {}, {}}, Kind::nameRequired},
        {"empty subject beats a long name", {long81, "\t", "", 0, {}, {}}, Kind::subjectRequired},
        {"long name beats long subject", {long81, subject201, "", 0, {}, {}}, Kind::nameTooLong},
        {"long subject beats long goal",
         {"N", subject201, goal1001, 0, {}, {}},
         Kind::subjectTooLong},
        {"long goal beats a duplicate name",
         {"existing", "S", goal1001, 0, {}, {}},
         Kind::goalTooLong},
        {"duplicate name beats a bad duration",
         {" EXISTING ", "S", "", 0, {}, {}},
         Kind::duplicateName},
        {"bad duration beats a bad break", {"N", "S", "", 59.9, {}, 30.0}, Kind::invalidDuration},
        {"NaN duration", {"N", "S", "", nan, {}, {}}, Kind::invalidDuration},
        {"duration above 12 hours", {"N", "S", "", 43200.5, {}, {}}, Kind::invalidDuration},
        {"break below a minute", {"N", "S", "", 60, {}, 59.0}, Kind::invalidBreakDuration},
        {"break above 2 hours", {"N", "S", "", 60, {}, 7201.0}, Kind::invalidBreakDuration},
        {"NaN break", {"N", "S", "", 60, {}, nan}, Kind::invalidBreakDuration},
    };
    SessionTemplateStore& store = open();
    add(store, "Existing");
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.label);
        EXPECT_EQ(kindOf(store.create(testCase.draft)), testCase.expected);
    }
    EXPECT_EQ(store.templates().size(), 1U);
    EXPECT_EQ(repository_.saveCount, 1);
}

TEST_F(SessionTemplateStoreTest, BoundariesAreInclusiveAndCountCharactersNotBytes) {
    SessionTemplateStore& store = open();
    std::string name80;
    for (int i = 0; i < 80; ++i) {
        name80 += "\xC3\xA9";  // é: two bytes, one character
    }
    const std::string subject200(200, 's');
    const std::string goal1000(1000, 'g');
    EXPECT_TRUE(store.create({name80, subject200, goal1000, 60, {}, 60.0}).ok());
    EXPECT_TRUE(store.create({"Long", "S", "", 43200, {}, 7200.0}).ok());
    EXPECT_EQ(kindOf(store.create({name80 + "x", "S", "", 60, {}, {}})), Kind::nameTooLong);
    EXPECT_EQ(kindOf(store.create({"N", subject200 + "s", "", 60, {}, {}})), Kind::subjectTooLong);
    // Surrounding white space does not count toward a limit.
    EXPECT_TRUE(store.create({"  " + std::string(80, 'x') + "\n", "S", "", 60, {}, {}}).ok());
}

TEST_F(SessionTemplateStoreTest, NamesAreTrimmedAndUniqueIgnoringCase) {
    SessionTemplateStore& store = open();
    auto created = store.create({"  Deep Work \n", " Maths ", " \tread ", 1500, {}, {}});
    ASSERT_TRUE(created.ok());
    EXPECT_EQ(created->name, "Deep Work");
    EXPECT_EQ(created->subject, "Maths");
    EXPECT_EQ(created->defaultGoal, "read");
    EXPECT_EQ(kindOf(store.create(draft("deep work"))), Kind::duplicateName);
    EXPECT_EQ(kindOf(store.create(draft("DEEP WORK"))), Kind::duplicateName);
    ASSERT_TRUE(store.create(draft("\xC3\x89tude")).ok());                        // Étude
    EXPECT_EQ(kindOf(store.create(draft("\xC3\xA9TUDE"))), Kind::duplicateName);  // éTUDE
}

TEST_F(SessionTemplateStoreTest, TheTwoHundredFiftyFirstTemplateIsRefused) {
    SessionTemplateDocument document;
    for (int i = 0; i < 249; ++i) {
        SessionTemplate t;
        t.id = Uuid::generate();
        t.name = "T" + std::to_string(i);
        t.subject = "S";
        t.duration = 1500;
        t.createdDate = kCreated;
        t.modifiedDate = kCreated;
        t.manualSortOrder = i;
        document.templates.push_back(t);
    }
    repository_.document = document;
    SessionTemplateStore& store = open();
    auto last = store.create(draft("Two hundred fiftieth"));
    ASSERT_TRUE(last.ok());
    EXPECT_EQ(last->manualSortOrder, 249);
    EXPECT_EQ(store.templates().back().name, "Two hundred fiftieth");
    const auto refused = store.create(draft("One too many"));
    EXPECT_EQ(kindOf(refused), Kind::tooManyTemplates);
    EXPECT_EQ(message(refused.error()), "Lumenote supports up to 250 session templates.");
    // A field problem is reported before the limit.
    EXPECT_EQ(kindOf(store.create(draft(""))), Kind::nameRequired);
    EXPECT_EQ(store.templates().size(), 250U);
}

TEST_F(SessionTemplateStoreTest, AFailedWriteLeavesThePublishedListAsItWas) {
    SessionTemplateStore& store = open();
    const Uuid id = add(store, "Kept");
    int notifications = 0;
    store.addObserver([&] { ++notifications; });
    const auto before = store.templates();
    repository_.failWrites = true;

    const auto created = store.create(draft("New"));
    EXPECT_EQ(kindOf(created), Kind::persistenceFailure);
    EXPECT_EQ(message(created.error()),
              "Lumenote could not save the template. Your previous templates were kept "
              "unchanged.");
    EXPECT_EQ(kindOf(store.update(id, draft("Renamed"))), Kind::persistenceFailure);
    EXPECT_EQ(kindOf(store.deleteTemplate(id)), Kind::persistenceFailure);
    EXPECT_EQ(kindOf(store.toggleFavorite(id)), Kind::persistenceFailure);
    EXPECT_EQ(kindOf(store.move(id, 0)), Kind::persistenceFailure);
    EXPECT_EQ(kindOf(store.markUsed(id)), Kind::persistenceFailure);
    EXPECT_EQ(store.templates(), before);
    EXPECT_EQ(repository_.document->templates, before);
    EXPECT_EQ(notifications, 0);
}

TEST_F(SessionTemplateStoreTest, UpdateKeepsIdentityAndStampsTheModificationDate) {
    SessionTemplateStore& store = open();
    const Uuid id = add(store, "Reading");
    ASSERT_TRUE(store.setFavorite(id, true).ok());
    now_ = kCreated.addingSeconds(600);
    auto updated = store.update(id, {"reading", "Literature", "Chapter 3", 2700,
                                     recording::SessionTimingMode::openEnded, 300.0});
    ASSERT_TRUE(updated.ok());
    EXPECT_EQ(updated->id, id);
    EXPECT_EQ(updated->name, "reading");  // its own name in another case is no clash
    EXPECT_EQ(updated->createdDate, kCreated);
    EXPECT_EQ(updated->modifiedDate, now_);
    EXPECT_EQ(updated->timingModeStorage, "open_ended");
    EXPECT_EQ(updated->breakDuration, 300.0);
    EXPECT_TRUE(updated->isFavorite);

    add(store, "Other");
    EXPECT_EQ(kindOf(store.update(id, draft("OTHER"))), Kind::duplicateName);
    // Field rules come before the existence check.
    EXPECT_EQ(kindOf(store.update(Uuid::generate(), draft(""))), Kind::nameRequired);
    EXPECT_EQ(kindOf(store.update(Uuid::generate(), draft("Fine"))), Kind::missingTemplate);
}

TEST_F(SessionTemplateStoreTest, ChangesMayNameATemplateByTheIdOfThePublishedList) {
    SessionTemplateStore& store = open();
    add(store, "First");
    const auto& published = store.templates();
    EXPECT_EQ(store.update(published.front().id, draft("Renamed"))->name, "Renamed");
    EXPECT_TRUE(store.toggleFavorite(published.front().id)->isFavorite);
    EXPECT_TRUE(store.markUsed(published.front().id)->lastUsedDate.has_value());
    EXPECT_TRUE(store.deleteTemplate(published.front().id).ok());
    EXPECT_TRUE(store.templates().empty());
}

TEST_F(SessionTemplateStoreTest, ChangesToAMissingTemplateAreRefused) {
    SessionTemplateStore& store = open();
    add(store, "Only");
    const Uuid gone = Uuid::generate();
    EXPECT_EQ(kindOf(store.deleteTemplate(gone)), Kind::missingTemplate);
    EXPECT_EQ(kindOf(store.toggleFavorite(gone)), Kind::missingTemplate);
    EXPECT_EQ(kindOf(store.setEnabled(gone, false)), Kind::missingTemplate);
    EXPECT_EQ(kindOf(store.move(gone, 0)), Kind::missingTemplate);
    const auto used = store.markUsed(gone);
    EXPECT_EQ(kindOf(used), Kind::missingTemplate);
    EXPECT_EQ(message(used.error()), "That template is no longer available.");
    EXPECT_EQ(repository_.saveCount, 1);
}

TEST_F(SessionTemplateStoreTest, FavouritesListFirstThenManualOrder) {
    SessionTemplateStore& store = open();
    const Uuid a = add(store, "A");
    add(store, "B");
    const Uuid c = add(store, "C");
    const Uuid d = add(store, "D");
    ASSERT_TRUE(store.toggleFavorite(c).ok());
    EXPECT_EQ(listedNames(), (std::vector<std::string>{"C", "A", "B", "D"}));

    ASSERT_TRUE(store.move(d, 1).ok());
    EXPECT_EQ(listedNames(), (std::vector<std::string>{"C", "D", "A", "B"}));
    // A position past the end moves to the end; a move to the top stays
    // below the favourites.
    ASSERT_TRUE(store.move(a, 99).ok());
    EXPECT_EQ(listedNames(), (std::vector<std::string>{"C", "D", "B", "A"}));
    ASSERT_TRUE(store.move(a, 0).ok());
    EXPECT_EQ(listedNames(), (std::vector<std::string>{"C", "A", "D", "B"}));

    ASSERT_TRUE(store.toggleFavorite(c).ok());
    EXPECT_EQ(listedNames(), (std::vector<std::string>{"A", "C", "D", "B"}));
    // The saved document keeps the listing order and the new positions.
    std::vector<long long> orders;
    for (const auto& t : repository_.document->templates) {
        orders.push_back(t.manualSortOrder);
    }
    EXPECT_EQ(orders, (std::vector<long long>{0, 1, 2, 3}));
}

TEST_F(SessionTemplateStoreTest, BookkeepingChangesLeaveTheModificationDateAlone) {
    SessionTemplateStore& store = open();
    const Uuid id = add(store, "Reading");
    now_ = kCreated.addingSeconds(3600);
    auto disabled = store.toggleEnabled(id);
    ASSERT_TRUE(disabled.ok());
    EXPECT_FALSE(disabled->isEnabled);
    auto used = store.markUsed(id);
    ASSERT_TRUE(used.ok());
    EXPECT_EQ(used->lastUsedDate, now_);
    EXPECT_EQ(used->modifiedDate, kCreated);
    EXPECT_TRUE(store.setEnabled(id, true)->isEnabled);

    now_ = Date{std::numeric_limits<double>::infinity()};
    EXPECT_EQ(kindOf(store.markUsed(id)), Kind::invalidDate);
    EXPECT_EQ(kindOf(store.create(draft("Later"))), Kind::invalidDate);
}

TEST_F(SessionTemplateStoreTest, LoadResultsSetTheListAndTheMessage) {
    repository_.loadResultOverride = SessionTemplateRepositoryLoadResult::quarantined();
    SessionTemplateStore& store = open();
    EXPECT_TRUE(store.templates().empty());
    EXPECT_FALSE(store.isReadOnly());
    EXPECT_EQ(store.loadMessage(),
              "A damaged templates file was isolated. You can create new templates; study history "
              "was not affected.");
    EXPECT_TRUE(store.create(draft("Fresh")).ok());

    repository_.loadResultOverride = fail(SessionTemplateRepositoryError::oversized);
    store.reload();
    EXPECT_TRUE(store.templates().empty());
    EXPECT_EQ(store.loadMessage(),
              "Templates contain invalid data and were not loaded. Study history was not "
              "affected.");

    repository_.loadResultOverride.reset();
    store.reload();
    EXPECT_EQ(listedNames(), std::vector<std::string>{"Fresh"});
    EXPECT_FALSE(store.loadMessage().has_value());
}

TEST_F(SessionTemplateStoreTest, ANewerFormatIsReadOnlyAndRefusesEveryChange) {
    repository_.loadResultOverride = SessionTemplateRepositoryLoadResult::unsupported(2);
    SessionTemplateStore& store = open();
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_EQ(store.unsupportedFormatVersion(), 2);
    EXPECT_EQ(store.loadMessage(),
              "Templates use a newer local format (version 2). Update Lumenote to edit them.");
    const Uuid id = Uuid::generate();
    const SessionTemplateValidationError readOnly{Kind::readOnly, 2};
    EXPECT_EQ(store.create(draft("")).error(), readOnly);
    EXPECT_EQ(store.update(id, draft("N")).error(), readOnly);
    EXPECT_EQ(store.deleteTemplate(id).error(), readOnly);
    EXPECT_EQ(store.toggleFavorite(id).error(), readOnly);
    EXPECT_EQ(store.toggleEnabled(id).error(), readOnly);
    EXPECT_EQ(store.move(id, 0).error(), readOnly);
    EXPECT_EQ(store.markUsed(id).error(), readOnly);
    EXPECT_EQ(message(readOnly),
              "These templates were created by a newer Lumenote format (version 2) and are "
              "read-only in this version.");
    EXPECT_EQ(repository_.saveCount, 0);
}

}  // namespace
}  // namespace lumenote::settings
