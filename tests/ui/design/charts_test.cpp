// The charts painted into real images and a real PDF: what matters is where
// the colours land (a bar where its day is, a taller bar for more time, a
// gap for a week without a score), that nothing is drawn outside the target
// or for data with nothing to draw, and that a PDF comes out readable.
#include "ui/design/charts.hpp"

#include <gtest/gtest.h>

#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <limits>
#include <string>

#include "ui/design/design_test_support.hpp"
#include "ui/design/palette.hpp"

namespace lumenote::ui::design {
namespace {

using classification::ActivityClassification;
using testing::countNear;
using testing::near;

class ChartsTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { testing::ensureApplication(); }

    // Paints with `paint` into `target` of a white 400 × 260 image.
    template <typename Paint>
    static QImage painted(Paint paint, QRectF target = QRectF(0, 0, 400, 260)) {
        QImage image(400, 260, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        paint(painter, target);
        return image;
    }

    // Runs of neighbouring columns holding `colour`: one a bar, say.
    static std::vector<std::pair<int, int>> columnRuns(const QImage& image, const QColor& colour) {
        std::vector<std::pair<int, int>> runs;
        for (int x = 0; x < image.width(); ++x) {
            const bool has = countNear(image, colour, QRect(x, 0, 1, image.height())) > 0;
            if (has && (runs.empty() || runs.back().second != x - 1)) {
                runs.emplace_back(x, x);
            } else if (has) {
                runs.back().second = x;
            }
        }
        return runs;
    }

    static int heightAt(const QImage& image, int x, const QColor& colour) {
        return countNear(image, colour, QRect(x, 0, 1, image.height()));
    }

    const ChartStyle light = chartStyle(AppearanceController::lightPalette());
    const ChartStyle dark = chartStyle(AppearanceController::darkPalette());
};

int countNotWhite(const QImage& image, QRect area) {
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            count += image.pixelColor(x, y) != QColor(Qt::white) ? 1 : 0;
        }
    }
    return count;
}

TEST_F(ChartsTest, BarsStandWhereTheirDaysAreAndGrowWithTheTime) {
    const models::BarChartData data{{{"Mon", 3600.0}, {"Tue", 7200.0}, {"Wed", 0.0}}, std::nullopt};
    const QImage image =
        painted([&](QPainter& p, const QRectF& r) { paintBarChart(p, r, data, light); });
    const auto bars = columnRuns(image, light.accent);
    ASSERT_EQ(bars.size(), 2u) << "a day without study time has no bar";
    EXPECT_LT(bars[0].second, bars[1].first);
    const int monday = heightAt(image, (bars[0].first + bars[0].second) / 2, light.accent);
    const int tuesday = heightAt(image, (bars[1].first + bars[1].second) / 2, light.accent);
    EXPECT_GT(monday, 10);
    EXPECT_NEAR(tuesday, 2 * monday, 3);
}

TEST_F(ChartsTest, AGoalAboveEveryDayRaisesTheScaleAndDrawsItsLine) {
    const models::BarChartData without{{{"Mon", 3600.0}}, std::nullopt};
    const models::BarChartData with{{{"Mon", 3600.0}}, 4.0 * 3600.0};
    const QImage plain =
        painted([&](QPainter& p, const QRectF& r) { paintBarChart(p, r, without, light); });
    const QImage goal =
        painted([&](QPainter& p, const QRectF& r) { paintBarChart(p, r, with, light); });
    const auto bar = columnRuns(goal, light.accent);
    ASSERT_EQ(bar.size(), 1u);
    const int x = (bar[0].first + bar[0].second) / 2;
    EXPECT_LT(heightAt(goal, x, light.accent) * 3, heightAt(plain, x, light.accent));
    // The dashed goal line runs across the plot above the bar, in the text
    // colour: a row with far more of that colour than any label has.
    const auto longestTextRow = [&](const QImage& image) {
        int longest = 0;
        for (int y = 0; y < image.height(); ++y) {
            longest =
                std::max(longest, countNear(image, light.text, QRect(0, y, image.width(), 1)));
        }
        return longest;
    };
    EXPECT_GT(longestTextRow(goal), 100);
    EXPECT_LT(longestTextRow(plain), 100);
}

TEST_F(ChartsTest, NothingToDrawPaintsNothing) {
    const QImage none = painted([&](QPainter& p, const QRectF& r) {
        paintBarChart(p, r, {}, light);
        paintStackedBarChart(p, r, {}, light);
        paintLineChart(p, r, {}, light);
        paintLineChart(p, r, {{{"3 Nov", std::nullopt}, {"10 Nov", std::nullopt}}}, light);
    });
    EXPECT_EQ(countNotWhite(none, none.rect()), 0);
    const QImage tiny = painted(
        [&](QPainter& p, const QRectF& r) {
            paintBarChart(p, r, {{{"Mon", 3600.0}}, 1800.0}, light);
            paintLineChart(p, r, {{{"3 Nov", 50.0}}}, light);
            paintRing(p, r, {0.5, "Daily goal"}, light);
        },
        QRectF(10, 10, 6, 6));
    EXPECT_EQ(countNotWhite(tiny, tiny.rect()), 0);
}

TEST_F(ChartsTest, BrokenFiguresDrawNoBarButTheAxisStays) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const models::BarChartData data{{{"Mon", 0.0}, {"Tue", -600.0}, {"Wed", nan}}, std::nullopt};
    const QImage image =
        painted([&](QPainter& p, const QRectF& r) { paintBarChart(p, r, data, light); });
    EXPECT_EQ(countNear(image, light.accent), 0);
    EXPECT_GT(countNotWhite(image, image.rect()), 0) << "the axis and the day labels";
}

TEST_F(ChartsTest, LongLabelsAndASingleBarStayInsideTheTarget) {
    const QRect target(60, 50, 280, 160);
    const models::BarChartData data{{{std::string(300, 'W'), 5400.0}}, 3600.0};
    const QImage image = painted(
        [&](QPainter& p, const QRectF& r) { paintBarChart(p, r, data, light); }, QRectF(target));
    EXPECT_EQ(columnRuns(image, light.accent).size(), 1u);
    QImage outside = image.copy();
    QPainter cover(&outside);
    cover.fillRect(target, Qt::white);
    cover.end();
    EXPECT_EQ(countNotWhite(outside, outside.rect()), 0);
}

TEST_F(ChartsTest, ClassesPileUpInTheirOwnColoursFocusedAtTheBottom) {
    models::StackedBarDay day{"Mon", {}};
    day.seconds[0] = 3600.0;  // focused
    day.seconds[2] = 1800.0;  // distracting
    for (const ChartStyle& style : {light, dark}) {
        const QImage image = painted(
            [&](QPainter& p, const QRectF& r) { paintStackedBarChart(p, r, {{day}}, style); });
        const QColor focused = classificationFill(ActivityClassification::focused, style.dark);
        const QColor distracting =
            classificationFill(ActivityClassification::distracting, style.dark);
        const auto bar = columnRuns(image, focused);
        ASSERT_EQ(bar.size(), 1u);
        const int x = (bar[0].first + bar[0].second) / 2;
        const int focusedHeight = heightAt(image, x, focused);
        const int distractingHeight = heightAt(image, x, distracting);
        EXPECT_NEAR(focusedHeight, 2 * distractingHeight, 3);
        int lowestDistracting = -1;
        int highestFocused = image.height();
        for (int y = 0; y < image.height(); ++y) {
            if (near(image.pixelColor(x, y), distracting)) {
                lowestDistracting = y;
            }
            if (near(image.pixelColor(x, y), focused)) {
                highestFocused = std::min(highestFocused, y);
            }
        }
        EXPECT_LT(lowestDistracting, highestFocused);
    }
}

TEST_F(ChartsTest, AWeekWithoutAScoreBreaksTheLine) {
    const models::LineChartData whole{{{"1", 50.0}, {"2", 60.0}, {"3", 80.0}, {"4", 60.0}}};
    const models::LineChartData broken{
        {{"1", 50.0}, {"2", std::nullopt}, {"3", 80.0}, {"4", 60.0}}};
    const QImage wholeImage =
        painted([&](QPainter& p, const QRectF& r) { paintLineChart(p, r, whole, light); });
    const QImage brokenImage =
        painted([&](QPainter& p, const QRectF& r) { paintLineChart(p, r, broken, light); });
    EXPECT_EQ(columnRuns(wholeImage, light.accent).size(), 1u);
    EXPECT_EQ(columnRuns(brokenImage, light.accent).size(), 2u);
}

TEST_F(ChartsTest, TheLineRisesWithTheScore) {
    const models::LineChartData low{{{"1", 10.0}}};
    const models::LineChartData high{{{"1", 90.0}}};
    const auto topOf = [&](const QImage& image) {
        for (int y = 0; y < image.height(); ++y) {
            if (countNear(image, light.accent, QRect(0, y, image.width(), 1)) > 0) {
                return y;
            }
        }
        return image.height();
    };
    EXPECT_LT(
        topOf(painted([&](QPainter& p, const QRectF& r) { paintLineChart(p, r, high, light); })),
        topOf(painted([&](QPainter& p, const QRectF& r) { paintLineChart(p, r, low, light); })) -
            50);
}

TEST_F(ChartsTest, TheRingFillsClockwiseFromTheTop) {
    const QRectF square(150, 80, 100, 100);
    const QImage quarter = painted(
        [&](QPainter& p, const QRectF& r) {
            paintRing(p, r, {0.25, "Daily goal"}, light);
        },
        square);
    EXPECT_GT(countNear(quarter, light.accent, QRect(200, 80, 50, 50)), 20) << "top right";
    EXPECT_EQ(countNear(quarter, light.accent, QRect(150, 130, 50, 50)), 0) << "bottom left";
    const QImage none = painted(
        [&](QPainter& p, const QRectF& r) {
            paintRing(p, r, {0.0, "Daily goal"}, light);
        },
        square);
    EXPECT_EQ(countNear(none, light.accent), 0);
    const QImage over = painted(
        [&](QPainter& p, const QRectF& r) {
            paintRing(p, r, {7.0, "Daily goal"}, light);
        },
        square);
    EXPECT_GT(countNear(over, light.accent, QRect(150, 130, 50, 50)), 20) << "clamped to full";
}

TEST_F(ChartsTest, TheSameCodeWritesAReadablePdf) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString path = folder.filePath(QStringLiteral("charts.pdf"));
    {
        QPdfWriter writer(path);
        writer.setPageSize(QPageSize(QPageSize::A4));
        QPainter painter(&writer);
        const qreal width = writer.width();
        const qreal band = writer.height() / 4.0;
        models::StackedBarDay day{"Tuesday", {}};
        day.seconds[0] = 2400.0;
        paintBarChart(painter, QRectF(0, 0, width, band), {{{"Monday", 3600.0}}, 1800.0}, light);
        paintStackedBarChart(painter, QRectF(0, band, width, band), {{day}}, light);
        paintLineChart(painter, QRectF(0, 2 * band, width, band), {{{"Week 46", 72.0}}}, light);
        paintRing(painter, QRectF(0, 3 * band, width, band), {0.6, "Daily goal"}, light);
    }
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_TRUE(bytes.startsWith("%PDF")) << bytes.left(8).toStdString();
    EXPECT_GT(bytes.size(), 1000);
    const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (pdftotext.isEmpty()) {
        GTEST_SKIP() << "pdftotext is not installed: the PDF's text is not read back";
    }
    QProcess process;
    process.start(pdftotext, {path, QStringLiteral("-")});
    ASSERT_TRUE(process.waitForFinished(20000));
    const QString text = QString::fromUtf8(process.readAllStandardOutput());
    for (const char* expected : {"Monday", "Tuesday", "Week 46", "1 h 00 min", "100%", "60%"}) {
        EXPECT_TRUE(text.contains(QString::fromUtf8(expected)))
            << expected << " in " << text.toStdString();
    }
}

}  // namespace
}  // namespace lumenote::ui::design
