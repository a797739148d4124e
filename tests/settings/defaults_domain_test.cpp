#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "settings/in_memory_defaults_domain.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "support/temporary_home.hpp"

namespace lumenote::settings {
namespace {

namespace fs = std::filesystem;
using testing::filesContaining;
using testing::readFile;
using testing::TemporaryHome;
using testing::writeFile;

const Date kNow = Date::fromUnixSeconds(1763280000.0);

// Fails every rename, so an atomic write never replaces the file.
class FailingRename : public FileWriteOperations {
  public:
    int rename(const char*, const char*) override { return -1; }
};

class JsonFileDefaultsDomainTest : public ::testing::Test {
  protected:
    JsonFileDefaultsDomain makeDomain() {
        return JsonFileDefaultsDomain(path(), [] { return kNow; });
    }
    fs::path path() const { return JsonFileDefaultsDomain::pathFor(home_.paths()); }

    TemporaryHome home_;
};

TEST_F(JsonFileDefaultsDomainTest, LivesInTheConfigurationFolder) {
    EXPECT_EQ(path(), home_.root() / "config" / "Lumenote" / "defaults.json");
}

TEST_F(JsonFileDefaultsDomainTest, EveryTypeSurvivesARoundTripThroughTheFile) {
    const std::vector<std::pair<std::string, DefaultsValue>> values{
        {"bool", true},
        {"integer", 5LL},
        {"whole.double", 5.0},
        {"double", 1500.25},
        {"negative", -42LL},
        {"string", std::string("Grüße \"quoted\"\n")},
        {"list", std::vector<std::string>{"A", "B"}},
        {"empty.list", std::vector<std::string>{}},
    };
    {
        auto domain = makeDomain();
        for (const auto& [key, value] : values) {
            domain.set(key, value);
        }
        EXPECT_FALSE(domain.lastWriteError());
    }
    auto reopened = makeDomain();
    for (const auto& [key, value] : values) {
        EXPECT_EQ(reopened.object(key), value) << key;
    }
    EXPECT_EQ(reopened.keys().size(), values.size());
}

TEST_F(JsonFileDefaultsDomainTest, TellsAMissingKeyFromAKeyOfAnotherType) {
    writeFile(path(), R"({"threshold": "soon", "count": 7, "ratio": 2.5, "flag": false})");
    auto domain = makeDomain();
    EXPECT_FALSE(domain.object("absent").has_value());
    EXPECT_TRUE(domain.object("threshold").has_value());
    EXPECT_FALSE(asDouble(domain.object("threshold")).has_value());
    EXPECT_EQ(asDouble(domain.object("count")), 7.0);
    EXPECT_EQ(asInteger(domain.object("count")), 7);
    EXPECT_FALSE(asInteger(domain.object("ratio")).has_value());
    EXPECT_FALSE(asInteger(domain.object("flag")).has_value());
    EXPECT_EQ(asBool(domain.object("flag")), false);
}

TEST_F(JsonFileDefaultsDomainTest, UnusableDocumentsAreQuarantinedAndTheDomainStartsEmpty) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"not JSON", "{\"general.startHidden\": tru"},
        {"array at the root", "[1, 2, 3]"},
        {"string at the root", "\"hello\""},
        {"empty file", ""},
        {"one byte over the cap", std::string(kMaximumDefaultsBytes + 1, ' ')},
        // Writing such a value back would recurse once a level and overflow the stack.
        {"a value nested half a million levels deep",
         "{\"later\": " + std::string(500000, '[') + std::string(500000, ']') + "}"},
        {"a value nested one level too deep",
         "{\"later\": " + std::string(kMaximumDefaultsNesting, '[') +
             std::string(kMaximumDefaultsNesting, ']') + "}"},
    };
    for (const auto& [label, bytes] : cases) {
        SCOPED_TRACE(label);
        fs::remove_all(path().parent_path());
        writeFile(path(), bytes);
        auto domain = makeDomain();
        EXPECT_TRUE(domain.keys().empty());
        ASSERT_TRUE(domain.lastQuarantinedPath().has_value());
        EXPECT_EQ(readFile(*domain.lastQuarantinedPath()), bytes);
        EXPECT_FALSE(fs::exists(path()));
        domain.set("general.startHidden", true);
        EXPECT_EQ(makeDomain().object("general.startHidden"), DefaultsValue(true));
    }
}

TEST_F(JsonFileDefaultsDomainTest, AValueAtTheDeepestNestingIsKept) {
    const std::string deepest = std::string(kMaximumDefaultsNesting - 1, '[') +
                                std::string(kMaximumDefaultsNesting - 1, ']');
    writeFile(path(), "{\"later\": " + deepest + "}");
    auto domain = makeDomain();
    EXPECT_EQ(domain.object("later"), DefaultsValue(UnrecognisedDefaultsValue{deepest}));
    EXPECT_FALSE(domain.lastQuarantinedPath().has_value());
}

TEST_F(JsonFileDefaultsDomainTest, ADocumentOfExactlyTheCapIsRead) {
    std::string bytes = R"({"k": 1})";
    bytes.resize(kMaximumDefaultsBytes, ' ');
    writeFile(path(), bytes);
    auto domain = makeDomain();
    EXPECT_EQ(domain.object("k"), DefaultsValue(1LL));
    EXPECT_FALSE(domain.lastQuarantinedPath().has_value());
}

TEST_F(JsonFileDefaultsDomainTest, ASymbolicLinkIsMovedAsideWithoutTouchingItsTarget) {
    const fs::path target = home_.root() / "elsewhere.json";
    writeFile(target, R"({"general.startHidden": true})");
    fs::create_directories(path().parent_path());
    fs::create_symlink(target, path());
    auto domain = makeDomain();
    EXPECT_FALSE(domain.object("general.startHidden").has_value());
    EXPECT_EQ(filesContaining(path().parent_path(), "corrupt").size(), 1U);
    EXPECT_EQ(readFile(target), R"({"general.startHidden": true})");
}

TEST_F(JsonFileDefaultsDomainTest, AChangeByAnotherProcessIsReadBeforeReadingAndWriting) {
    auto first = makeDomain();
    auto second = makeDomain();
    first.set("a", 1LL);
    EXPECT_EQ(second.object("a"), DefaultsValue(1LL));
    second.set("b", 2LL);
    first.set("c", 3LL);  // must not drop "b", written after `first` last read
    auto third = makeDomain();
    EXPECT_EQ(third.object("a"), DefaultsValue(1LL));
    EXPECT_EQ(third.object("b"), DefaultsValue(2LL));
    EXPECT_EQ(third.object("c"), DefaultsValue(3LL));
    first.remove("a");
    EXPECT_FALSE(second.object("a").has_value());
}

TEST_F(JsonFileDefaultsDomainTest, ValuesOfUnmodelledTypesAreKeptWhenRewriting) {
    writeFile(path(),
              R"({"later.object": {"x": [1, "y"]}, "later.null": null, "mixed": [1, "a"]})");
    auto domain = makeDomain();
    EXPECT_TRUE(domain.object("later.object").has_value());
    EXPECT_FALSE(asString(domain.object("later.null")).has_value());
    EXPECT_FALSE(asStringArray(domain.object("mixed")).has_value());
    domain.set("k", true);
    auto reopened = makeDomain();
    EXPECT_EQ(reopened.object("later.object"),
              DefaultsValue(UnrecognisedDefaultsValue{R"({"x":[1,"y"]})"}));
    EXPECT_EQ(reopened.object("later.null"), DefaultsValue(UnrecognisedDefaultsValue{"null"}));
    EXPECT_EQ(reopened.object("mixed"), DefaultsValue(UnrecognisedDefaultsValue{R"([1,"a"])"}));
}

TEST_F(JsonFileDefaultsDomainTest, ANonFiniteDoubleReadsBackAsAValueOfAnotherType) {
    makeDomain().set("d", std::numeric_limits<double>::infinity());
    auto reopened = makeDomain();
    EXPECT_TRUE(reopened.object("d").has_value());
    EXPECT_FALSE(asDouble(reopened.object("d")).has_value());
}

TEST_F(JsonFileDefaultsDomainTest, AFailedWriteKeepsTheFileAndIsReportedButStaysInEffect) {
    makeDomain().set("kept", 1LL);
    const std::string before = readFile(path());
    FailingRename failing;
    JsonFileDefaultsDomain domain(
        path(), [] { return kNow; }, failing);
    domain.set("lost", 2LL);
    EXPECT_EQ(domain.lastWriteError(), PrivateFileError::writeFailed);
    EXPECT_EQ(domain.object("lost"), DefaultsValue(2LL));
    EXPECT_EQ(readFile(path()), before);
    EXPECT_EQ(filesContaining(path().parent_path(), ".temporary").size(), 0U);
}

struct TypedGetterCase {
    const char* label;
    std::optional<DefaultsValue> stored;
    bool asBoolValue;
    long long asIntegerValue;
    double asDoubleValue;
};

TEST(DefaultsDomainTypedGettersTest, TakeZeroWhenMissingAndConvertOtherTypes) {
    const std::vector<TypedGetterCase> cases{
        {"missing", std::nullopt, false, 0, 0.0},
        {"true", true, true, 1, 1.0},
        {"false", false, false, 0, 0.0},
        {"integer", 42LL, true, 42, 42.0},
        {"zero", 0LL, false, 0, 0.0},
        {"double truncates toward zero", -2.75, true, -2, -2.75},
        {"numeric string", std::string("60"), true, 60, 60.0},
        {"decimal string", std::string("1.5"), true, 1, 1.5},
        {"yes string", std::string("YES"), true, 0, 0.0},
        {"other string", std::string("soon"), false, 0, 0.0},
        {"string list", std::vector<std::string>{"1"}, false, 0, 0.0},
        {"huge double", 1e300, true, 0, 1e300},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.label);
        InMemoryDefaultsDomain domain;
        if (testCase.stored) {
            domain.set("k", *testCase.stored);
        }
        EXPECT_EQ(domain.boolForKey("k"), testCase.asBoolValue);
        EXPECT_EQ(domain.integerForKey("k"), testCase.asIntegerValue);
        EXPECT_EQ(domain.doubleForKey("k"), testCase.asDoubleValue);
    }
}

}  // namespace
}  // namespace lumenote::settings
