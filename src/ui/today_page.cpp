#include "ui/today_page.hpp"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "recording/recording_store.hpp"
#include "recording/unclassified_review_service.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/chip.hpp"
#include "ui/design/metric.hpp"
#include "ui/design/page_title.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/design/row.hpp"
#include "ui/design/timeline_strip.hpp"
#include "ui/goal_ring.hpp"
#include "ui/models/review_list.hpp"

namespace lumenote::ui {

namespace {

constexpr int kRingSize = 72;

QDateTime localTime(Date date) {
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(date.millisecondsSince1970()));
}

QLabel* mutedLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QPushButton* commandButton(const QString& title, QWidget* parent) {
    auto* button = new QPushButton(title, parent);
    button->setAccessibleName(title);
    return button;
}

}  // namespace

TodayPage::TodayPage(recording::RecordingStore& store, recording::UnclassifiedReviewService& review,
                     LocalCalendar calendar, std::function<Date()> now,
                     std::function<long long()> dailyGoalMinutes, QWidget* parent)
    : QWidget(parent),
      store_(store),
      review_(review),
      calendar_(std::move(calendar)),
      now_(std::move(now)),
      dailyGoalMinutes_(std::move(dailyGoalMinutes)) {
    setObjectName(QStringLiteral("todayPage"));
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    outer->addWidget(scroll);
    auto* content = new QWidget(scroll);
    scroll->setWidget(content);

    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(12);
    layout->addWidget(design::makePageTitle(QStringLiteral("Today"), content));
    date_ = mutedLabel(content);
    date_->setObjectName(QStringLiteral("todayDate"));
    layout->addWidget(date_);

    banner_ = design::errorBanner(QStringLiteral("todayBanner"), content);
    layout->addWidget(banner_);

    layout->addWidget(buildFigures());
    layout->addWidget(buildLiveCard());

    reviewCard_ = new design::Card(QStringLiteral("Unclassified activity"), {}, content);
    reviewCard_->setObjectName(QStringLiteral("todayReviewCard"));
    reviewText_ = new QLabel(reviewCard_);
    reviewText_->setWordWrap(true);
    auto* reviewButton = commandButton(QStringLiteral("Review Unclassified Activity"), reviewCard_);
    reviewButton->setObjectName(QStringLiteral("todayReview"));
    connect(reviewButton, &QPushButton::clicked, this, &TodayPage::reviewRequested);
    auto* reviewRow = new QHBoxLayout;
    reviewRow->addWidget(reviewText_, 1);
    reviewRow->addWidget(reviewButton);
    reviewCard_->bodyLayout()->addLayout(reviewRow);
    layout->addWidget(reviewCard_);

    auto* timelineCard = new design::Card(QStringLiteral("Today's timeline"), {}, content);
    timeline_ = new design::TimelineStrip(timelineCard);
    timeline_->setObjectName(QStringLiteral("todayTimeline"));
    timeline_->setAccessibleName(QStringLiteral("Today's timeline"));
    timelineEmpty_ = mutedLabel(timelineCard);
    timelineEmpty_->setText(QStringLiteral("Nothing recorded yet today."));
    timelineCard->bodyLayout()->addWidget(timeline_);
    timelineCard->bodyLayout()->addWidget(timelineEmpty_);
    layout->addWidget(timelineCard);

    auto* sessionsCard = new design::Card(QStringLiteral("Today's sessions"), {}, content);
    sessions_ = sessionsCard->bodyLayout();
    layout->addWidget(sessionsCard);
    layout->addStretch(1);

    showLiveSession(std::nullopt);
    reload();
}

QWidget* TodayPage::buildFigures() {
    auto* figures = new QWidget(this);
    auto* row = new QHBoxLayout(figures);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);

    auto* studiedCard = new design::Card(QStringLiteral("Study time"), {}, figures);
    auto* studiedRow = new QHBoxLayout;
    ring_ = new GoalRing(studiedCard);
    ring_->setFixedSize(kRingSize, kRingSize);
    studied_ = new design::Metric(studiedCard);
    studied_->setObjectName(QStringLiteral("todayStudied"));
    studiedRow->addWidget(ring_);
    studiedRow->addWidget(studied_, 1);
    studiedCard->bodyLayout()->addLayout(studiedRow);
    studiedCard->bodyLayout()->addStretch(1);

    auto* focusCard = new design::Card(QStringLiteral("Focus score"), {}, figures);
    focus_ = new design::Metric(focusCard);
    focus_->setObjectName(QStringLiteral("todayFocus"));
    focusCard->bodyLayout()->addWidget(focus_);
    focusCard->bodyLayout()->addStretch(1);

    row->addWidget(studiedCard, 1);
    row->addWidget(focusCard, 1);
    return figures;
}

QWidget* TodayPage::buildLiveCard() {
    liveCard_ = new design::Card(QStringLiteral("Now"), {}, this);
    liveCard_->setObjectName(QStringLiteral("todayLiveCard"));
    liveSubject_ = new QLabel(liveCard_);
    QFont subjectFont = liveSubject_->font();
    subjectFont.setBold(true);
    liveSubject_->setFont(subjectFont);
    liveSubject_->setWordWrap(true);
    liveElapsed_ = new QLabel(liveCard_);
    liveElapsed_->setObjectName(QStringLiteral("todayElapsed"));
    liveElapsed_->setAccessibleName(QStringLiteral("Elapsed time"));
    QFont clockFont = liveElapsed_->font();
    clockFont.setPointSizeF(clockFont.pointSizeF() * 1.8);
    clockFont.setBold(true);
    liveElapsed_->setFont(clockFont);
    liveActivity_ = new QLabel(liveCard_);
    liveActivity_->setAccessibleName(QStringLiteral("Current activity"));
    liveChip_ = new design::Chip(liveCard_);
    liveSplit_ = mutedLabel(liveCard_);
    auto* activityRow = new QHBoxLayout;
    activityRow->addWidget(liveActivity_);
    activityRow->addWidget(liveChip_);
    activityRow->addStretch(1);

    pause_ = commandButton(QStringLiteral("Pause"), liveCard_);
    pause_->setObjectName(QStringLiteral("todayPause"));
    away_ = commandButton(QStringLiteral("Study away from Mac"), liveCard_);
    away_->setObjectName(QStringLiteral("todayAway"));
    end_ = commandButton(QStringLiteral("End"), liveCard_);
    end_->setObjectName(QStringLiteral("todayEnd"));
    start_ = commandButton(QStringLiteral("Start a Study Session…"), liveCard_);
    start_->setObjectName(QStringLiteral("todayStart"));
    connect(pause_, &QPushButton::clicked, this,
            [this] { Q_EMIT commandRequested(shell::AppCommand::togglePause); });
    connect(away_, &QPushButton::clicked, this, [this] {
        Q_EMIT commandRequested(studyingAway_ ? shell::AppCommand::returnToComputerStudy
                                              : shell::AppCommand::startPassiveStudy);
    });
    connect(end_, &QPushButton::clicked, this,
            [this] { Q_EMIT commandRequested(shell::AppCommand::endSession); });
    connect(start_, &QPushButton::clicked, this, &TodayPage::newSessionRequested);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(pause_);
    buttons->addWidget(away_);
    buttons->addWidget(end_);
    buttons->addWidget(start_);
    buttons->addStretch(1);

    QVBoxLayout* body = liveCard_->bodyLayout();
    body->addWidget(liveSubject_);
    body->addWidget(liveElapsed_);
    body->addLayout(activityRow);
    body->addWidget(liveSplit_);
    body->addLayout(buttons);
    return liveCard_;
}

void TodayPage::reload() {
    banner_->setVisible(false);
    const Date now = now_();
    date_->setText(QLocale().toString(localTime(now).date(), QLocale::LongFormat));
    auto view = models::readTodayView(store_, calendar_, now, dailyGoalMinutes_());
    if (!view) {
        showError(qt(models::historyReadFailureText(view.error())));
        return;
    }
    view_ = std::move(*view);
    const bool hasGoal = dailyGoalMinutes_() > 0;
    ring_->setVisible(hasGoal);
    ring_->setProgress(view_.goalProgress);
    studied_->setValue(qt(view_.studyTimeText), qt(view_.goalCaption));
    if (view_.hasFocusScore) {
        focus_->setValue(qt(view_.focusScoreText), qt(view_.focusScoreCaption));
    } else {
        focus_->setUnavailable(qt(view_.focusScoreCaption));
    }
    timeline_->setBlocks(view_.timeline, view_.timelineSpan);
    timeline_->setVisible(!view_.timeline.empty());
    timelineEmpty_->setVisible(view_.timeline.empty());
    fillSessions();

    const auto groups = review_.groups();
    const std::string invitation = groups ? models::reviewInvitationText(**groups) : std::string();
    reviewText_->setText(qt(invitation));
    reviewCard_->setVisible(!invitation.empty());
}

void TodayPage::fillSessions() {
    while (QLayoutItem* item = sessions_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    if (view_.sessions.empty()) {
        auto* none = mutedLabel(this);
        none->setText(QStringLiteral("No sessions yet today."));
        sessions_->addWidget(none);
        return;
    }
    for (const models::HistorySessionRow& session : view_.sessions) {
        const QString time =
            QLocale().toString(localTime(session.start).time(), QLocale::ShortFormat);
        auto* row = new design::Row(qt(session.subject),
                                    time + QStringLiteral(" · ") + qt(session.durationText) +
                                        QStringLiteral(" · focus ") + qt(session.focusScoreText));
        row->setObjectName(QStringLiteral("todaySession"));
        if (session.status) {
            auto* chip = new design::Chip;
            chip->setStatus(*session.status);
            row->setTrailingWidget(chip);
        }
        row->setClickable(true);
        const QString id = qt(session.id.upperString());
        connect(row, &design::Row::activated, this, [this, id] { Q_EMIT sessionOpened(id); });
        sessions_->addWidget(row);
    }
}

void TodayPage::showLiveSession(const std::optional<shell::LiveSessionPanel>& live) {
    const bool running = live.has_value();
    for (QWidget* widget : std::initializer_list<QWidget*>{liveElapsed_, liveActivity_, liveSplit_,
                                                           pause_, away_, end_}) {
        widget->setVisible(running);
    }
    start_->setVisible(!running);
    studyingAway_ = running && live->away;
    if (!running) {
        liveSubject_->setText(QStringLiteral("No session is running."));
        liveChip_->setVisible(false);
        return;
    }
    liveSubject_->setText(live->goal.empty() ? qt(live->subject)
                                             : qt(live->subject + " — " + live->goal));
    liveElapsed_->setText(
        qt(live->elapsedText) +
        (live->remainingText ? QStringLiteral("  ·  ") + qt(*live->remainingText) : QString()));
    liveActivity_->setText(qt(live->activityText));
    liveChip_->setVisible(live->classification.has_value());
    if (live->classification) {
        liveChip_->setClassification(*live->classification);
    }
    liveSplit_->setText(qt(live->splitText));
    pause_->setText(qt(live->pauseTitle));
    pause_->setAccessibleName(pause_->text());
    away_->setText(qt(live->awayTitle));
    away_->setAccessibleName(away_->text());
    away_->setEnabled(!live->paused);
}

void TodayPage::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

}  // namespace lumenote::ui
