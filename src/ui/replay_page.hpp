// The Replay page: one stored session looked back on. Its header (subject,
// goal, date, status), the totals card, the session's timeline strip and its
// replay rows (browser pages nested under their browser) with times, name
// and class chip. A row's class can be changed for this session only (its
// figures change, no rule is written) or always (the rule is written); a
// stretch without input can be relabelled over a chosen range, with undo.
// Notes are edited and saved; the session is exported or saved as a
// receipt.
//
// Everything shown comes from models::makeReplayView over the stored session;
// every change goes through SessionHistory, and the page reads the session
// again after it, so what is shown is always what is stored.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>

#include <QWidget>

#include "foundation/dates.hpp"
#include "portability/data_export_service.hpp"
#include "recording/session_history.hpp"
#include "settings/defaults_domain.hpp"
#include "ui/models/replay_view.hpp"

class QLabel;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QTreeView;

namespace lumenote::ui {

namespace design {
class Chip;
class TimelineStrip;
}  // namespace design

class ReplayRowsModel;
class ReplayTotalsCard;

class ReplayPage final : public QWidget {
    Q_OBJECT

  public:
    // How far a class chosen for a row reaches.
    enum class ClassReach { thisSessionOnly, always };

    // `store`, `reader`, `history` and `defaults` (the receipt options) must
    // outlive the page; `calendar` writes days and times; `now` stamps exports.
    ReplayPage(recording::RecordingStore& store, recording::SessionHistoryReader& reader,
               recording::SessionHistory& history, settings::DefaultsDomain& defaults,
               LocalCalendar calendar, std::function<Date()> now, QWidget* parent = nullptr);
    ~ReplayPage() override;

    // Shows the stored session `id`; false (with the sentence in the banner)
    // when it cannot be read or is no longer stored.
    bool showSession(const Uuid& id);
    // Reads the shown session again (after a change made elsewhere).
    void reload();
    const std::optional<Uuid>& sessionId() const { return sessionId_; }
    const std::optional<models::ReplayView>& view() const { return view_; }

    // Gives the selected row's activity the class `choice`, as far as
    // `reach` says; false with the sentence in the banner when refused.
    bool changeSelectedClass(classification::ActivityClassification choice, ClassReach reach);
    // Relabels the time without input in [from, to] of the shown session
    // and offers to undo it; false with the sentence in the banner when
    // refused.
    bool relabel(Date from, Date to, std::optional<recording::ConfirmedStudyState> state);
    // Writes this session's export as `request` says into `path`, whole or
    // not at all.
    bool exportTo(const std::filesystem::path& path, portability::ExportRequest request);
    // Saves the receipt of this session, a PDF when `path` ends in ".pdf",
    // else a PNG.
    bool saveReceipt(const std::filesystem::path& path);

    QTreeView& rows() { return *tree_; }
    ReplayTotalsCard& totals() { return *totals_; }
    QString bannerText() const;

  Q_SIGNALS:
    // The shown session's stored figures, classes or notes changed.
    void sessionChanged(const QString& sessionId);

  private:
    QWidget* buildHeader();
    QWidget* buildRowsCard();
    QWidget* buildNotesCard();
    QWidget* buildActions();
    QMenu* buildClassMenu(QWidget* parent);
    void present();
    void selectionChanged();
    void chooseRelabelRange();
    void undoRelabel();
    void saveNotes();
    void chooseExport();
    void chooseReceiptFile();
    void showError(const QString& message);
    void clearMessages();

    recording::RecordingStore& store_;
    recording::SessionHistoryReader& reader_;
    recording::SessionHistory& history_;
    settings::DefaultsDomain& defaults_;
    LocalCalendar calendar_;
    std::function<Date()> now_;

    std::optional<Uuid> sessionId_;
    std::optional<recording::StudySession> session_;
    std::optional<models::ReplayView> view_;
    std::optional<recording::StudyStateEdit> lastEdit_;

    QLabel* banner_;
    QLabel* empty_;
    QWidget* scroll_;
    QWidget* content_;
    QLabel* subject_;
    design::Chip* status_;
    QLabel* goal_;
    QLabel* date_;
    ReplayTotalsCard* totals_;
    design::TimelineStrip* strip_;
    ReplayRowsModel* model_;
    QTreeView* tree_;
    QPushButton* changeClass_;
    QMenu* classMenu_;
    QList<QAction*> thisSessionActions_;
    QPushButton* relabel_;
    QLabel* rowsNote_;
    QWidget* undoBar_;
    QLabel* undoText_;
    QPushButton* undo_;
    QPlainTextEdit* notes_;
    QPushButton* saveNotes_;
    QLabel* notesSaved_;
    QLabel* saved_;
};

}  // namespace lumenote::ui
