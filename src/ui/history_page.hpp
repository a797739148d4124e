// The History page: every session newest first, grouped by week, with its
// date, subject, duration, focus score and status; a search over subjects and
// goals, a status filter and a period filter; multi-select delete with a
// ten-second undo banner; a double click (or Enter) opens a session.
//
// The list is a model/view list that reads a page of sessions at a time
// (HistoryListModel): no row is ever a widget, so twenty thousand sessions
// open as fast as twenty.
#pragma once

#include <filesystem>
#include <optional>

#include <QWidget>

#include "foundation/dates.hpp"
#include "portability/data_export_service.hpp"
#include "recording/session_history.hpp"

class QAction;
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

    // `store`, `reader` and `history` must outlive the page; `now` gives
    // the wall clock's date for the period filter and the export's stamp.
    HistoryPage(recording::RecordingStore& store, recording::SessionHistoryReader& reader,
                recording::SessionHistory& history, LocalCalendar calendar, unsigned firstWeekday,
                std::function<Date()> now, QWidget* parent = nullptr);
    ~HistoryPage() override;

    // Reads the history again (after a session ended or a restore).
    void reload();
    // Puts the keyboard in the search field (Ctrl+F).
    void focusSearch();
    HistoryListModel& model() { return *model_; }
    // Exports the selected sessions (or, with `everything`, the whole
    // history) as `request` says into `path`, written whole or not at all;
    // a failure shows its sentence in the banner. Returns the sessions
    // written.
    std::optional<std::size_t> exportTo(const std::filesystem::path& path,
                                        portability::ExportRequest request, bool everything);
    QListView& list() { return *list_; }

  Q_SIGNALS:
    void sessionOpened(const QString& sessionId);

  protected:
    // The Delete key deletes the selected sessions while the list has the
    // keyboard.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void applyFilter();
    // "Export…": asks for the format and the file, then exports.
    void chooseExport(bool everything);
    void deleteSelected();
    void undoDeletion();
    void showUndoOffer();
    void showError(const QString& message);
    void selectionChanged();
    // With no row to show, a sentence says why instead of an empty list.
    void showEmptyState();

    recording::RecordingStore& store_;
    recording::SessionHistoryReader& reader_;
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
    QAction* exportSelection_;
    QLabel* banner_;
    QLabel* undoText_;
    QPushButton* undo_;
    QWidget* undoBar_;
    QTimer* undoTimer_;
    QTimer* searchDelay_;
};

}  // namespace lumenote::ui
