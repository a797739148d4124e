#include "ui/tray_panel.hpp"

#include <QApplication>
#include <QBoxLayout>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>

#include "recording/unclassified_review_service.hpp"
#include "shell/panel_history.hpp"
#include "shell/panel_model.hpp"
#include "shell/session_start_form.hpp"
#include "ui/design/chip.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/goal_ring.hpp"
#include "ui/models/receipt_options.hpp"
#include "ui/models/review_list.hpp"
#include "ui/models/session_receipt.hpp"
#include "ui/receipt_file_dialog.hpp"
#include "ui/receipts/receipt_file.hpp"
#include "ui/start_session_form.hpp"

namespace lumenote::ui {

namespace {

// How many templates the panel offers as one-click starts.
constexpr std::size_t kQuickStartTemplates = 4;
constexpr int kPanelWidth = 380;
constexpr int kPanelMargin = 16;

QLabel* label(QWidget* parent, qreal scale = 1.0, bool bold = false) {
    auto* made = new QLabel(parent);
    made->setWordWrap(true);
    made->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont font = made->font();
    if (scale != 1.0) {
        font.setPointSizeF(font.pointSizeF() * scale);
    }
    font.setBold(bold);
    made->setFont(font);
    return made;
}

// A line that says what Lumenote cannot observe: framed in the palette's
// highlight so that it reads as a warning in light and dark alike.
QLabel* observationWarning(QWidget* parent, const char* objectName) {
    QLabel* made = label(parent);
    made->setObjectName(QString::fromLatin1(objectName));
    made->setAccessibleName(QStringLiteral("Observation warning"));
    made->setVisible(false);
    made->setStyleSheet(QStringLiteral(
        "QLabel { border: 1px solid palette(highlight); border-radius: 6px; padding: 6px 8px; }"));
    return made;
}

// A secondary line: drawn in the palette's placeholder colour, so that it
// follows a change of appearance.
QLabel* muted(QLabel* made) {
    made->setForegroundRole(QPalette::PlaceholderText);
    return made;
}

void clearLayout(QLayout* layout) {
    while (QLayoutItem* item = layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

}  // namespace

TrayPanel::TrayPanel(runtime::RecorderRuntime& runtime, settings::SessionTemplateStore& templates,
                     QWidget* parent)
    : QFrame(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      runtime_(runtime),
      templates_(templates) {
    setObjectName(QStringLiteral("LumenoteTrayPanel"));
    setWindowTitle(QStringLiteral("Lumenote"));
    setAccessibleName(QStringLiteral("Lumenote panel"));
    setFrameShape(QFrame::StyledPanel);

    banner_ = label(this);
    banner_->setObjectName(QStringLiteral("banner"));
    banner_->setVisible(false);
    banner_->setAccessibleName(QStringLiteral("Problem"));
    banner_->setStyleSheet(QStringLiteral(
        "QLabel { background: #c01c28; color: white; border-radius: 6px; padding: 6px 8px; }"));

    pages_ = new QStackedWidget(this);
    pages_->addWidget(buildStartPage());
    pages_->addWidget(buildSessionPage());
    pages_->addWidget(buildSummaryPage());
    // The panel keeps one width in every state; its height follows the page.
    pages_->setFixedWidth(kPanelWidth - 2 * kPanelMargin);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kPanelMargin, 14, kPanelMargin, 14);
    layout->setSpacing(10);
    layout->addWidget(banner_);
    layout->addWidget(pages_);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    reloadStartForm();
    refresh();
}

QWidget* TrayPanel::buildStartPage() {
    auto* page = new QWidget(this);
    auto* title = label(page, 1.3, true);
    title->setText(QStringLiteral("Start a study session"));

    ring_ = new GoalRing(page);
    today_ = muted(label(page));
    today_->setObjectName(QStringLiteral("today"));
    auto* todayRow = new QHBoxLayout;
    todayRow->addWidget(ring_);
    todayRow->addWidget(today_, 1);

    // The invitation to review reads as a line of text that can be chosen.
    reviewLine_ = new QPushButton(page);
    reviewLine_->setObjectName(QStringLiteral("reviewLine"));
    reviewLine_->setFlat(true);
    reviewLine_->setCursor(Qt::PointingHandCursor);
    reviewLine_->setStyleSheet(QStringLiteral("text-align: left; padding: 0;"));
    reviewLine_->setVisible(false);
    connect(reviewLine_, &QPushButton::clicked, this, &TrayPanel::reviewRequested);

    templateButtons_ = new QVBoxLayout;
    templateButtons_->setSpacing(4);

    form_ = new StartSessionForm(page);
    connect(form_, &StartSessionForm::startRequested, this, &TrayPanel::startFromForm);

    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addWidget(title);
    layout->addLayout(todayRow);
    layout->addWidget(reviewLine_);
    layout->addLayout(templateButtons_);
    layout->addWidget(form_);
    return page;
}

QWidget* TrayPanel::buildSessionPage() {
    auto* page = new QWidget(this);
    subject_ = label(page, 1.3, true);
    goal_ = muted(label(page));
    elapsed_ = label(page, 2.4, true);
    elapsed_->setAccessibleName(QStringLiteral("Elapsed time"));
    remaining_ = muted(label(page));
    activity_ = label(page);
    activity_->setAccessibleName(QStringLiteral("Current activity"));
    chip_ = new design::Chip(page);
    split_ = muted(label(page));
    observation_ = observationWarning(page, "observationWarning");

    auto* activityRow = new QHBoxLayout;
    activityRow->addWidget(activity_, 1);
    activityRow->addWidget(chip_, 0, Qt::AlignTop);

    classify_ = new QToolButton(page);
    classify_->setObjectName(QStringLiteral("classifyForSession"));
    classify_->setText(QStringLiteral("Classify for this session"));
    classify_->setPopupMode(QToolButton::InstantPopup);
    classify_->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto* classes = new QMenu(classify_);
    for (const classification::ActivityClassification choice : shell::kSessionClassChoices) {
        const std::string_view word = shell::classificationChipText(choice);
        classes->addAction(qt(word), this, [this, choice] { classifyForSession(choice); });
    }
    classify_->setMenu(classes);

    pause_ = new QPushButton(page);
    away_ = new QPushButton(page);
    end_ = new QPushButton(QStringLiteral("End"), page);
    subject_->setObjectName(QStringLiteral("sessionSubject"));
    elapsed_->setObjectName(QStringLiteral("elapsed"));
    remaining_->setObjectName(QStringLiteral("remaining"));
    activity_->setObjectName(QStringLiteral("activity"));
    pause_->setObjectName(QStringLiteral("pause"));
    away_->setObjectName(QStringLiteral("away"));
    end_->setObjectName(QStringLiteral("end"));
    end_->setAccessibleName(QStringLiteral("End session"));
    connect(pause_, &QPushButton::clicked, this, [this] {
        (void)runtime_.togglePause();
        refresh();
    });
    connect(away_, &QPushButton::clicked, this, [this] {
        const bool away =
            runtime_.manager().liveStudyState() == recording::LiveStudyState::passiveStudy;
        (void)(away ? runtime_.returnToComputerStudy() : runtime_.startPassiveStudy());
        refresh();
    });
    connect(end_, &QPushButton::clicked, this, [this] {
        (void)runtime_.end();
        refresh();
    });
    auto* controls = new QHBoxLayout;
    controls->addWidget(pause_);
    controls->addWidget(away_);
    controls->addStretch();
    controls->addWidget(end_);

    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(subject_);
    layout->addWidget(goal_);
    layout->addWidget(elapsed_);
    layout->addWidget(remaining_);
    layout->addSpacing(4);
    layout->addLayout(activityRow);
    layout->addWidget(classify_, 0, Qt::AlignLeft);
    layout->addWidget(split_);
    layout->addWidget(observation_);
    layout->addSpacing(6);
    layout->addLayout(controls);
    return page;
}

QWidget* TrayPanel::buildSummaryPage() {
    auto* page = new QWidget(this);
    summaryHeading_ = label(page, 1.3, true);
    summarySubtitle_ = muted(label(page));
    summaryTotals_ = new QGridLayout;
    summaryTotals_->setHorizontalSpacing(16);
    summaryTotals_->setVerticalSpacing(2);
    summaryScore_ = label(page, 1.0, true);
    summaryCoverage_ = muted(label(page));
    summaryBests_ = label(page);
    celebration_ = label(page, 1.0, true);
    summaryObservation_ = observationWarning(page, "summaryObservationWarning");
    done_ = new QPushButton(QStringLiteral("Done"), page);
    done_->setObjectName(QStringLiteral("done"));
    summaryHeading_->setObjectName(QStringLiteral("summaryHeading"));
    summarySubtitle_->setObjectName(QStringLiteral("summarySubtitle"));
    summaryScore_->setObjectName(QStringLiteral("summaryScore"));
    done_->setDefault(true);
    connect(done_, &QPushButton::clicked, this, [this] {
        runtime_.manager().clearPendingPostSession();
        reloadStartForm();
        refresh();
    });
    saveReceipt_ = new QPushButton(QStringLiteral("Save Receipt…"), page);
    saveReceipt_->setObjectName(QStringLiteral("saveReceipt"));
    connect(saveReceipt_, &QPushButton::clicked, this, &TrayPanel::chooseReceiptFile);
    receiptSaved_ = muted(label(page));
    receiptSaved_->setObjectName(QStringLiteral("receiptSaved"));
    receiptSaved_->setVisible(false);
    replay_ = new QPushButton(QStringLiteral("Replay"), page);
    replay_->setObjectName(QStringLiteral("replay"));
    connect(replay_, &QPushButton::clicked, this, [this] {
        if (const auto& finished = runtime_.manager().pendingPostSession()) {
            Q_EMIT replayRequested(qt(finished->id.upperString()));
        }
    });
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(replay_);
    buttons->addWidget(saveReceipt_);
    buttons->addStretch();
    buttons->addWidget(done_);

    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(summaryHeading_);
    layout->addWidget(summarySubtitle_);
    layout->addLayout(summaryTotals_);
    layout->addWidget(summaryScore_);
    layout->addWidget(summaryCoverage_);
    layout->addWidget(summaryBests_);
    layout->addWidget(celebration_);
    layout->addWidget(summaryObservation_);
    layout->addWidget(receiptSaved_);
    layout->addLayout(buttons);
    return page;
}

void TrayPanel::chooseReceiptFile() {
    const auto& session = runtime_.manager().pendingPostSession();
    if (!session) {
        return;
    }
    const auto target = ui::chooseReceiptFile(
        this, QStringLiteral("Save Receipt"),
        receipts::defaultReceiptFileName(receipts::ReceiptKind::session,
                                         LocalCalendar::current().dayKey(session->startDate),
                                         receipts::ReceiptFormat::png));
    if (target) {
        saveReceipt(target->path);
    }
}

bool TrayPanel::saveReceipt(const std::filesystem::path& path) {
    const auto& pending = runtime_.manager().pendingPostSession();
    if (!pending) {
        return false;
    }
    runtime::RecorderServices& services = runtime_.services();
    auto stored = services.store().loadSession(pending->id);
    if (!stored || !*stored) {
        showError(
            QStringLiteral("The receipt could not be saved (the session could not be read)."));
        return false;
    }
    const auto receipt = models::makeSessionReceipt(
        **stored, runtime_.manager().pendingPostSessionPersonalBests(),
        models::readReceiptOptions(services.defaults()), LocalCalendar::current());
    const receipts::ReceiptTarget target = receipts::receiptTarget(path);
    if (auto written = receipts::writeSessionReceipt(receipt, target.path, target.format);
        !written) {
        showError(qt(written.error().message()));
        return false;
    }
    receiptSaved_->setText(
        QStringLiteral("Receipt saved as %1.").arg(qt(target.path.filename().string())));
    receiptSaved_->setVisible(true);
    return true;
}

void TrayPanel::popUp(const QPoint& anchor) {
    refresh();
    if (page_ == Page::start) {
        refreshTodaysStudy();
    }
    adjustSize();
    const QScreen* screen = QGuiApplication::screenAt(anchor);
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    QPoint position = anchor;
    if (screen != nullptr) {
        const QRect available = screen->availableGeometry();
        position.setX(std::clamp(anchor.x() - width() / 2, available.left(),
                                 std::max(available.left(), available.right() - width())));
        const int below = anchor.y() + 8;
        position.setY(below + height() <= available.bottom()
                          ? below
                          : std::max(available.top(), anchor.y() - height() - 8));
    }
    move(position);
    show();
    raise();
    activateWindow();
    if (page_ == Page::start) {
        form_->focusSubject();
    }
}

void TrayPanel::refresh() {
    recording::SessionManager& manager = runtime_.manager();
    if (manager.activeSession()) {
        showPage(Page::session);
        refreshSessionPage();
    } else if (manager.pendingPostSession()) {
        showPage(Page::summary);
        refreshSummaryPage();
    } else if (page_ != Page::start) {
        showPage(Page::start);
        refreshTodaysStudy();
    }
}

void TrayPanel::showPage(Page page) {
    if (page != page_) {
        banner_->setVisible(false);
        receiptSaved_->setVisible(false);
    }
    page_ = page;
    pages_->setCurrentIndex(static_cast<int>(page));
    // Only the current page takes space, so the panel fits it.
    for (int index = 0; index < pages_->count(); ++index) {
        pages_->widget(index)->setSizePolicy(
            index == pages_->currentIndex() ? QSizePolicy::Preferred : QSizePolicy::Ignored,
            index == pages_->currentIndex() ? QSizePolicy::Preferred : QSizePolicy::Ignored);
    }
    pages_->adjustSize();
}

void TrayPanel::reloadStartForm() {
    runtime::RecorderServices& services = runtime_.services();
    templates_.reload();
    form_->load(shell::initialSessionStartForm(services.preferences()),
                shell::subjectSuggestions(services.store(), templates_.templates()));
    clearLayout(templateButtons_);
    for (const settings::SessionTemplate* offered :
         shell::quickStartTemplates(templates_.templates(), kQuickStartTemplates)) {
        auto* button = new QPushButton(QStringLiteral("Start “%1”").arg(qt(offered->name)), this);
        button->setToolTip(qt(offered->subject));
        button->setAccessibleName(QStringLiteral("Start template %1").arg(qt(offered->name)));
        const Uuid id = offered->id;
        connect(button, &QPushButton::clicked, this, [this, id] { startFromTemplate(id); });
        templateButtons_->addWidget(button);
    }
    refreshTodaysStudy();
}

void TrayPanel::refreshTodaysStudy() {
    runtime::RecorderServices& services = runtime_.services();
    const double today =
        shell::todaysStudyTime(services.store(), LocalCalendar::current(), services.now());
    const long long goal = services.preferences().dailyStudyGoalMinutes();
    today_->setText(qt(shell::todaysStudyText(today, goal)));
    ring_->setVisible(goal > 0);
    ring_->setProgress(shell::dailyGoalProgress(today, goal));
    const auto groups = services.review().groups();
    const std::string invitation = groups ? models::reviewInvitationText(**groups) : std::string();
    reviewLine_->setText(qt(invitation) + QStringLiteral(" →"));
    reviewLine_->setAccessibleName(qt(invitation));
    reviewLine_->setVisible(!invitation.empty());
}

std::optional<shell::LiveSessionPanel> TrayPanel::liveSession() {
    recording::SessionManager& manager = runtime_.manager();
    if (!manager.activeSession()) {
        return std::nullopt;
    }
    const recording::StudySession& session = *manager.activeSession();
    shell::LiveSessionValues values;
    values.timerValue = manager.currentTimerValue();
    values.studyState = manager.liveStudyState();
    const SeenActivity* seen = activityBehindPanel();
    values.activityName = seen != nullptr ? seen->name : std::string();
    values.classification =
        seen != nullptr ? seen->classification : manager.currentClassification();
    values.asleep = manager.isSleeping();
    std::tie(values.focusedSeconds, values.distractingSeconds) =
        shell::focusedAndDistractingSeconds(manager.activeSessionSegments(),
                                            manager.openPersistedSegment());
    return shell::liveSessionPanel(session, values);
}

void TrayPanel::refreshSessionPage() {
    const shell::LiveSessionPanel panel = *liveSession();
    const SeenActivity* seen = activityBehindPanel();
    subject_->setText(qt(panel.subject));
    goal_->setText(qt(panel.goal.empty() ? std::string() : "Goal: " + panel.goal));
    goal_->setVisible(!panel.goal.empty());
    elapsed_->setText(qt(panel.elapsedText));
    remaining_->setText(qt(panel.remainingText.value_or(std::string("Open end"))));
    activity_->setText(qt(panel.activityText));
    chip_->setVisible(panel.classification.has_value());
    if (panel.classification) {
        chip_->setClassification(*panel.classification);
    }
    split_->setText(qt(panel.splitText));
    const auto target = classificationTarget(seen);
    classify_->setVisible(target.has_value() && panel.classification.has_value());
    if (target) {
        classify_->setToolTip(QStringLiteral("Choose how %1 counts for the rest of this session")
                                  .arg(qt(target->name)));
    }
    pause_->setText(qt(panel.pauseTitle));
    away_->setText(qt(panel.awayTitle));
    away_->setEnabled(!panel.paused);
    const std::string warning = runtime_.status().observationWarning;
    observation_->setText(qt(warning));
    observation_->setVisible(!warning.empty());
}

void TrayPanel::refreshSummaryPage() {
    recording::SessionManager& manager = runtime_.manager();
    const shell::PostSessionPanel panel = shell::postSessionPanel(
        *manager.pendingPostSession(), manager.pendingPostSessionPersonalBests(),
        manager.pendingPostSessionAllowsCelebration());
    summaryHeading_->setText(qt(panel.heading));
    summarySubtitle_->setText(qt(panel.subtitle));
    clearLayout(summaryTotals_);
    int row = 0;
    for (const shell::SummaryLine& line : panel.totals) {
        auto* name = label(this, 1.0, line.depth == 0);
        name->setText(qt(line.name));
        name->setIndent(line.depth * 14);
        auto* value = label(this, 1.0, line.depth == 0);
        value->setText(qt(line.value));
        value->setAlignment(Qt::AlignRight);
        summaryTotals_->addWidget(name, row, 0);
        summaryTotals_->addWidget(value, row, 1);
        ++row;
    }
    summaryScore_->setText(qt(panel.focusScoreText));
    summaryCoverage_->setText(qt(panel.coverageText));
    summaryCoverage_->setVisible(!panel.coverageText.empty());
    QStringList bests;
    for (const std::string& best : panel.bests) {
        bests.append(QStringLiteral("★ ") + qt(best));
    }
    summaryBests_->setText(bests.join(QLatin1Char('\n')));
    summaryBests_->setVisible(!bests.isEmpty());
    celebration_->setText(qt(panel.celebration.value_or(std::string())));
    celebration_->setVisible(panel.celebration.has_value());
    const auto& ended = runtime_.manager().pendingPostSession();
    const std::string warning = ended ? runtime_.observationWarningFor(ended->id) : std::string();
    summaryObservation_->setText(qt(warning));
    summaryObservation_->setVisible(!warning.empty());
}

void TrayPanel::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

void TrayPanel::startFromForm() {
    auto request = shell::sessionStartRequest(form_->values());
    if (!request.ok()) {
        form_->showRefusal(request.error());
        return;
    }
    if (auto refused = runtime_.start(*request); !refused.ok()) {
        // Shown beside its field rather than in the banner.
        banner_->setVisible(false);
        form_->showRefusal(
            {shell::fieldOfFailure(refused.error().failure), refused.error().message()});
        return;
    }
    started(*request);
}

void TrayPanel::startFromTemplate(const Uuid& templateID) {
    const settings::SessionTemplate* chosen = templates_.find(templateID);
    if (chosen == nullptr) {
        reloadStartForm();
        return;
    }
    const auto request =
        shell::templateStartRequest(*chosen, runtime_.services().preferences().defaultStudyMode());
    if (auto refused = runtime_.start(request); !refused.ok()) {
        showError(qt(refused.error().message()));
        return;
    }
    (void)templates_.markUsed(templateID);
    started(request);
}

void TrayPanel::started(const recording::SessionStartRequest& request) {
    shell::rememberStartedSession(runtime_.services().preferences(), request);
    banner_->setVisible(false);
    refresh();
    Q_EMIT sessionStarted();
}

void TrayPanel::classifyForSession(classification::ActivityClassification choice) {
    recording::SessionManager& manager = runtime_.manager();
    const SeenActivity* seen = activityBehindPanel();
    const auto target = classificationTarget(seen);
    if (!target || !manager.activeSession()) {
        return;
    }
    seen_->classification = choice;
    classification::ClassificationRules& rules = runtime_.services().rules();
    if (target->tab) {
        rules.setTabOverride(*target->tab, choice);
    } else {
        rules.setSessionApplicationOverride(target->bundleIdentifier, choice);
    }
    // The stretch in front takes its new class now, not at the next tick.
    manager.applicationActivated();
    refresh();
}

std::optional<shell::LiveClassificationTarget> TrayPanel::classificationTarget(
    const SeenActivity* seen) {
    if (seen == nullptr) {
        return std::nullopt;
    }
    return shell::liveClassificationTarget(seen->bundleIdentifier, seen->name, seen->open,
                                           recording::kOwnBundleIdentifier);
}

const TrayPanel::SeenActivity* TrayPanel::activityBehindPanel() {
    recording::SessionManager& manager = runtime_.manager();
    const auto& session = manager.activeSession();
    if (!session) {
        seen_.reset();
        return nullptr;
    }
    if (seen_ && seen_->session != session->id) {
        seen_.reset();
    }
    const std::string& inFront = manager.currentBundleIdentifier();
    if (inFront != recording::kOwnBundleIdentifier) {
        if (manager.currentApplicationName().empty()) {
            seen_.reset();
        } else {
            seen_ = SeenActivity{session->id, inFront, manager.currentApplicationName(),
                                 manager.currentClassification(), manager.openPersistedSegment()};
        }
    }
    return seen_ ? &*seen_ : nullptr;
}

void TrayPanel::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || isActiveWindow()) {
        return;
    }
    // A panel closes when the user turns elsewhere; its own completion list
    // takes the focus for a moment and does not count.
    QTimer::singleShot(0, this, [this] {
        if (!isActiveWindow() && QApplication::activePopupWidget() == nullptr &&
            QApplication::activeModalWidget() == nullptr) {
            hide();
        }
    });
}

void TrayPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        hide();
        return;
    }
    QFrame::keyPressEvent(event);
}

}  // namespace lumenote::ui
