// The card, metric, row, chip and chart view read back as a person and a
// screen reader meet them: their words, their accessible names, their
// colours in light and dark, and the row's keyboard.
#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ui/design/card.hpp"
#include "ui/design/chart_view.hpp"
#include "ui/design/chip.hpp"
#include "ui/design/design_test_support.hpp"
#include "ui/design/metric.hpp"
#include "ui/design/palette.hpp"
#include "ui/design/row.hpp"

namespace lumenote::ui::design {
namespace {

using classification::ActivityClassification;
using recording::StudySessionStatus;
using testing::near;

class DesignWidgetsTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { testing::ensureApplication(); }
    void TearDown() override { testing::applyAppearance(false); }

    static void press(QWidget& widget, int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &down);
    }
};

TEST_F(DesignWidgetsTest, ChipsCarryTheirWordAndTheirAppearancesColour) {
    for (const bool dark : {false, true}) {
        testing::applyAppearance(dark);
        Chip chip;
        chip.setClassification(ActivityClassification::distracting);
        EXPECT_EQ(chip.text(), "Distracting");
        EXPECT_EQ(chip.accessibleName(), "Distracting");
        EXPECT_EQ(chip.background(),
                  classificationColor(ActivityClassification::distracting, dark));
        chip.adjustSize();
        const QImage image = chip.grab().toImage();
        EXPECT_TRUE(near(image.pixelColor(4, image.height() / 2), chip.background()));

        chip.setStatus(StudySessionStatus::interrupted);
        EXPECT_EQ(chip.text(), "Interrupted");
        EXPECT_EQ(chip.background(), statusColor(StudySessionStatus::interrupted, dark));
    }
}

TEST_F(DesignWidgetsTest, AChipFollowsALaterChangeOfAppearance) {
    testing::applyAppearance(false);
    Chip chip;
    chip.setStatus(StudySessionStatus::running);
    const QString lightStyle = chip.styleSheet();
    testing::applyAppearance(true);
    EXPECT_NE(chip.styleSheet(), lightStyle);
    EXPECT_TRUE(chip.styleSheet().contains(statusColor(StudySessionStatus::running, true).name()));
}

TEST_F(DesignWidgetsTest, StatusWordsAreTheProductsOwn) {
    EXPECT_EQ(statusChipText(StudySessionStatus::running), "Running");
    EXPECT_EQ(statusChipText(StudySessionStatus::paused), "Paused");
    EXPECT_EQ(statusChipText(StudySessionStatus::completed), "Completed");
    EXPECT_EQ(statusChipText(StudySessionStatus::interrupted), "Interrupted");
}

TEST_F(DesignWidgetsTest, ACardIsNamedByItsTitleAndDrawnOnTheBaseColour) {
    for (const bool dark : {false, true}) {
        testing::applyAppearance(dark);
        Card card(QStringLiteral("Today"));
        EXPECT_EQ(card.accessibleName(), "Today");
        EXPECT_TRUE(card.findChild<QLabel*>(QStringLiteral("cardSubtitle"))->isHidden());
        card.setSubtitle(QStringLiteral("Sunday, 16 November"));
        EXPECT_FALSE(card.findChild<QLabel*>(QStringLiteral("cardSubtitle"))->isHidden());
        card.bodyLayout()->addWidget(new QLabel(QStringLiteral("Body")));
        card.resize(240, 120);
        const QImage image = card.grab().toImage();
        EXPECT_TRUE(
            near(image.pixelColor(120, 110), QApplication::palette().color(QPalette::Base)));
        EXPECT_EQ(isDark(card.palette()), dark);
    }
}

TEST_F(DesignWidgetsTest, AMetricSaysItsValueWithItsCaptionOrWhyThereIsNone) {
    Metric metric;
    metric.setValue(QStringLiteral("2 h 05 min"), QStringLiteral("studied today"));
    EXPECT_EQ(metric.accessibleName(), "2 h 05 min, studied today");
    EXPECT_TRUE(metric.isAvailable());
    auto* value = metric.findChild<QLabel*>(QStringLiteral("metricValue"));
    const qreal figureSize = value->font().pointSizeF();
    metric.setUnavailable(QStringLiteral("Not enough data"));
    EXPECT_FALSE(metric.isAvailable());
    EXPECT_EQ(metric.accessibleName(), "Not enough data, studied today");
    EXPECT_EQ(value->foregroundRole(), QPalette::PlaceholderText);
    EXPECT_LT(value->font().pointSizeF(), figureSize);
    auto* caption = metric.findChild<QLabel*>(QStringLiteral("metricCaption"));
    EXPECT_FALSE(caption->isHidden());
    // A whole sentence names the figure itself: no caption repeats it.
    metric.setUnavailable(QStringLiteral("Record a minute of activity to show a score."));
    EXPECT_TRUE(caption->isHidden());
    metric.setValue(QStringLiteral("82%"), QStringLiteral("focus score"));
    EXPECT_EQ(value->foregroundRole(), QPalette::WindowText);
    EXPECT_EQ(value->font().pointSizeF(), figureSize);
    EXPECT_FALSE(caption->isHidden());
}

TEST_F(DesignWidgetsTest, ARowIsNamedByAllItShows) {
    Row row(QStringLiteral("Spanish"), QStringLiteral("09:00–09:45"));
    row.setTrailingText(QStringLiteral("45 min"));
    EXPECT_EQ(row.accessibleName(), "Spanish, 09:00–09:45, 45 min");
    auto* chip = new Chip;
    chip->setStatus(StudySessionStatus::completed);
    row.setTrailingWidget(chip);
    EXPECT_EQ(row.accessibleName(), "Spanish, 09:00–09:45, Completed");
    EXPECT_TRUE(row.findChild<QLabel*>(QStringLiteral("rowTrailing"))->isHidden());
    row.setSubtitle({});
    row.setTrailingText({});
    EXPECT_EQ(row.accessibleName(), "Spanish");
    EXPECT_EQ(row.findChild<Chip*>(), nullptr) << "the text replaced the chip";
}

TEST_F(DesignWidgetsTest, AClickableRowTakesTheKeyboardAndActivatesOnEnterAndSpace) {
    Row row(QStringLiteral("Editor"));
    int activated = 0;
    QObject::connect(&row, &Row::activated, [&] { ++activated; });
    press(row, Qt::Key_Return);
    EXPECT_EQ(activated, 0) << "a plain row is not a control";
    EXPECT_EQ(row.focusPolicy(), Qt::NoFocus);
    row.setClickable(true);
    EXPECT_EQ(row.focusPolicy(), Qt::StrongFocus);
    press(row, Qt::Key_Return);
    press(row, Qt::Key_Enter);
    press(row, Qt::Key_Space);
    press(row, Qt::Key_A);
    EXPECT_EQ(activated, 3);
}

TEST_F(DesignWidgetsTest, AChartViewCarriesItsFiguresAsATable) {
    ChartView chart;
    chart.setBarChart({{{"Mon", 3900.0}, {"Tue", 0.0}}, std::nullopt});
    EXPECT_EQ(chart.kind(), ChartView::Kind::bar);
    EXPECT_EQ(chart.accessibleName(), "Study time per day");
    EXPECT_EQ(chart.tableText(), "Day\tStudy time\nMon\t1 h 05 min\nTue\t0 s\n");
    EXPECT_EQ(chart.accessibleDescription(), chart.tableText());
    chart.resize(chart.sizeHint());
    chart.setShowsTable(true);
    ASSERT_TRUE(chart.showsTable());
    auto* table = chart.findChild<QTableWidget*>();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->rowCount(), 2);
    EXPECT_EQ(table->item(0, 1)->text(), "1 h 05 min");
    chart.setLineChart({{{"3 Nov", 70.0}, {"10 Nov", std::nullopt}}});
    EXPECT_EQ(table->item(1, 1)->text(), "No score") << "the table follows new figures";
    EXPECT_EQ(chart.accessibleName(), "Focus score by week");
    chart.setShowsTable(false);
    EXPECT_FALSE(chart.showsTable());
}

TEST_F(DesignWidgetsTest, ANamedChartKeepsItsName) {
    ChartView chart;
    chart.setAccessibleName(QStringLiteral("This week"));
    chart.setStackedBarChart({});
    EXPECT_EQ(chart.accessibleName(), "This week");
}

TEST_F(DesignWidgetsTest, ARingViewIsSmallAndPaintsTheAccent) {
    testing::applyAppearance(false);
    ChartView ring;
    ring.setRing({0.5, "Daily goal"});
    EXPECT_EQ(ring.kind(), ChartView::Kind::ring);
    EXPECT_EQ(ring.tableText(), "Daily goal\tReached\nDaily goal\t50%\n");
    ring.resize(ring.sizeHint());
    EXPECT_LE(ring.width(), 64);
    const QImage image = ring.grab().toImage();
    EXPECT_GT(testing::countNear(image, accentColor(false)), 10);
}

}  // namespace
}  // namespace lumenote::ui::design
