// The Insights page: a week selector (previous, next, this week, in the
// user's week order), the week's headline figures, study time per day,
// classes per day, the focus score of the last eight weeks, time per subject,
// the top Focused and Distracting activities, the insight cards with their
// evidence and a Dismiss button (or the locked state and how many more
// active days it needs), the year calendar with the current streak, the
// personal records, and "Save Weekly Receipt…".
//
// Everything shown comes from models::makeInsightsView over what
// models::readInsightsData reads from the store: the page lays it out and
// forwards the user's choices. A store that cannot be read shows its
// sentence in the page's banner, as does a dismissal or a receipt that could
// not be saved.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>

#include <QWidget>

#include "foundation/dates.hpp"
#include "insights/insight_dismissal_store.hpp"
#include "recording/recording_store.hpp"
#include "recording/session_history_reader.hpp"
#include "settings/defaults_domain.hpp"
#include "ui/models/insights_source.hpp"
#include "ui/models/insights_view.hpp"
#include "ui/receipts/receipt_file.hpp"

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace lumenote::ui {

namespace design {
class Card;
class ChartView;
class Metric;
class YearCalendarView;
}  // namespace design

class InsightsPage final : public QWidget {
    Q_OBJECT

  public:
    // Every reference must outlive the page. `defaults` gives the daily goal
    // and the receipt options; `now` the wall clock's date; `firstWeekday`
    // 0 Sunday ... 6 Saturday.
    InsightsPage(recording::SessionHistoryReader& reader, recording::RecordingStore& store,
                 insights::InsightDismissalStore& dismissals, settings::DefaultsDomain& defaults,
                 LocalCalendar calendar, unsigned firstWeekday, std::function<Date()> now,
                 QWidget* parent = nullptr);
    ~InsightsPage() override;

    // Reads everything again at the wall clock's date now (after a session
    // ended, a restore, a change of the daily goal). Moving between weeks
    // reads only the selected week's part, as of the last reload.
    void reload();
    void showPreviousWeek();
    void showNextWeek();
    void showThisWeek();

    // What the page shows now; nullopt while the store could not be read.
    const std::optional<models::InsightsView>& view() const { return view_; }

    // Saves the selected week's receipt into `path` with the user's receipt
    // options; a failure shows its sentence in the banner. Returns whether
    // the file was written.
    bool saveWeeklyReceipt(const std::filesystem::path& path, receipts::ReceiptFormat format);

  private:
    models::InsightsRequest request(Date now) const;
    // The date the shown figures were read at.
    Date readAt() const;
    void reloadWeek();
    void showData();
    void showUnreadable(const StoreError& error);
    void buildHeader(QVBoxLayout* layout);
    void buildBody(QVBoxLayout* layout);
    void display(const models::InsightsView& view);
    void showFigures(const models::InsightsView& view);
    void showLists(const models::InsightsView& view);
    void showInsights(const models::InsightsView& view);
    void showYear(const models::InsightsView& view);
    void showPersonalBests(const models::InsightsView& view);
    void dismiss(const QString& id, const QString& evidenceRevision);
    // "Save Weekly Receipt…": asks for the file, then saves.
    void chooseReceiptFile();
    void showError(const QString& message);

    recording::SessionHistoryReader& reader_;
    recording::RecordingStore& store_;
    insights::InsightDismissalStore& dismissals_;
    settings::DefaultsDomain& defaults_;
    LocalCalendar calendar_;
    unsigned firstWeekday_;
    std::function<Date()> now_;
    // An instant of the selected week.
    Date weekDate_;
    std::optional<models::InsightsData> data_;
    std::optional<models::InsightsView> view_;

    QLabel* weekTitle_;
    QPushButton* previous_;
    QPushButton* next_;
    QPushButton* thisWeek_;
    QPushButton* saveReceipt_;
    QLabel* banner_;
    QWidget* content_;
    design::Metric* studyTime_;
    design::Metric* sessions_;
    design::Metric* focusScore_;
    design::Metric* activeDays_;
    QLabel* emptyWeek_;
    design::ChartView* perDay_;
    design::ChartView* classes_;
    design::ChartView* trend_;
    QVBoxLayout* subjects_;
    QVBoxLayout* topFocused_;
    QVBoxLayout* topDistracting_;
    design::Card* insightsCard_;
    QVBoxLayout* insights_;
    design::YearCalendarView* year_;
    QLabel* streak_;
    QLabel* yearSummary_;
    QVBoxLayout* personalBests_;
};

}  // namespace lumenote::ui
