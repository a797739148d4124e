// The Today page: the day's study time against the daily goal (a ring), the
// day's focus score, a timeline of the whole day, the day's sessions, a card
// for the session that runs now (or a way to start one), and a card inviting
// review while unclassified activity waits.
//
// The page shows; what it asks for (open a session, start or control one,
// review) it asks through its signals, so that the tray's panel stays the one
// place where sessions are run.
#pragma once

#include <functional>
#include <optional>

#include <QWidget>

#include "foundation/dates.hpp"
#include "shell/app_commands.hpp"
#include "shell/panel_model.hpp"
#include "ui/models/today_view.hpp"

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace lumenote::recording {
class RecordingStore;
class UnclassifiedReviewService;
}  // namespace lumenote::recording

namespace lumenote::ui {

class GoalRing;

namespace design {
class Card;
class Chip;
class Metric;
class TimelineStrip;
}  // namespace design

class TodayPage final : public QWidget {
    Q_OBJECT

  public:
    // `store` and `review` must outlive the page; `now` gives the wall
    // clock's time and `dailyGoalMinutes` the goal as the preferences hold
    // it (below 1: no goal).
    TodayPage(recording::RecordingStore& store, recording::UnclassifiedReviewService& review,
              LocalCalendar calendar, std::function<Date()> now,
              std::function<long long()> dailyGoalMinutes, QWidget* parent = nullptr);

    // Reads the day again (a session ended, the goal changed, a new day).
    void reload();
    // The running session as the panel shows it, or none.
    void showLiveSession(const std::optional<shell::LiveSessionPanel>& live);
    const models::TodayView& view() const { return view_; }

  Q_SIGNALS:
    void sessionOpened(const QString& sessionId);
    void newSessionRequested();
    void reviewRequested();
    // Pause or resume, study away or return, end.
    void commandRequested(shell::AppCommand command);

  private:
    QWidget* buildFigures();
    QWidget* buildLiveCard();
    void fillSessions();
    void showError(const QString& message);

    recording::RecordingStore& store_;
    recording::UnclassifiedReviewService& review_;
    LocalCalendar calendar_;
    std::function<Date()> now_;
    std::function<long long()> dailyGoalMinutes_;
    models::TodayView view_;
    bool studyingAway_ = false;

    QLabel* date_;
    QLabel* banner_;
    GoalRing* ring_;
    design::Metric* studied_;
    design::Metric* focus_;
    design::Card* liveCard_;
    QLabel* liveSubject_;
    QLabel* liveElapsed_;
    QLabel* liveActivity_;
    design::Chip* liveChip_;
    QLabel* liveSplit_;
    QPushButton* pause_;
    QPushButton* away_;
    QPushButton* end_;
    QPushButton* start_;
    design::Card* reviewCard_;
    QLabel* reviewText_;
    design::TimelineStrip* timeline_;
    QLabel* timelineEmpty_;
    QVBoxLayout* sessions_;
};

}  // namespace lumenote::ui
