#include "ui/replay_page.hpp"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTreeView>
#include <QVBoxLayout>

#include "portability/export_file.hpp"
#include "recording/study_state_edit.hpp"
#include "shell/panel_model.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/chip.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/design/timeline_strip.hpp"
#include "ui/export_file_dialog.hpp"
#include "ui/models/history_list.hpp"
#include "ui/models/receipt_options.hpp"
#include "ui/models/session_receipt.hpp"
#include "ui/receipt_file_dialog.hpp"
#include "ui/receipts/receipt_file.hpp"
#include "ui/replay_chip_delegate.hpp"
#include "ui/replay_relabel_dialog.hpp"
#include "ui/replay_rows_model.hpp"
#include "ui/replay_totals_card.hpp"

namespace lumenote::ui {

namespace {

using classification::ActivityClassification;
using models::ReplayRowKind;

QLabel* mutedLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QString actionName(ReplayPage::ClassReach reach, ActivityClassification choice) {
    return QStringLiteral("replayClass.%1.%2")
        .arg(reach == ReplayPage::ClassReach::always ? QStringLiteral("always")
                                                     : QStringLiteral("thisSession"),
             qt(rawValue(choice)));
}

}  // namespace

ReplayPage::ReplayPage(recording::RecordingStore& store, recording::SessionHistoryReader& reader,
                       recording::SessionHistory& history, settings::DefaultsDomain& defaults,
                       LocalCalendar calendar, std::function<Date()> now, QWidget* parent)
    : QWidget(parent),
      store_(store),
      reader_(reader),
      history_(history),
      defaults_(defaults),
      calendar_(std::move(calendar)),
      now_(std::move(now)) {
    setObjectName(QStringLiteral("replayPage"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(12);

    banner_ = design::errorBanner(QStringLiteral("replayBanner"), this);
    layout->addWidget(banner_);

    empty_ = new QLabel(QStringLiteral("Choose a session in History to replay it."), this);
    empty_->setObjectName(QStringLiteral("replayEmpty"));
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    layout->addWidget(empty_, 1);

    // The content scrolls as a whole when the window is too small for it,
    // so that no card is ever squeezed below its own height.
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("replayScroll"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setAccessibleName(QStringLiteral("Session replay"));
    // The controls inside take the keyboard; moving between them scrolls
    // the one reached into view.
    scroll->setFocusPolicy(Qt::NoFocus);
    content_ = new QWidget(scroll);
    auto* content = new QVBoxLayout(content_);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSpacing(12);
    content->addWidget(buildHeader());

    auto* columns = new QHBoxLayout;
    columns->setSpacing(12);
    auto* sideWidget = new QWidget(content_);
    sideWidget->setFixedWidth(kReplayTotalsCardWidth);
    auto* side = new QVBoxLayout(sideWidget);
    side->setContentsMargins(0, 0, 0, 0);
    side->setSpacing(12);
    totals_ = new ReplayTotalsCard(sideWidget);
    side->addWidget(totals_);
    side->addWidget(buildNotesCard(), 1);
    columns->addWidget(sideWidget);

    auto* main = new QVBoxLayout;
    main->setSpacing(12);
    auto* timeline = new design::Card(QStringLiteral("Timeline"), {}, content_);
    strip_ = new design::TimelineStrip(timeline);
    strip_->setObjectName(QStringLiteral("replayTimeline"));
    strip_->setAccessibleName(QStringLiteral("Session timeline"));
    strip_->setMinimumHeight(28);
    timeline->bodyLayout()->addWidget(strip_);
    main->addWidget(timeline);
    main->addWidget(buildRowsCard(), 1);
    columns->addLayout(main, 1);
    content->addLayout(columns, 1);
    content->addWidget(buildActions());
    scroll->setWidget(content_);
    scroll_ = scroll;
    layout->addWidget(scroll, 1);
    scroll_->setVisible(false);
}

ReplayPage::~ReplayPage() = default;

QWidget* ReplayPage::buildHeader() {
    auto* header = new QWidget(content_);
    auto* layout = new QVBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    auto* top = new QHBoxLayout;
    subject_ = new QLabel(header);
    subject_->setObjectName(QStringLiteral("replaySubject"));
    subject_->setWordWrap(true);
    QFont titleFont = subject_->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setWeight(QFont::Bold);
    subject_->setFont(titleFont);
    status_ = new design::Chip(header);
    status_->setObjectName(QStringLiteral("replayStatus"));
    top->addWidget(subject_, 1);
    top->addWidget(status_, 0, Qt::AlignVCenter);
    layout->addLayout(top);
    goal_ = new QLabel(header);
    goal_->setObjectName(QStringLiteral("replayGoal"));
    goal_->setWordWrap(true);
    layout->addWidget(goal_);
    date_ = mutedLabel(header);
    date_->setObjectName(QStringLiteral("replayDate"));
    layout->addWidget(date_);
    return header;
}

QWidget* ReplayPage::buildRowsCard() {
    auto* card = new design::Card(QStringLiteral("Activity"), {}, content_);
    model_ = new ReplayRowsModel(this);
    tree_ = new QTreeView(card);
    tree_->setObjectName(QStringLiteral("replayRows"));
    tree_->setAccessibleName(QStringLiteral("Replay rows"));
    tree_->setModel(model_);
    tree_->setItemDelegateForColumn(ReplayRowsModel::chipColumn, new ReplayChipDelegate(tree_));
    tree_->setUniformRowHeights(true);
    tree_->setAlternatingRowColors(true);
    tree_->setSelectionMode(QAbstractItemView::SingleSelection);
    tree_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tree_->setContextMenuPolicy(Qt::CustomContextMenu);
    tree_->header()->setStretchLastSection(false);
    tree_->header()->setSectionResizeMode(ReplayRowsModel::nameColumn, QHeaderView::Stretch);
    // Wide enough for a child row's times past its indentation, with room
    // before the name.
    tree_->header()->resizeSection(
        ReplayRowsModel::timesColumn,
        tree_->fontMetrics().horizontalAdvance(QStringLiteral("00:00–00:00")) +
            2 * tree_->indentation() + 16);
    tree_->header()->setSectionResizeMode(ReplayRowsModel::durationColumn,
                                          QHeaderView::ResizeToContents);
    tree_->header()->setSectionResizeMode(ReplayRowsModel::chipColumn, QHeaderView::Fixed);
    // As wide as the longest chip word, so the names keep the room left.
    tree_->header()->resizeSection(
        ReplayRowsModel::chipColumn,
        tree_->fontMetrics().horizontalAdvance(QStringLiteral("Partly confirmed")) + 36);
    tree_->setMinimumHeight(220);
    card->bodyLayout()->addWidget(tree_, 1);

    auto* buttons = new QHBoxLayout;
    changeClass_ = new QPushButton(QStringLiteral("Change Class"), card);
    changeClass_->setObjectName(QStringLiteral("replayChangeClass"));
    changeClass_->setAccessibleName(QStringLiteral("Change the class of the selected activity"));
    classMenu_ = buildClassMenu(changeClass_);
    changeClass_->setMenu(classMenu_);
    relabel_ = new QPushButton(QStringLiteral("Relabel…"), card);
    relabel_->setObjectName(QStringLiteral("replayRelabel"));
    relabel_->setAccessibleName(QStringLiteral("Relabel the selected time without input"));
    buttons->addWidget(changeClass_);
    buttons->addWidget(relabel_);
    buttons->addStretch(1);
    card->bodyLayout()->addLayout(buttons);
    rowsNote_ = mutedLabel(card);
    rowsNote_->setObjectName(QStringLiteral("replayRowsNote"));
    card->bodyLayout()->addWidget(rowsNote_);

    undoBar_ = new QWidget(card);
    auto* undoLayout = new QHBoxLayout(undoBar_);
    undoLayout->setContentsMargins(0, 0, 0, 0);
    undoText_ = new QLabel(undoBar_);
    undoText_->setObjectName(QStringLiteral("replayUndoText"));
    undoText_->setWordWrap(true);
    undo_ = new QPushButton(QStringLiteral("Undo"), undoBar_);
    undo_->setObjectName(QStringLiteral("replayUndo"));
    undo_->setAccessibleName(QStringLiteral("Undo the relabelling"));
    undoLayout->addWidget(undoText_, 1);
    undoLayout->addWidget(undo_);
    undoBar_->setVisible(false);
    card->bodyLayout()->addWidget(undoBar_);

    connect(tree_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &ReplayPage::selectionChanged);
    connect(model_, &QAbstractItemModel::modelReset, this, &ReplayPage::selectionChanged);
    // A right click chooses the row under it first; the menu key opens the
    // menu at the current row.
    connect(tree_, &QTreeView::customContextMenuRequested, this, [this](const QPoint& point) {
        const QModelIndex under = tree_->indexAt(point);
        if (under.isValid()) {
            tree_->setCurrentIndex(under);
        }
        if (changeClass_->isEnabled()) {
            const QPoint at =
                under.isValid() ? point : tree_->visualRect(tree_->currentIndex()).center();
            classMenu_->popup(tree_->viewport()->mapToGlobal(at));
        }
    });
    connect(relabel_, &QPushButton::clicked, this, &ReplayPage::chooseRelabelRange);
    connect(undo_, &QPushButton::clicked, this, &ReplayPage::undoRelabel);
    return card;
}

QMenu* ReplayPage::buildClassMenu(QWidget* parent) {
    auto* menu = new QMenu(parent);
    const std::pair<ClassReach, QString> sections[] = {
        {ClassReach::thisSessionOnly, QStringLiteral("This session only")},
        {ClassReach::always, QStringLiteral("Always")},
    };
    for (const auto& [reach, title] : sections) {
        menu->addSection(title);
        for (const ActivityClassification choice : shell::kSessionClassChoices) {
            QAction* action = menu->addAction(qt(shell::classificationChipText(choice)));
            action->setObjectName(actionName(reach, choice));
            connect(action, &QAction::triggered, this,
                    [this, choice, reach] { changeSelectedClass(choice, reach); });
            if (reach == ClassReach::thisSessionOnly) {
                thisSessionActions_ << action;
            }
        }
    }
    return menu;
}

QWidget* ReplayPage::buildNotesCard() {
    auto* card = new design::Card(QStringLiteral("Notes"), {}, content_);
    notes_ = new QPlainTextEdit(card);
    notes_->setObjectName(QStringLiteral("replayNotes"));
    notes_->setAccessibleName(QStringLiteral("Notes"));
    notes_->setPlaceholderText(QStringLiteral("What went well, what to pick up next time"));
    notes_->setTabChangesFocus(true);
    notes_->setMinimumHeight(70);
    card->bodyLayout()->addWidget(notes_, 1);
    auto* row = new QHBoxLayout;
    notesSaved_ = mutedLabel(card);
    notesSaved_->setObjectName(QStringLiteral("replayNotesSaved"));
    saveNotes_ = new QPushButton(QStringLiteral("Save Notes"), card);
    saveNotes_->setObjectName(QStringLiteral("replaySaveNotes"));
    saveNotes_->setAccessibleName(QStringLiteral("Save notes"));
    row->addWidget(notesSaved_, 1);
    row->addWidget(saveNotes_);
    card->bodyLayout()->addLayout(row);
    connect(saveNotes_, &QPushButton::clicked, this, &ReplayPage::saveNotes);
    connect(notes_, &QPlainTextEdit::textChanged, notesSaved_, &QLabel::clear);
    return card;
}

QWidget* ReplayPage::buildActions() {
    auto* bar = new QWidget(content_);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    saved_ = mutedLabel(bar);
    saved_->setObjectName(QStringLiteral("replaySaved"));
    auto* exporting = new QPushButton(QStringLiteral("Export This Session…"), bar);
    exporting->setObjectName(QStringLiteral("replayExport"));
    exporting->setAccessibleName(QStringLiteral("Export this session"));
    auto* receipt = new QPushButton(QStringLiteral("Save Receipt…"), bar);
    receipt->setObjectName(QStringLiteral("replayReceipt"));
    receipt->setAccessibleName(QStringLiteral("Save receipt"));
    layout->addWidget(saved_, 1);
    layout->addWidget(exporting);
    layout->addWidget(receipt);
    connect(exporting, &QPushButton::clicked, this, &ReplayPage::chooseExport);
    connect(receipt, &QPushButton::clicked, this, &ReplayPage::chooseReceiptFile);
    return bar;
}

bool ReplayPage::showSession(const Uuid& id) {
    if (sessionId_ != id) {
        lastEdit_.reset();
        undoBar_->setVisible(false);
        notesSaved_->clear();
        saved_->clear();
    }
    sessionId_ = id;
    clearMessages();
    auto loaded = store_.loadSession(id);
    if (!loaded.ok() || !loaded->has_value()) {
        session_.reset();
        view_.reset();
        present();
        showError(loaded.ok() ? qt(recording::sessionFailureMessage(
                                    recording::SessionFailure::sessionNotFound))
                              : qt(models::historyReadFailureText(loaded.error())));
        return false;
    }
    session_ = std::move(**loaded);
    view_ = models::makeReplayView(*session_, calendar_);
    present();
    return true;
}

void ReplayPage::reload() {
    if (sessionId_) {
        const QModelIndex current = tree_->currentIndex();
        const int parentRow = current.parent().isValid() ? current.parent().row() : -1;
        const int row = current.row();
        showSession(*sessionId_);
        // The rows are rebuilt: the same place stays selected where it exists.
        const QModelIndex parent = parentRow >= 0 ? model_->index(parentRow, 0) : QModelIndex();
        if (parentRow >= 0) {
            tree_->expand(parent);
        }
        const QModelIndex again = model_->index(row, 0, parent);
        if (again.isValid()) {
            tree_->setCurrentIndex(again);
        }
    }
}

void ReplayPage::present() {
    scroll_->setVisible(view_.has_value());
    empty_->setVisible(!view_.has_value());
    if (!view_) {
        model_->setRows({});
        return;
    }
    subject_->setText(qt(view_->subject));
    status_->setStatus(view_->status);
    goal_->setText(qt(view_->goal));
    goal_->setVisible(!view_->goal.empty());
    date_->setText(qt(view_->dateText + " · " + view_->duration));
    totals_->show(*view_);
    strip_->setBlocks(view_->timeline);
    model_->setRows(view_->rows);
    tree_->expandAll();
    if (!notes_->hasFocus()) {
        const QSignalBlocker quiet(notes_);
        notes_->setPlainText(qt(view_->notes));
    }
}

void ReplayPage::selectionChanged() {
    const models::ReplayRow* row = model_->rowAt(tree_->currentIndex());
    const bool classifiable = row != nullptr && row->activity.has_value();
    changeClass_->setEnabled(classifiable);
    const bool thisSession = view_ && view_->reclassifyRefusal.empty();
    for (QAction* action : thisSessionActions_) {
        action->setEnabled(thisSession);
    }
    const bool noInput = row != nullptr && row->kind == ReplayRowKind::noInput;
    relabel_->setEnabled(noInput && view_ && view_->relabelRefusal.empty());
    QString note;
    if (view_ && classifiable && !thisSession) {
        note = qt(view_->reclassifyRefusal);
    } else if (view_ && noInput && !view_->relabelRefusal.empty()) {
        note = qt(view_->relabelRefusal);
    }
    rowsNote_->setText(note);
    rowsNote_->setVisible(!note.isEmpty());
}

bool ReplayPage::changeSelectedClass(ActivityClassification choice, ClassReach reach) {
    const models::ReplayRow* row = model_->rowAt(tree_->currentIndex());
    if (!sessionId_ || row == nullptr || !row->activity) {
        return false;
    }
    clearMessages();
    const recording::ClassifiedActivity activity = *row->activity;
    const auto changed = reach == ClassReach::always
                             ? history_.classifyAlways(*sessionId_, activity, choice)
                             : history_.reclassifyInSession(*sessionId_, activity, choice);
    if (!changed.ok()) {
        showError(qt(changed.error().message()));
        return false;
    }
    reload();
    Q_EMIT sessionChanged(qt(sessionId_->upperString()));
    return true;
}

void ReplayPage::chooseRelabelRange() {
    const models::ReplayRow* row = model_->rowAt(tree_->currentIndex());
    if (row == nullptr || row->kind != ReplayRowKind::noInput) {
        return;
    }
    ReplayRelabelDialog dialog(row->start, row->end, this);
    if (dialog.exec() == QDialog::Accepted) {
        relabel(dialog.from(), dialog.to(), dialog.state());
    }
}

bool ReplayPage::relabel(Date from, Date to, std::optional<recording::ConfirmedStudyState> state) {
    if (!sessionId_) {
        return false;
    }
    clearMessages();
    auto edit = history_.relabel(*sessionId_, from, to, state,
                                 recording::ConfirmedStudyStateSource::replayEdit);
    if (!edit.ok()) {
        showError(qt(edit.error().message()));
        return false;
    }
    lastEdit_ = *edit;
    undoText_->setText(qt(recording::studyStateEditDescription(*edit)) +
                       qt(recording::kStudyStateEditUndoSuffix));
    undoBar_->setVisible(true);
    reload();
    undo_->setFocus(Qt::OtherFocusReason);
    Q_EMIT sessionChanged(qt(sessionId_->upperString()));
    return true;
}

void ReplayPage::undoRelabel() {
    if (!lastEdit_) {
        return;
    }
    clearMessages();
    const recording::StudyStateEdit edit = *lastEdit_;
    auto undone = history_.relabel(edit.sessionID, edit.startDate, edit.endDate, edit.previousState,
                                   recording::ConfirmedStudyStateSource::replayEdit);
    if (!undone.ok()) {
        showError(qt(undone.error().message()));
        return;
    }
    lastEdit_.reset();
    undoBar_->setVisible(false);
    reload();
    Q_EMIT sessionChanged(qt(edit.sessionID.upperString()));
}

void ReplayPage::saveNotes() {
    if (!sessionId_ || !session_) {
        return;
    }
    clearMessages();
    const std::string text = notes_->toPlainText().trimmed().toStdString();
    auto saved = history_.editSession(*sessionId_, session_->subject, session_->goal,
                                      text.empty() ? std::nullopt : std::optional(text));
    if (!saved.ok()) {
        showError(qt(saved.error().message()));
        return;
    }
    reload();
    notesSaved_->setText(QStringLiteral("Notes saved."));
    Q_EMIT sessionChanged(qt(sessionId_->upperString()));
}

void ReplayPage::chooseExport() {
    if (!sessionId_) {
        return;
    }
    portability::ExportRequest thisSession;
    thisSession.session = *sessionId_;
    if (const auto chosen =
            chooseExportFile(this, QStringLiteral("Export This Session"), thisSession)) {
        (void)exportTo(chosen->path, chosen->request);
    }
}

bool ReplayPage::exportTo(const std::filesystem::path& path, portability::ExportRequest request) {
    if (!sessionId_) {
        return false;
    }
    clearMessages();
    request.session = *sessionId_;
    request.sessions.reset();
    auto file = portability::AtomicExportFile::create(path);
    if (!file) {
        showError(qt(file.error().message()));
        return false;
    }
    portability::DataExportService service(store_, reader_);
    if (auto written = service.write(request, now_(), **file); !written) {
        showError(qt(written.error().message()));
        return false;
    }
    if (auto committed = (*file)->commit(); !committed) {
        showError(qt(committed.error().message()));
        return false;
    }
    saved_->setText(QStringLiteral("Exported as %1.").arg(qt(path.filename().string())));
    return true;
}

void ReplayPage::chooseReceiptFile() {
    if (!session_) {
        return;
    }
    const auto target = ui::chooseReceiptFile(
        this, QStringLiteral("Save Receipt"),
        receipts::defaultReceiptFileName(receipts::ReceiptKind::session,
                                         calendar_.dayKey(session_->startDate),
                                         receipts::ReceiptFormat::png));
    if (target) {
        saveReceipt(target->path);
    }
}

bool ReplayPage::saveReceipt(const std::filesystem::path& path) {
    if (!session_) {
        return false;
    }
    clearMessages();
    // Personal bests belong to the moment a session ended; a receipt saved
    // later from the replay shows the session's own figures only.
    const auto receipt =
        models::makeSessionReceipt(*session_, {}, models::readReceiptOptions(defaults_), calendar_);
    const receipts::ReceiptTarget target = receipts::receiptTarget(path);
    if (auto written = receipts::writeSessionReceipt(receipt, target.path, target.format);
        !written) {
        showError(qt(written.error().message()));
        return false;
    }
    saved_->setText(
        QStringLiteral("Receipt saved as %1.").arg(qt(target.path.filename().string())));
    return true;
}

QString ReplayPage::bannerText() const {
    return banner_->isVisible() ? banner_->text() : QString();
}

void ReplayPage::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

void ReplayPage::clearMessages() {
    banner_->setVisible(false);
}

}  // namespace lumenote::ui
