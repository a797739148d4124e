// The tray panel: a small window near the tray icon in one of three states.
// With no session it offers the start form, one-click template starts and
// today's study time against the daily goal; during a session it shows the
// subject, the timer, what is in front with its class and the controls;
// after a session it shows the post-session summary. It reads the recorder's
// state when it is drawn and forwards every control to the recorder runtime.
#pragma once

#include <QFrame>

#include <filesystem>
#include <optional>
#include <vector>

#include "runtime/recorder_runtime.hpp"
#include "settings/session_template_store.hpp"
#include "shell/panel_model.hpp"

class QBoxLayout;
class QGridLayout;
class QLabel;
class QPushButton;
class QStackedWidget;
class QToolButton;

namespace lumenote::ui {

namespace design {
class Chip;
}
class GoalRing;
class StartSessionForm;

class TrayPanel final : public QFrame {
    Q_OBJECT

  public:
    enum class Page { start, session, summary };

    // `runtime` and `templates` must outlive the panel.
    TrayPanel(runtime::RecorderRuntime& runtime, settings::SessionTemplateStore& templates,
              QWidget* parent = nullptr);

    // Shows the panel with its top-left corner near `anchor` (the tray icon
    // or the pointer), kept on the screen, and gives it the keyboard.
    void popUp(const QPoint& anchor);
    // Reads the recorder again and redraws the page that fits its state.
    void refresh();
    // The start form is filled afresh from the preferences and the history.
    void reloadStartForm();
    // A sentence shown in the banner at the top until the next refresh of
    // the page it belongs to.
    void showError(const QString& message);
    Page page() const { return page_; }
    // Notes what is in front while the panel is closed, so that it can
    // speak of it once it opens (and is itself in front).
    void followActivity() { (void)activityBehindPanel(); }
    StartSessionForm& startForm() { return *form_; }
    // Saves the receipt of the session the summary shows as `path` (a PNG,
    // or a PDF when the name ends in .pdf; .png is added to a name without
    // either); a failure shows its sentence in the banner.
    bool saveReceipt(const std::filesystem::path& path);
    // The running session as the panel shows it; none while none runs.
    std::optional<shell::LiveSessionPanel> liveSession();

  Q_SIGNALS:
    // A session started from the panel.
    void sessionStarted();
    // The start page's line about unclassified activity was chosen.
    void reviewRequested();
    // The summary's "Replay": the finished session is to be shown.
    void replayRequested(const QString& sessionId);

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QWidget* buildStartPage();
    QWidget* buildSessionPage();
    QWidget* buildSummaryPage();
    void showPage(Page page);
    // Today's study time and the goal ring: read from the history when the
    // start page comes into view, not at every tick.
    void refreshTodaysStudy();
    void refreshSessionPage();
    void refreshSummaryPage();
    // "Save Receipt…": asks where, in the user's pictures folder by default.
    void chooseReceiptFile();
    void startFromForm();
    void startFromTemplate(const Uuid& templateID);
    void started(const recording::SessionStartRequest& request);
    // Gives the activity in front `choice` for the rest of this session.
    void classifyForSession(classification::ActivityClassification choice);

    // The activity in front before the panel itself came forward: opening
    // the panel puts Lumenote in front, and the panel speaks of what the
    // user came from.
    struct SeenActivity {
        Uuid session;
        std::string bundleIdentifier;
        std::string name;
        classification::ActivityClassification classification;
        std::optional<recording::ActivitySegment> open;
    };
    // Remembers the activity in front unless it is Lumenote; the one the
    // panel speaks of.
    const SeenActivity* activityBehindPanel();
    // What "Classify for this session" would classify, if anything.
    static std::optional<shell::LiveClassificationTarget> classificationTarget(
        const SeenActivity* seen);

    runtime::RecorderRuntime& runtime_;
    settings::SessionTemplateStore& templates_;
    std::optional<SeenActivity> seen_;
    Page page_ = Page::start;
    QLabel* banner_;
    QLabel* observation_;
    QLabel* summaryObservation_;
    QStackedWidget* pages_;
    // start
    GoalRing* ring_;
    QLabel* today_;
    QPushButton* reviewLine_;
    QBoxLayout* templateButtons_;
    StartSessionForm* form_;
    // session
    QLabel* subject_;
    QLabel* goal_;
    QLabel* elapsed_;
    QLabel* remaining_;
    QLabel* activity_;
    design::Chip* chip_;
    QLabel* split_;
    QToolButton* classify_;
    QPushButton* pause_;
    QPushButton* away_;
    QPushButton* end_;
    // summary
    QLabel* summaryHeading_;
    QLabel* summarySubtitle_;
    QGridLayout* summaryTotals_;
    QLabel* summaryScore_;
    QLabel* summaryCoverage_;
    QLabel* summaryBests_;
    QLabel* celebration_;
    QPushButton* done_;
    QPushButton* saveReceipt_;
    QPushButton* replay_;
    QLabel* receiptSaved_;
};

}  // namespace lumenote::ui
