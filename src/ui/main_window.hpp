// The main window: a sidebar of pages and the chosen page beside it, for
// looking back and for settings (the tray is where sessions are run).
//
// Pages join the sidebar as they are added, always in the order Today,
// Replay, History, Insights, Settings; Ctrl+1 … Ctrl+5 choose by that order's
// position among the pages present. The review of unclassified activity is a
// page without a sidebar entry: Today's card, the tray and the shell's
// command open it, and the sidebar then shows no page chosen. Ctrl+F
// searches the history and Ctrl+N asks for a new session. Closing the window
// hides it: Lumenote goes on running in the tray.
#pragma once

#include <array>

#include <QMainWindow>

class QListWidget;
class QStackedWidget;

namespace lumenote::ui {

class HistoryPage;

enum class MainPage { today, replay, history, insights, settings, review };

// "Today", "Replay", "History", "Insights", "Settings", "Review".
QString mainPageTitle(MainPage page);
// The window's title on `page`: "History — Lumenote".
QString mainWindowTitle(MainPage page);

class MainWindow final : public QMainWindow {
    Q_OBJECT

  public:
    explicit MainWindow(QWidget* parent = nullptr);

    // Adds `widget` as `page` (the window takes it); a page added twice
    // replaces the first.
    void addPage(MainPage page, QWidget* widget);
    bool hasPage(MainPage page) const;
    // Shows `page` when it is present; otherwise the page stays as it was.
    bool showPage(MainPage page);
    // The first page present, in sidebar order.
    std::optional<MainPage> firstPage() const;
    std::optional<MainPage> currentPage() const;
    // Shows the window in front with the keyboard.
    void present();

  Q_SIGNALS:
    // Ctrl+N: a new session is wanted (the tray's panel starts it).
    void newSessionRequested();
    // `page` came into view (from the sidebar, a shortcut or showPage).
    void pageShown(lumenote::ui::MainPage page);

  protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void rebuildSidebar();
    void restyleSidebar();

    QListWidget* sidebar_;
    QStackedWidget* pages_;
    std::array<QWidget*, 6> widgets_{};
};

}  // namespace lumenote::ui
