// Samples of every design widget, grabbed in light and dark and written to
// <build>/screenshots/design/ for a person to look at. The test checks only
// that each sample was drawn at a readable size with the appearance's
// background; how it looks is for the reviewer.
#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QVBoxLayout>
#include <functional>
#include <memory>

#include "ui/design/card.hpp"
#include "ui/design/chart_view.hpp"
#include "ui/design/charts.hpp"
#include "ui/design/chip.hpp"
#include "ui/design/design_test_support.hpp"
#include "ui/design/metric.hpp"
#include "ui/design/row.hpp"
#include "ui/design/timeline_strip.hpp"

namespace lumenote::ui::design {
namespace {

using classification::ActivityClassification;
using models::TimelineBlockKind;

Date local(int hour, int minute) {
    const QDateTime time(QDate(2026, 11, 16), QTime(hour, minute));
    return Date::fromUnixSeconds(static_cast<double>(time.toSecsSinceEpoch()));
}

std::unique_ptr<QWidget> chips() {
    auto widget = std::make_unique<QWidget>();
    auto* layout = new QVBoxLayout(widget.get());
    auto* classes = new QHBoxLayout;
    for (const auto classification :
         {ActivityClassification::focused, ActivityClassification::distracting,
          ActivityClassification::neutral, ActivityClassification::unclassified,
          ActivityClassification::ignored}) {
        auto* chip = new Chip;
        chip->setClassification(classification);
        classes->addWidget(chip);
    }
    auto* statuses = new QHBoxLayout;
    for (const auto status :
         {recording::StudySessionStatus::running, recording::StudySessionStatus::paused,
          recording::StudySessionStatus::completed, recording::StudySessionStatus::interrupted}) {
        auto* chip = new Chip;
        chip->setStatus(status);
        statuses->addWidget(chip);
    }
    classes->addStretch();
    statuses->addStretch();
    layout->addLayout(classes);
    layout->addLayout(statuses);
    return widget;
}

std::unique_ptr<QWidget> todayCard() {
    auto card =
        std::make_unique<Card>(QStringLiteral("Today"), QStringLiteral("Sunday, 16 November"));
    auto* metrics = new QHBoxLayout;
    auto* ring = new ChartView;
    ring->setRing({0.62, "Daily goal"});
    ring->setFixedSize(64, 64);
    metrics->addWidget(ring);
    auto* studied = new Metric;
    studied->setValue(QStringLiteral("2 h 05 min"), QStringLiteral("studied today"));
    metrics->addWidget(studied);
    auto* score = new Metric;
    score->setValue(QStringLiteral("0%"), QStringLiteral("focus score"));
    score->setUnavailable(QStringLiteral("Not enough data"));
    metrics->addWidget(score);
    metrics->addStretch();
    card->bodyLayout()->addLayout(metrics);
    auto* strip = new TimelineStrip;
    strip->setBlocks(
        {{local(9, 0), local(9, 40), TimelineBlockKind::activity, ActivityClassification::focused,
          "Editor"},
         {local(9, 40), local(9, 48), TimelineBlockKind::activity, ActivityClassification::neutral,
          "Files"},
         {local(9, 55), local(10, 5), TimelineBlockKind::activity,
          ActivityClassification::distracting, "video.example"},
         {local(10, 5), local(10, 20), TimelineBlockKind::noInput, std::nullopt, "No input"},
         {local(10, 20), local(10, 35), TimelineBlockKind::sleep, std::nullopt, "Mac asleep"},
         {local(10, 35), local(11, 0), TimelineBlockKind::activity,
          ActivityClassification::unclassified, "Terminal"}});
    card->bodyLayout()->addWidget(strip);
    auto* row = new Row(QStringLiteral("Spanish vocabulary"), QStringLiteral("09:00–11:00"));
    auto* chip = new Chip;
    chip->setStatus(recording::StudySessionStatus::completed);
    row->setTrailingWidget(chip);
    row->setClickable(true);
    card->bodyLayout()->addWidget(row);
    auto* plain = new Row(QStringLiteral("A very long activity name that goes on and on"),
                          QStringLiteral("Local PDF"));
    plain->setTrailingText(QStringLiteral("45 min"));
    card->bodyLayout()->addWidget(plain);
    card->resize(460, card->sizeHint().height());
    return card;
}

std::unique_ptr<QWidget> chartsCard() {
    auto card = std::make_unique<Card>(QStringLiteral("This week"));
    auto* bars = new ChartView;
    bars->setBarChart({{{"Mon", 5400.0},
                        {"Tue", 2700.0},
                        {"Wed", 0.0},
                        {"Thu", 7800.0},
                        {"Fri", 1200.0},
                        {"Saturday the long one", 3600.0},
                        {"Sun", 600.0}},
                       5400.0});
    card->bodyLayout()->addWidget(bars);
    models::StackedBarChartData stacked;
    for (int day = 0; day < 7; ++day) {
        models::StackedBarDay entry{std::string("D") + std::to_string(day + 1), {}};
        entry.seconds = {1800.0 + day * 400.0, 600.0, 300.0 * (day % 3), 200.0, 100.0};
        stacked.days.push_back(entry);
    }
    auto* classes = new ChartView;
    classes->setStackedBarChart(stacked);
    card->bodyLayout()->addWidget(classes);
    auto* line = new ChartView;
    line->setLineChart({{{"29 Sep", 62.0},
                         {"6 Oct", 70.0},
                         {"13 Oct", std::nullopt},
                         {"20 Oct", 55.0},
                         {"27 Oct", 81.0},
                         {"3 Nov", 77.0},
                         {"10 Nov", std::nullopt},
                         {"17 Nov", 90.0}}});
    card->bodyLayout()->addWidget(line);
    auto* empty = new ChartView;
    empty->setBarChart({});
    empty->setFixedHeight(60);
    card->bodyLayout()->addWidget(empty);
    card->resize(460, card->sizeHint().height());
    return card;
}

TEST(DesignSamples, EveryWidgetIsGrabbedInLightAndDark) {
    testing::ensureApplication();
    const QString folder = QStringLiteral(LUMENOTE_BINARY_DIR "/screenshots/design");
    ASSERT_TRUE(QDir().mkpath(folder));
    const std::vector<std::pair<QString, std::function<std::unique_ptr<QWidget>()>>> samples{
        {QStringLiteral("chips"), chips},
        {QStringLiteral("today"), todayCard},
        {QStringLiteral("charts"), chartsCard}};
    for (const bool dark : {false, true}) {
        testing::applyAppearance(dark);
        for (const auto& [name, make] : samples) {
            // Each sample sits on a window-coloured background, as on a page.
            QWidget page;
            page.setAutoFillBackground(true);
            auto* layout = new QVBoxLayout(&page);
            layout->setContentsMargins(12, 12, 12, 12);
            std::unique_ptr<QWidget> sample = make();
            layout->addWidget(sample.release());
            page.adjustSize();
            page.resize(std::max(page.width(), 480), page.height());
            const QImage image = page.grab().toImage();
            const QString path =
                folder + QStringLiteral("/%1-%2.png").arg(name, dark ? "dark" : "light");
            EXPECT_TRUE(image.save(path)) << path.toStdString();
            EXPECT_GE(image.width(), 300) << name.toStdString();
            EXPECT_EQ(image.pixelColor(2, 2).lightness() < 128, dark) << name.toStdString();
        }
    }
    testing::applyAppearance(false);
}

TEST(DesignSamples, TheChartsArePaintedIntoAPdfPage) {
    testing::ensureApplication();
    const QString folder = QStringLiteral(LUMENOTE_BINARY_DIR "/screenshots/design");
    ASSERT_TRUE(QDir().mkpath(folder));
    QPdfWriter writer(folder + QStringLiteral("/charts.pdf"));
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    QPainter painter(&writer);
    const ChartStyle style = chartStyle(AppearanceController::lightPalette());
    const qreal width = writer.width();
    const qreal band = writer.height() / 4.0;
    const qreal gap = band / 8.0;
    paintBarChart(painter, QRectF(0, 0, width, band - gap),
                  {{{"Mon", 5400.0}, {"Tue", 2700.0}, {"Wed", 0.0}, {"Thu", 7800.0}}, 5400.0},
                  style);
    models::StackedBarDay day{"Mon", {3000.0, 600.0, 900.0, 200.0, 100.0}};
    paintStackedBarChart(painter, QRectF(0, band, width, band - gap), {{day, day}}, style);
    paintLineChart(
        painter, QRectF(0, 2 * band, width, band - gap),
        {{{"3 Nov", 62.0}, {"10 Nov", std::nullopt}, {"17 Nov", 80.0}, {"24 Nov", 71.0}}}, style);
    paintRing(painter, QRectF(0, 3 * band, width, band - gap), {0.62, "Daily goal"}, style);
    EXPECT_TRUE(painter.end());
}

}  // namespace
}  // namespace lumenote::ui::design
