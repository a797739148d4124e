// How a call of the KWin script becomes a report: the two methods, the types
// a script engine may give the pid, and calls of any other shape.
#include "platform/kde/kwin_activation_report.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace lumenote::platform::kde {
namespace {

QVariantList windowCall(const QVariant& pid) {
    return {QStringLiteral("firefox"), QStringLiteral("Navigator"), QStringLiteral("firefox"), pid};
}

TEST(KWinActivationReport, ThePidIsReadFromAnyIntegerOrWholeNumber) {
    struct Case {
        QVariant pid;
        std::int32_t expected;
    };
    const Case cases[] = {
        {QVariant(std::int32_t{4242}), 4242},
        {QVariant(std::uint32_t{4242}), 4242},
        {QVariant(qlonglong{4242}), 4242},
        {QVariant(4242.0), 4242},
        {QVariant(std::int32_t{0}), 0},
        {QVariant(std::int32_t{-5}), 0},
        {QVariant(4242.5), 0},
        {QVariant(-1.0), 0},
        {QVariant(2147483648.0), 0},
        {QVariant(qlonglong{2147483648}), 0},
        {QVariant(qlonglong{2147483647}), 2147483647},
        {QVariant(std::numeric_limits<double>::quiet_NaN()), 0},
        {QVariant(std::numeric_limits<double>::infinity()), 0},
    };
    for (const auto& testCase : cases) {
        const auto report =
            readActivationCall(QStringLiteral("WindowActivated"), windowCall(testCase.pid));
        ASSERT_TRUE(report.has_value()) << testCase.pid.toString().toStdString();
        ASSERT_TRUE(report->window.has_value());
        EXPECT_EQ(report->window->processId, testCase.expected)
            << testCase.pid.toString().toStdString();
        EXPECT_EQ(report->window->resourceClass, "firefox");
        EXPECT_EQ(report->window->resourceName, "Navigator");
    }
}

TEST(KWinActivationReport, CallsOfAnotherShapeAreRefused) {
    const QString activated = QStringLiteral("WindowActivated");
    struct Case {
        const char* why;
        QString member;
        QVariantList arguments;
    };
    const Case cases[] = {
        {"a pid as text", activated, windowCall(QStringLiteral("4242"))},
        {"a class that is not text", activated, {42, QStringLiteral("a"), QStringLiteral("b"), 1}},
        {"three arguments",
         activated,
         {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}},
        {"five arguments", activated, windowCall(1) + QVariantList{QStringLiteral("title")}},
        {"no window with an argument", QStringLiteral("NoWindowActive"), {QStringLiteral("x")}},
        {"another method", QStringLiteral("CaptionChanged"), {QStringLiteral("x")}},
        {"a method named in another case", QStringLiteral("windowactivated"), windowCall(1)},
    };
    for (const auto& testCase : cases) {
        EXPECT_FALSE(readActivationCall(testCase.member, testCase.arguments).has_value())
            << testCase.why;
    }
}

TEST(KWinActivationReport, NoWindowActiveIsAReportWithoutAWindow) {
    const auto report = readActivationCall(QStringLiteral("NoWindowActive"), {});
    ASSERT_TRUE(report.has_value());
    EXPECT_FALSE(report->window.has_value());
}

}  // namespace
}  // namespace lumenote::platform::kde
