#include "foundation/result.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace lumenote {
namespace {

enum class Problem { first, second };

Result<int, Problem> half(int value) {
    if (value % 2 != 0) {
        return fail(Problem::second);
    }
    return value / 2;
}

TEST(ResultTest, CarriesAValueOrAnError) {
    const auto good = half(8);
    ASSERT_TRUE(good.ok());
    EXPECT_EQ(*good, 4);
    const auto bad = half(3);
    ASSERT_FALSE(bad.ok());
    EXPECT_EQ(bad.error(), Problem::second);
    EXPECT_EQ(bad.valueOr(-1), -1);
}

TEST(ResultTest, TellsAValueFromAnErrorOfTheSameType) {
    const Result<std::string, std::string> value = std::string("value");
    const Result<std::string, std::string> error = fail(std::string("error"));
    EXPECT_TRUE(value.ok());
    EXPECT_FALSE(error.ok());
    EXPECT_EQ(error.error(), "error");
}

TEST(ResultTest, MovesOutMoveOnlyValues) {
    Result<std::unique_ptr<int>, Problem> result = std::make_unique<int>(7);
    const std::unique_ptr<int> taken = std::move(result).value();
    EXPECT_EQ(*taken, 7);
}

TEST(ResultTest, VoidFormReportsOnlyTheError) {
    const Result<void, Problem> success;
    const Result<void, Problem> failure = fail(Problem::first);
    EXPECT_TRUE(success.ok());
    EXPECT_FALSE(failure.ok());
    EXPECT_EQ(failure.error(), Problem::first);
}

}  // namespace
}  // namespace lumenote
