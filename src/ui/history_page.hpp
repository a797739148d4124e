// The History page: every session newest first, grouped by week, with its
// date, subject, duration, focus score and status; a search over subjects and
// goals, a status filter and a period filter; multi-select delete with a
// ten-second undo banner; a double click (or Enter) opens a session.
//
// The list is a model/view list that reads a page of sessions at a time
// (HistoryListModel): no row is ever a widget, so twenty thousand sessions
// open as fast as twenty.
#pragma once

#include <QWidget>

#include "foundation/dates.hpp"
#include "recording/session_history.hpp"

class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QTimer;

namespace lumenote::ui {

class HistoryListModel;

class HistoryPage final : public QWidget {
    Q_OBJECT

  public:
    // The periods of the period filter, in the order offered.
    enum class Period { allTime, thisWeek, last30Days, thisYear };

    // `store` and `history` must outlive the page; `now` gives the wall
    // clock's date for the period filter.
    HistoryPage(recording::RecordingStore& store, recording::SessionHistory& history,
                LocalCalendar calendar, unsigned firstWeekday, std::function<Date()> now,
                QWidget* parent = nullptr);
    ~HistoryPage() override;

    // Reads the history again (after a session ended or a restore).
    void reload();
    // Puts the keyboard in the search field (Ctrl+F).
    void focusSearch();
    HistoryListModel& model() { return *model_; }
    QListView& list() { return *list_; }

  Q_SIGNALS:
    void sessionOpened(const QString& sessionId);

  protected:
    // The Delete key deletes the selected sessions while the list has the
    // keyboard.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void applyFilter();
    void deleteSelected();
    void undoDeletion();
    void showUndoOffer();
    void showError(const QString& message);
    void selectionChanged();
    // With no row to show, a sentence says why instead of an empty list.
    void showEmptyState();

    recording::SessionHistory& history_;
    LocalCalendar calendar_;
    unsigned firstWeekday_;
    std::function<Date()> now_;
    HistoryListModel* model_;
    QLineEdit* search_;
    QComboBox* status_;
    QComboBox* period_;
    QListView* list_;
    QLabel* empty_;
    QPushButton* delete_;
    QLabel* banner_;
    QLabel* undoText_;
    QPushButton* undo_;
    QWidget* undoBar_;
    QTimer* undoTimer_;
    QTimer* searchDelay_;
};

}  // namespace lumenote::ui
