#include "ui/history_page.hpp"

#include <algorithm>

#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "portability/export_file.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/page_title.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/export_file_dialog.hpp"
#include "ui/history_list_model.hpp"
#include "ui/history_row_delegate.hpp"

namespace lumenote::ui {

namespace {

using recording::StudySessionStatus;

// Typing in the search field filters once the typing pauses, not at each key.
constexpr int kSearchDelayMs = 250;

constexpr std::pair<const char*, std::optional<StudySessionStatus>> kStatusChoices[] = {
    {"All statuses", std::nullopt},
    {"Completed", StudySessionStatus::completed},
    {"Interrupted", StudySessionStatus::interrupted},
    {"Running", StudySessionStatus::running},
    {"Paused", StudySessionStatus::paused},
};

constexpr std::pair<const char*, HistoryPage::Period> kPeriodChoices[] = {
    {"All time", HistoryPage::Period::allTime},
    {"This week", HistoryPage::Period::thisWeek},
    {"Last 30 days", HistoryPage::Period::last30Days},
    {"This year", HistoryPage::Period::thisYear},
};

}  // namespace

HistoryPage::HistoryPage(recording::RecordingStore& store, recording::SessionHistoryReader& reader,
                         recording::SessionHistory& history, LocalCalendar calendar,
                         unsigned firstWeekday, std::function<Date()> now, QWidget* parent)
    : QWidget(parent),
      store_(store),
      reader_(reader),
      history_(history),
      calendar_(std::move(calendar)),
      firstWeekday_(firstWeekday),
      now_(std::move(now)),
      model_(new HistoryListModel(store, calendar_, firstWeekday_, this)) {
    setObjectName(QStringLiteral("historyPage"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(12);

    layout->addWidget(design::makePageTitle(QStringLiteral("History"), this));

    auto* filters = new QHBoxLayout;
    search_ = new QLineEdit(this);
    search_->setObjectName(QStringLiteral("historySearch"));
    search_->setPlaceholderText(QStringLiteral("Search subjects and goals"));
    search_->setAccessibleName(QStringLiteral("Search subjects and goals"));
    search_->setClearButtonEnabled(true);
    status_ = new QComboBox(this);
    status_->setObjectName(QStringLiteral("historyStatus"));
    status_->setAccessibleName(QStringLiteral("Status"));
    for (const auto& [word, status] : kStatusChoices) {
        status_->addItem(QString::fromLatin1(word));
    }
    period_ = new QComboBox(this);
    period_->setObjectName(QStringLiteral("historyPeriod"));
    period_->setAccessibleName(QStringLiteral("Period"));
    for (const auto& [word, period] : kPeriodChoices) {
        period_->addItem(QString::fromLatin1(word));
    }
    filters->addWidget(search_, 1);
    filters->addWidget(status_);
    filters->addWidget(period_);
    layout->addLayout(filters);

    banner_ = design::errorBanner(QStringLiteral("historyBanner"), this);
    layout->addWidget(banner_);

    list_ = new QListView(this);
    list_->setObjectName(QStringLiteral("historyList"));
    list_->setAccessibleName(QStringLiteral("Sessions"));
    list_->setModel(model_);
    list_->setItemDelegate(new HistoryRowDelegate(list_));
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setUniformItemSizes(false);
    list_->setMouseTracking(true);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    layout->addWidget(list_, 1);

    empty_ = new QLabel(this);
    empty_->setObjectName(QStringLiteral("historyEmpty"));
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    empty_->setVisible(false);
    layout->addWidget(empty_, 1);

    undoBar_ = new QWidget(this);
    auto* undoLayout = new QHBoxLayout(undoBar_);
    undoLayout->setContentsMargins(0, 0, 0, 0);
    undoText_ = new QLabel(undoBar_);
    undo_ = new QPushButton(QStringLiteral("Undo"), undoBar_);
    undo_->setObjectName(QStringLiteral("historyUndo"));
    undoLayout->addWidget(undoText_, 1);
    undoLayout->addWidget(undo_);
    undoBar_->setVisible(false);
    layout->addWidget(undoBar_);

    auto* actions = new QHBoxLayout;
    auto* exporting = new QPushButton(QStringLiteral("Export…"), this);
    exporting->setObjectName(QStringLiteral("historyExport"));
    exporting->setAccessibleName(QStringLiteral("Export sessions"));
    auto* exportMenu = new QMenu(exporting);
    exportSelection_ = exportMenu->addAction(QStringLiteral("Export Selected Sessions…"), this,
                                             [this] { chooseExport(false); });
    exportMenu->addAction(QStringLiteral("Export All Sessions…"), this,
                          [this] { chooseExport(true); });
    exporting->setMenu(exportMenu);
    actions->addWidget(exporting);
    delete_ = new QPushButton(QStringLiteral("Delete"), this);
    delete_->setObjectName(QStringLiteral("historyDelete"));
    delete_->setAccessibleName(QStringLiteral("Delete the selected sessions"));
    delete_->setEnabled(false);
    actions->addStretch(1);
    actions->addWidget(delete_);
    layout->addLayout(actions);

    searchDelay_ = new QTimer(this);
    searchDelay_->setSingleShot(true);
    searchDelay_->setInterval(kSearchDelayMs);
    undoTimer_ = new QTimer(this);
    undoTimer_->setInterval(1000);

    connect(search_, &QLineEdit::textChanged, searchDelay_, qOverload<>(&QTimer::start));
    connect(searchDelay_, &QTimer::timeout, this, &HistoryPage::applyFilter);
    connect(status_, &QComboBox::currentIndexChanged, this, &HistoryPage::applyFilter);
    connect(period_, &QComboBox::currentIndexChanged, this, &HistoryPage::applyFilter);
    connect(model_, &HistoryListModel::readFailed, this, &HistoryPage::showError);
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &HistoryPage::selectionChanged);
    connect(model_, &QAbstractItemModel::modelReset, this, &HistoryPage::selectionChanged);
    connect(model_, &QAbstractItemModel::modelReset, this, &HistoryPage::showEmptyState);
    connect(model_, &QAbstractItemModel::rowsInserted, this, &HistoryPage::showEmptyState);
    connect(list_, &QListView::activated, this, [this](const QModelIndex& index) {
        const QString id = index.data(HistoryListModel::sessionIdRole).toString();
        if (!id.isEmpty()) {
            Q_EMIT sessionOpened(id);
        }
    });
    connect(delete_, &QPushButton::clicked, this, &HistoryPage::deleteSelected);
    connect(undo_, &QPushButton::clicked, this, &HistoryPage::undoDeletion);
    // The offer ends on the history's own clock; the page asks once a second
    // while it shows the offer.
    connect(undoTimer_, &QTimer::timeout, this, [this] {
        history_.tick();
        if (!history_.canUndoSessionDeletion()) {
            undoTimer_->stop();
            undoBar_->setVisible(false);
        }
    });
    list_->installEventFilter(this);
    showEmptyState();
}

bool HistoryPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Delete)) {
        deleteSelected();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

HistoryPage::~HistoryPage() = default;

void HistoryPage::showEmptyState() {
    const bool empty = model_->rowCount() == 0 && !model_->readError();
    const models::HistoryFilter& filter = model_->filter();
    const bool filtered = !filter.text.empty() || filter.status || filter.startingAtOrAfter;
    empty_->setText(filtered ? QStringLiteral("No session matches the search and filters.")
                             : QStringLiteral("No sessions yet. Start one from the Lumenote icon "
                                              "in the tray; it appears here when it ends."));
    empty_->setVisible(empty);
    list_->setVisible(!empty);
}

void HistoryPage::reload() {
    model_->reload();
}

void HistoryPage::focusSearch() {
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
}

void HistoryPage::applyFilter() {
    searchDelay_->stop();
    banner_->setVisible(false);
    models::HistoryFilter filter;
    filter.text = search_->text().trimmed().toStdString();
    filter.status = kStatusChoices[std::max(0, status_->currentIndex())].second;
    const Date now = now_();
    switch (kPeriodChoices[std::max(0, period_->currentIndex())].second) {
        case Period::allTime:
            break;
        case Period::thisWeek:
            filter.startingAtOrAfter = calendar_.startOfWeek(now, firstWeekday_);
            break;
        case Period::last30Days:
            filter.startingAtOrAfter = calendar_.addingDays(calendar_.startOfDay(now), -29);
            break;
        case Period::thisYear: {
            const std::string today = calendar_.dayKey(now);
            filter.startingAtOrAfter = calendar_.startOfDayKey(today.substr(0, 4) + "-01-01");
            break;
        }
    }
    model_->setFilter(filter);
}

void HistoryPage::selectionChanged() {
    const bool chosen = !model_->sessionIds(list_->selectionModel()->selectedIndexes()).empty();
    delete_->setEnabled(chosen);
    exportSelection_->setEnabled(chosen);
}

void HistoryPage::chooseExport(bool everything) {
    if (const auto chosen = chooseExportFile(this, QStringLiteral("Export Sessions"),
                                             portability::ExportRequest{})) {
        (void)exportTo(chosen->path, chosen->request, everything);
    }
}

std::optional<std::size_t> HistoryPage::exportTo(const std::filesystem::path& path,
                                                 portability::ExportRequest request,
                                                 bool everything) {
    banner_->setVisible(false);
    if (!everything) {
        // Rows are newest first: reversed, they are in start order.
        std::vector<Uuid> ids = model_->sessionIds(list_->selectionModel()->selectedIndexes());
        std::reverse(ids.begin(), ids.end());
        request.sessions = std::move(ids);
    }
    auto file = portability::AtomicExportFile::create(path);
    if (!file) {
        showError(qt(file.error().message()));
        return std::nullopt;
    }
    QProgressDialog progress(QStringLiteral("Exporting sessions…"), QString(), 0, 0, this);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    portability::DataExportService service(store_, reader_);
    auto written = service.write(request, now_(), **file, [&progress](std::size_t done) {
        if (done % 64 == 0) {
            progress.setLabelText(QStringLiteral("Exporting sessions… %1 written").arg(done));
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        }
    });
    if (!written) {
        showError(qt(written.error().message()));
        return std::nullopt;
    }
    if (auto committed = (*file)->commit(); !committed) {
        showError(qt(committed.error().message()));
        return std::nullopt;
    }
    return written->sessions;
}

void HistoryPage::deleteSelected() {
    const std::vector<Uuid> ids = model_->sessionIds(list_->selectionModel()->selectedIndexes());
    if (ids.empty()) {
        return;
    }
    if (auto deleted = history_.deleteSessions(ids); !deleted.ok()) {
        showError(qt(deleted.error().message()));
        return;
    }
    banner_->setVisible(false);
    model_->reload();
    showUndoOffer();
}

void HistoryPage::showUndoOffer() {
    const auto& description = history_.sessionDeletionUndoDescription();
    undoText_->setText(qt(description.value_or(std::string())));
    undoBar_->setVisible(history_.canUndoSessionDeletion());
    undoTimer_->start();
    undo_->setFocus(Qt::OtherFocusReason);
}

void HistoryPage::undoDeletion() {
    if (auto undone = history_.undoSessionDeletion(); !undone.ok()) {
        showError(qt(undone.error().message()));
    }
    undoTimer_->stop();
    undoBar_->setVisible(false);
    model_->reload();
}

void HistoryPage::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

}  // namespace lumenote::ui
