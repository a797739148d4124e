#include "ui/main_window.hpp"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QListWidget>
#include <QShortcut>
#include <QStackedWidget>

#include "ui/history_page.hpp"

namespace lumenote::ui {

namespace {

constexpr std::array kPageOrder{MainPage::today, MainPage::replay, MainPage::history,
                                MainPage::insights, MainPage::settings};

constexpr std::array kEveryPage{MainPage::today,    MainPage::replay,   MainPage::history,
                                MainPage::insights, MainPage::settings, MainPage::review};

constexpr int kSidebarWidth = 180;

// The sidebar's look over the window's colours: a style sheet keeps the
// colours it was given, so it is made again whenever the appearance changes.
QString sidebarStyle(const QPalette& palette) {
    return QStringLiteral(
               "QListWidget#sidebar { background: %1; border: none; padding-top: 12px; }"
               "QListWidget#sidebar::item { color: %2; padding-left: 10px; margin: 0 10px;"
               " border-radius: 6px; }"
               "QListWidget#sidebar::item:selected { background: %3; color: %4; }")
        .arg(palette.color(QPalette::Window).name(), palette.color(QPalette::WindowText).name(),
             palette.color(QPalette::Highlight).name(),
             palette.color(QPalette::HighlightedText).name());
}

QString themeIconName(MainPage page) {
    switch (page) {
        case MainPage::today:
            return QStringLiteral("go-home");
        case MainPage::replay:
            return QStringLiteral("media-playback-start");
        case MainPage::history:
            return QStringLiteral("document-open-recent");
        case MainPage::insights:
            return QStringLiteral("office-chart-bar");
        case MainPage::settings:
            return QStringLiteral("preferences-system");
        case MainPage::review:
            return QStringLiteral("dialog-question");
    }
    return {};
}

std::size_t slot(MainPage page) {
    return static_cast<std::size_t>(page);
}

}  // namespace

QString mainPageTitle(MainPage page) {
    switch (page) {
        case MainPage::today:
            return QStringLiteral("Today");
        case MainPage::replay:
            return QStringLiteral("Replay");
        case MainPage::history:
            return QStringLiteral("History");
        case MainPage::insights:
            return QStringLiteral("Insights");
        case MainPage::settings:
            return QStringLiteral("Settings");
        case MainPage::review:
            return QStringLiteral("Review");
    }
    return {};
}

QString mainWindowTitle(MainPage page) {
    return mainPageTitle(page) + QStringLiteral(" — Lumenote");
}

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Lumenote"));
    resize(1000, 680);
    setMinimumSize(720, 480);

    auto* central = new QWidget(this);
    auto* layout = new QHBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    sidebar_ = new QListWidget(central);
    sidebar_->setObjectName(QStringLiteral("sidebar"));
    sidebar_->setAccessibleName(QStringLiteral("Pages"));
    sidebar_->setFixedWidth(kSidebarWidth);
    sidebar_->setFrameShape(QFrame::NoFrame);
    sidebar_->setIconSize({20, 20});
    sidebar_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    restyleSidebar();
    pages_ = new QStackedWidget(central);
    layout->addWidget(sidebar_);
    layout->addWidget(pages_, 1);
    setCentralWidget(central);

    connect(sidebar_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0) {
            return;
        }
        const auto page = static_cast<MainPage>(sidebar_->item(row)->data(Qt::UserRole).toInt());
        pages_->setCurrentWidget(widgets_[slot(page)]);
        setWindowTitle(mainWindowTitle(page));
        Q_EMIT pageShown(page);
    });
    for (int position = 0; position < static_cast<int>(kPageOrder.size()); ++position) {
        auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | (Qt::Key_1 + position)), this);
        connect(shortcut, &QShortcut::activated, this, [this, position] {
            if (position < sidebar_->count()) {
                sidebar_->setCurrentRow(position);
            }
        });
    }
    auto* search = new QShortcut(QKeySequence::Find, this);
    connect(search, &QShortcut::activated, this, [this] {
        if (showPage(MainPage::history)) {
            static_cast<HistoryPage*>(widgets_[slot(MainPage::history)])->focusSearch();
        }
    });
    auto* newSession = new QShortcut(QKeySequence::New, this);
    connect(newSession, &QShortcut::activated, this, &MainWindow::newSessionRequested);
}

void MainWindow::addPage(MainPage page, QWidget* widget) {
    if (QWidget* previous = widgets_[slot(page)]) {
        pages_->removeWidget(previous);
        previous->deleteLater();
    }
    widgets_[slot(page)] = widget;
    pages_->addWidget(widget);
    rebuildSidebar();
}

bool MainWindow::hasPage(MainPage page) const {
    return widgets_[slot(page)] != nullptr;
}

void MainWindow::rebuildSidebar() {
    const std::optional<MainPage> current = currentPage();
    const QSignalBlocker blocker(sidebar_);
    sidebar_->clear();
    for (const MainPage page : kPageOrder) {
        if (!hasPage(page)) {
            continue;
        }
        auto* item = new QListWidgetItem(QIcon::fromTheme(themeIconName(page)), mainPageTitle(page),
                                         sidebar_);
        item->setData(Qt::UserRole, static_cast<int>(page));
        item->setSizeHint({0, 36});
    }
    const std::optional<MainPage> wanted = current ? current : firstPage();
    if (!wanted || !showPage(*wanted)) {
        sidebar_->setCurrentRow(0);
    }
}

bool MainWindow::showPage(MainPage page) {
    if (page == MainPage::review) {
        if (!hasPage(page)) {
            return false;
        }
        const QSignalBlocker blocker(sidebar_);
        sidebar_->setCurrentRow(-1);
        pages_->setCurrentWidget(widgets_[slot(page)]);
        setWindowTitle(mainWindowTitle(page));
        Q_EMIT pageShown(page);
        return true;
    }
    for (int row = 0; row < sidebar_->count(); ++row) {
        if (sidebar_->item(row)->data(Qt::UserRole).toInt() == static_cast<int>(page)) {
            if (sidebar_->currentRow() == row) {
                // Shown again: no change of row announces it.
                Q_EMIT pageShown(page);
            }
            sidebar_->setCurrentRow(row);
            pages_->setCurrentWidget(widgets_[slot(page)]);
            setWindowTitle(mainWindowTitle(page));
            return true;
        }
    }
    return false;
}

std::optional<MainPage> MainWindow::firstPage() const {
    for (const MainPage page : kPageOrder) {
        if (hasPage(page)) {
            return page;
        }
    }
    return std::nullopt;
}

std::optional<MainPage> MainWindow::currentPage() const {
    for (const MainPage page : kEveryPage) {
        if (widgets_[slot(page)] != nullptr && widgets_[slot(page)] == pages_->currentWidget()) {
            return page;
        }
    }
    return std::nullopt;
}

void MainWindow::present() {
    show();
    if (isMinimized()) {
        showNormal();
    }
    raise();
    activateWindow();
}

void MainWindow::restyleSidebar() {
    sidebar_->setStyleSheet(sidebarStyle(QApplication::palette()));
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange ||
        event->type() == QEvent::PaletteChange) {
        restyleSidebar();
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    hide();
    event->ignore();
}

}  // namespace lumenote::ui
