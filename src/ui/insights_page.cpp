#include "ui/insights_page.hpp"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "settings/preferences_store.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/chart_view.hpp"
#include "ui/design/metric.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/design/row.hpp"
#include "ui/design/year_calendar_view.hpp"
#include "ui/insight_card_widget.hpp"
#include "ui/models/history_list.hpp"
#include "ui/models/insights_source.hpp"
#include "ui/models/receipt_options.hpp"
#include "ui/models/weekly_receipt.hpp"
#include "ui/receipt_file_dialog.hpp"

namespace lumenote::ui {

namespace {

using receipts::ReceiptFormat;

// Removes and deletes every item of `layout`, nested layouts included.
void clear(QLayout* layout) {
    while (QLayoutItem* item = layout->takeAt(0)) {
        if (QWidget* widget = item->widget()) {
            delete widget;
        } else if (QLayout* inner = item->layout()) {
            clear(inner);
        }
        delete item;
    }
}

QLabel* mutedLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

// A row per line ("Organic chemistry … 1 h 05 min"), or the muted `empty`
// sentence when there is none.
void fillLines(QVBoxLayout* layout, const std::vector<models::ReceiptLine>& lines,
               const QString& empty, QWidget* parent) {
    clear(layout);
    if (lines.empty()) {
        layout->addWidget(mutedLabel(empty, parent));
        return;
    }
    for (const models::ReceiptLine& line : lines) {
        auto* row = new design::Row(qt(line.name), {}, parent);
        row->setTrailingText(qt(line.duration));
        layout->addWidget(row);
    }
}

void setMetric(design::Metric* metric, const models::InsightsFigure& figure) {
    if (figure.unavailable) {
        metric->setValue({}, qt(figure.caption));
        metric->setUnavailable(qt(*figure.unavailable));
    } else {
        metric->setValue(qt(figure.value), qt(figure.caption));
    }
}

design::Card* listCard(const QString& title, QVBoxLayout*& list, QWidget* parent) {
    auto* card = new design::Card(title, {}, parent);
    list = new QVBoxLayout;
    list->setSpacing(2);
    card->bodyLayout()->addLayout(list);
    card->bodyLayout()->addStretch(1);
    return card;
}

design::Card* chartCard(const QString& title, design::ChartView*& chart, QWidget* parent) {
    auto* card = new design::Card(title, {}, parent);
    chart = new design::ChartView(card);
    chart->setAccessibleName(title);
    chart->setMinimumHeight(180);
    card->bodyLayout()->addWidget(chart, 1);
    return card;
}

}  // namespace

InsightsPage::InsightsPage(recording::SessionHistoryReader& reader,
                           recording::RecordingStore& store,
                           insights::InsightDismissalStore& dismissals,
                           settings::DefaultsDomain& defaults, LocalCalendar calendar,
                           unsigned firstWeekday, std::function<Date()> now, QWidget* parent)
    : QWidget(parent),
      reader_(reader),
      store_(store),
      dismissals_(dismissals),
      defaults_(defaults),
      calendar_(std::move(calendar)),
      firstWeekday_(firstWeekday),
      now_(std::move(now)),
      weekDate_(now_()) {
    setObjectName(QStringLiteral("insightsPage"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(12);
    buildHeader(layout);
    buildBody(layout);
    reload();
}

InsightsPage::~InsightsPage() = default;

void InsightsPage::buildHeader(QVBoxLayout* layout) {
    auto* title = new QLabel(QStringLiteral("Insights"), this);
    QFont titleFont = title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setWeight(QFont::Bold);
    title->setFont(titleFont);
    layout->addWidget(title);

    auto* selector = new QHBoxLayout;
    previous_ = design::namedButton(QStringLiteral("‹ Previous Week"),
                                    QStringLiteral("insightsPreviousWeek"), this);
    next_ = design::namedButton(QStringLiteral("Next Week ›"), QStringLiteral("insightsNextWeek"),
                                this);
    thisWeek_ =
        design::namedButton(QStringLiteral("This Week"), QStringLiteral("insightsThisWeek"), this);
    weekTitle_ = new QLabel(this);
    weekTitle_->setObjectName(QStringLiteral("insightsWeekTitle"));
    QFont weekFont = weekTitle_->font();
    weekFont.setBold(true);
    weekFont.setPointSizeF(weekFont.pointSizeF() * 1.15);
    weekTitle_->setFont(weekFont);
    weekTitle_->setAlignment(Qt::AlignCenter);
    weekTitle_->setMinimumWidth(240);
    saveReceipt_ = design::namedButton(QStringLiteral("Save Weekly Receipt…"),
                                       QStringLiteral("insightsSaveReceipt"), this);
    selector->addWidget(previous_);
    selector->addWidget(weekTitle_);
    selector->addWidget(next_);
    selector->addWidget(thisWeek_);
    selector->addStretch(1);
    selector->addWidget(saveReceipt_);
    layout->addLayout(selector);

    banner_ = design::errorBanner(QStringLiteral("insightsBanner"), this);
    layout->addWidget(banner_);

    connect(previous_, &QPushButton::clicked, this, &InsightsPage::showPreviousWeek);
    connect(next_, &QPushButton::clicked, this, &InsightsPage::showNextWeek);
    connect(thisWeek_, &QPushButton::clicked, this, &InsightsPage::showThisWeek);
    connect(saveReceipt_, &QPushButton::clicked, this, &InsightsPage::chooseReceiptFile);
}

void InsightsPage::buildBody(QVBoxLayout* layout) {
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("insightsScroll"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    content_ = new QWidget(scroll);
    content_->setAutoFillBackground(false);
    auto* column = new QVBoxLayout(content_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);

    auto* glance = new design::Card(QStringLiteral("Week at a glance"), {}, content_);
    auto* metrics = new QHBoxLayout;
    metrics->setSpacing(24);
    studyTime_ = new design::Metric(glance);
    sessions_ = new design::Metric(glance);
    focusScore_ = new design::Metric(glance);
    activeDays_ = new design::Metric(glance);
    for (design::Metric* metric : {studyTime_, sessions_, focusScore_, activeDays_}) {
        metrics->addWidget(metric, 1, Qt::AlignTop);
    }
    glance->bodyLayout()->addLayout(metrics);
    emptyWeek_ = mutedLabel({}, glance);
    emptyWeek_->setObjectName(QStringLiteral("insightsEmptyWeek"));
    glance->bodyLayout()->addWidget(emptyWeek_);
    column->addWidget(glance);

    // The two charts of the days side by side; the trend across the whole
    // width, so that its eight week labels have room; the three lists in a
    // row, as each is short.
    auto* days = new QHBoxLayout;
    days->setSpacing(12);
    days->addWidget(chartCard(QStringLiteral("Study time per day"), perDay_, content_), 1);
    days->addWidget(chartCard(QStringLiteral("Classes per day"), classes_, content_), 1);
    column->addLayout(days);
    column->addWidget(chartCard(QStringLiteral("Focus score, last 8 weeks"), trend_, content_));
    auto* lists = new QHBoxLayout;
    lists->setSpacing(12);
    lists->addWidget(listCard(QStringLiteral("Time per subject"), subjects_, content_), 1);
    lists->addWidget(listCard(QStringLiteral("Top Focused activities"), topFocused_, content_), 1);
    lists->addWidget(
        listCard(QStringLiteral("Top Distracting activities"), topDistracting_, content_), 1);
    column->addLayout(lists);

    insightsCard_ = new design::Card(QStringLiteral("Insights"), {}, content_);
    insightsCard_->setObjectName(QStringLiteral("insightsCards"));
    insights_ = new QVBoxLayout;
    insights_->setSpacing(10);
    insightsCard_->bodyLayout()->addLayout(insights_);
    column->addWidget(insightsCard_);

    auto* yearCard = new design::Card(QStringLiteral("Study calendar"), {}, content_);
    year_ = new design::YearCalendarView(yearCard);
    year_->setObjectName(QStringLiteral("insightsYearCalendar"));
    auto* yearLine = new QHBoxLayout;
    streak_ = new QLabel(yearCard);
    streak_->setObjectName(QStringLiteral("insightsStreak"));
    QFont streakFont = streak_->font();
    streakFont.setBold(true);
    streak_->setFont(streakFont);
    yearSummary_ = mutedLabel({}, yearCard);
    yearLine->addWidget(streak_);
    yearLine->addSpacing(12);
    yearLine->addWidget(yearSummary_, 1);
    yearCard->bodyLayout()->addLayout(yearLine);
    yearCard->bodyLayout()->addWidget(year_);
    column->addWidget(yearCard);

    column->addWidget(listCard(QStringLiteral("Personal bests"), personalBests_, content_));
    column->addStretch(1);
    scroll->setWidget(content_);
    layout->addWidget(scroll, 1);
}

models::InsightsRequest InsightsPage::request(Date now) const {
    return {weekDate_, now, firstWeekday_,
            settings::PreferencesStore(defaults_).dailyStudyGoalMinutes()};
}

Date InsightsPage::readAt() const {
    return data_ ? data_->now : now_();
}

void InsightsPage::reload() {
    auto read = models::readInsightsData(reader_, store_, calendar_, request(now_()),
                                         dismissals_.records());
    if (!read) {
        showUnreadable(read.error());
        return;
    }
    data_ = std::move(*read);
    showData();
}

void InsightsPage::reloadWeek() {
    if (!data_) {
        reload();
        return;
    }
    auto week =
        models::readInsightsWeek(reader_, calendar_, request(data_->now), dismissals_.records());
    if (!week) {
        showUnreadable(week.error());
        return;
    }
    data_->week = std::move(*week);
    showData();
}

void InsightsPage::showData() {
    banner_->setVisible(false);
    view_ = models::makeInsightsView(*data_, calendar_);
    content_->setVisible(true);
    saveReceipt_->setEnabled(true);
    display(*view_);
    if (const auto& problem = dismissals_.lastError()) {
        showError(qt(*problem));
    }
}

void InsightsPage::showUnreadable(const StoreError& error) {
    data_.reset();
    view_.reset();
    content_->setVisible(false);
    saveReceipt_->setEnabled(false);
    showError(qt(models::historyReadFailureText(error)));
}

void InsightsPage::showPreviousWeek() {
    const auto week = insights::weekContaining(weekDate_, calendar_, firstWeekday_);
    weekDate_ = insights::previousWeek(week, calendar_, firstWeekday_).start;
    reloadWeek();
}

void InsightsPage::showNextWeek() {
    const auto week = insights::weekContaining(weekDate_, calendar_, firstWeekday_);
    if (week.end <= readAt()) {
        weekDate_ = week.end;
        reloadWeek();
    }
}

void InsightsPage::showThisWeek() {
    weekDate_ = readAt();
    reloadWeek();
}

void InsightsPage::display(const models::InsightsView& view) {
    weekTitle_->setText(qt(view.weekTitle));
    weekTitle_->setAccessibleName(QStringLiteral("Selected week: ") + qt(view.weekTitle));
    next_->setEnabled(!view.isCurrentWeek);
    thisWeek_->setEnabled(!view.isCurrentWeek);
    showFigures(view);
    showLists(view);
    showInsights(view);
    showYear(view);
    showPersonalBests(view);
}

void InsightsPage::showFigures(const models::InsightsView& view) {
    setMetric(studyTime_, view.studyTime);
    setMetric(sessions_, view.sessions);
    setMetric(focusScore_, view.focusScore);
    setMetric(activeDays_, view.activeDays);
    emptyWeek_->setText(qt(view.emptyWeek.value_or(std::string())));
    emptyWeek_->setVisible(view.emptyWeek.has_value());
    perDay_->setBarChart(view.studyTimePerDay);
    classes_->setStackedBarChart(view.classesPerDay);
    trend_->setLineChart(view.focusTrend);
}

void InsightsPage::showLists(const models::InsightsView& view) {
    fillLines(subjects_, view.subjects, QStringLiteral("No subject studied this week."), content_);
    fillLines(topFocused_, view.topFocused, QStringLiteral("No Focused activity this week."),
              content_);
    fillLines(topDistracting_, view.topDistracting,
              QStringLiteral("No Distracting activity this week."), content_);
}

void InsightsPage::showInsights(const models::InsightsView& view) {
    clear(insights_);
    if (view.locked) {
        insightsCard_->setSubtitle(qt(view.availabilityTitle));
        auto* message = new QLabel(qt(view.availabilityMessage), insightsCard_);
        message->setObjectName(QStringLiteral("insightsLockedMessage"));
        message->setWordWrap(true);
        insights_->addWidget(message);
        auto* needed = new QLabel(qt(view.daysNeeded), insightsCard_);
        needed->setObjectName(QStringLiteral("insightsDaysNeeded"));
        QFont bold = needed->font();
        bold.setBold(true);
        needed->setFont(bold);
        needed->setWordWrap(true);
        insights_->addWidget(needed);
        return;
    }
    insightsCard_->setSubtitle(qt(view.availabilityTitle));
    if (view.noCards) {
        insights_->addWidget(mutedLabel(qt(*view.noCards), insightsCard_));
    }
    auto* cards = new QGridLayout;
    cards->setSpacing(10);
    for (std::size_t index = 0; index < view.cards.size(); ++index) {
        auto* card = new InsightCardWidget(view.cards[index], insightsCard_);
        // Queued: dismissing rebuilds the cards, the clicked one among them.
        connect(card, &InsightCardWidget::dismissRequested, this, &InsightsPage::dismiss,
                Qt::QueuedConnection);
        cards->addWidget(card, static_cast<int>(index / 2), static_cast<int>(index % 2));
    }
    cards->setColumnStretch(0, 1);
    cards->setColumnStretch(1, 1);
    insights_->addLayout(cards);
}

void InsightsPage::showYear(const models::InsightsView& view) {
    year_->setCalendar(view.year);
    streak_->setText(qt(view.year.streakText));
    yearSummary_->setText(qt(view.year.summaryText));
}

void InsightsPage::showPersonalBests(const models::InsightsView& view) {
    clear(personalBests_);
    if (view.noPersonalBests) {
        personalBests_->addWidget(mutedLabel(qt(*view.noPersonalBests), content_));
        return;
    }
    for (const models::PersonalBestLine& line : view.personalBests) {
        auto* row = new design::Row(qt(line.title), qt(line.day), content_);
        row->setTrailingText(qt(line.value));
        personalBests_->addWidget(row);
    }
}

void InsightsPage::dismiss(const QString& id, const QString& evidenceRevision) {
    if (!data_) {
        return;
    }
    for (const insights::LocalInsightFact& fact : data_->week.facts) {
        if (qt(fact.id) == id && qt(fact.evidenceRevision) == evidenceRevision) {
            const bool saved = dismissals_.dismiss(fact);
            reloadWeek();
            if (!saved && dismissals_.lastError()) {
                showError(qt(*dismissals_.lastError()));
            }
            return;
        }
    }
}

bool InsightsPage::saveWeeklyReceipt(const std::filesystem::path& path, ReceiptFormat format) {
    if (!data_) {
        return false;
    }
    // Only the week that holds today may show today's streak.
    const std::optional<int> streak = view_ && view_->isCurrentWeek
                                          ? std::optional<int>(data_->standing.currentStreak)
                                          : std::nullopt;
    const auto receipt = models::makeWeeklyReceipt(
        data_->week.figures, streak, models::readReceiptOptions(defaults_), calendar_);
    const auto written = receipts::writeWeeklyReceipt(receipt, path, format);
    if (!written) {
        showError(qt(written.error().message()));
        return false;
    }
    banner_->setVisible(false);
    return true;
}

void InsightsPage::chooseReceiptFile() {
    if (!data_) {
        return;
    }
    const auto target =
        ui::chooseReceiptFile(this, QStringLiteral("Save Weekly Receipt"),
                              receipts::defaultReceiptFileName(
                                  receipts::ReceiptKind::week,
                                  data_->week.figures.days.front().dayKey, ReceiptFormat::png));
    if (target) {
        saveWeeklyReceipt(target->path, target->format);
    }
}

void InsightsPage::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

}  // namespace lumenote::ui
