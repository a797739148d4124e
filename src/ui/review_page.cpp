#include "ui/review_page.hpp"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "recording/unclassified_review_service.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/page_title.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

namespace {

using classification::ActivityClassification;
using classification::LocalPDFClassificationScope;

struct ClassChoice {
    ActivityClassification classification;
    const char* word;
};

// The classes a user gives: everything but unclassified, in the order of
// the panel's chips.
constexpr ClassChoice kClassChoices[] = {
    {ActivityClassification::focused, "Focused"},
    {ActivityClassification::neutral, "Neutral"},
    {ActivityClassification::distracting, "Distracting"},
    {ActivityClassification::ignored, "Ignored"},
};

// How far a PDF's class reaches from the review: the PDF itself, or also
// every PDF opened in later sessions.
constexpr std::pair<const char*, LocalPDFClassificationScope> kPDFScopes[] = {
    {"Only this PDF", LocalPDFClassificationScope::thisPDFInSession},
    {"This PDF and every new PDF", LocalPDFClassificationScope::futureDefault},
};

constexpr int kGroupIdRole = Qt::UserRole;

}  // namespace

ReviewPage::ReviewPage(recording::UnclassifiedReviewService& review, QWidget* parent)
    : QWidget(parent), review_(review) {
    setObjectName(QStringLiteral("reviewPage"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(12);
    layout->addWidget(design::makePageTitle(QStringLiteral("Review Unclassified Activity"), this));

    summary_ = new QLabel(this);
    summary_->setObjectName(QStringLiteral("reviewSummary"));
    summary_->setWordWrap(true);
    layout->addWidget(summary_);

    banner_ = design::errorBanner(QStringLiteral("reviewBanner"), this);
    layout->addWidget(banner_);

    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("reviewList"));
    list_->setAccessibleName(QStringLiteral("Activities without a class"));
    list_->setAlternatingRowColors(true);
    list_->setWordWrap(true);
    // Each group reads as two lines with room around them.
    list_->setStyleSheet(QStringLiteral("QListWidget::item { padding: 6px 10px; }"));
    layout->addWidget(list_, 1);

    auto* scopeRow = new QHBoxLayout;
    pdfScopeLabel_ = new QLabel(QStringLiteral("The class reaches"), this);
    pdfScope_ = new QComboBox(this);
    pdfScope_->setObjectName(QStringLiteral("reviewPDFScope"));
    pdfScope_->setAccessibleName(QStringLiteral("How far the PDF's class reaches"));
    for (const auto& [word, scope] : kPDFScopes) {
        pdfScope_->addItem(QString::fromLatin1(word));
    }
    pdfScopeLabel_->setBuddy(pdfScope_);
    scopeRow->addWidget(pdfScopeLabel_);
    scopeRow->addWidget(pdfScope_);
    scopeRow->addStretch(1);
    layout->addLayout(scopeRow);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(new QLabel(QStringLiteral("Classify as"), this));
    for (const ClassChoice& choice : kClassChoices) {
        auto* button = new QPushButton(QString::fromLatin1(choice.word), this);
        button->setObjectName(QStringLiteral("reviewClassify") + QString::fromLatin1(choice.word));
        button->setAccessibleName(QStringLiteral("Classify as ") +
                                  QString::fromLatin1(choice.word));
        connect(button, &QPushButton::clicked, this,
                [this, choice] { classifySelected(choice.classification); });
        buttons->addWidget(button);
        classButtons_.push_back(button);
    }
    buttons->addStretch(1);
    layout->addLayout(buttons);

    connect(list_, &QListWidget::currentRowChanged, this, [this] { selectionChanged(); });
    reload();
}

void ReviewPage::reload() {
    banner_->setVisible(false);
    // Looking at the page is asking for the list as it is now: sessions may
    // have been deleted or restored since it was made.
    review_.invalidate();
    const auto groups = review_.groups();
    if (!groups) {
        rows_.clear();
        list_->clear();
        summary_->clear();
        showError(qt(groups.error().description));
        selectionChanged();
        return;
    }
    rows_ = models::reviewRows(**groups);
    summary_->setText(qt(models::reviewSummaryText(**groups)));
    const QString previous =
        list_->currentItem() ? list_->currentItem()->data(kGroupIdRole).toString() : QString();
    const QSignalBlocker blocker(list_);
    list_->clear();
    int current = rows_.empty() ? -1 : 0;
    for (const models::ReviewRow& row : rows_) {
        auto* item = new QListWidgetItem(qt(row.title) + QStringLiteral("\n") + qt(row.subtitle) +
                                             QStringLiteral(" · ") + qt(row.durationText) +
                                             QStringLiteral(" · ") + qt(row.evidenceText),
                                         list_);
        item->setData(kGroupIdRole, qt(row.groupId));
        item->setData(Qt::AccessibleTextRole,
                      item->text().replace(QLatin1Char('\n'), QStringLiteral(", ")));
        if (qt(row.groupId) == previous) {
            current = list_->count() - 1;
        }
    }
    list_->setCurrentRow(current);
    list_->setVisible(!rows_.empty());
    selectionChanged();
}

bool ReviewPage::classifySelected(ActivityClassification choice) {
    const int row = list_->currentRow();
    if (row < 0 || row >= static_cast<int>(rows_.size())) {
        return false;
    }
    const auto group = review_.group(rows_[static_cast<std::size_t>(row)].groupId);
    if (!group) {
        showError(qt(group.error().description));
        return false;
    }
    if (!*group) {
        reload();
        return false;
    }
    const auto outcome = review_.classify(**group, choice, chosenPDFScope());
    if (!outcome) {
        showError(qt(outcome.error().message()));
        return false;
    }
    reload();
    Q_EMIT classified();
    return true;
}

void ReviewPage::selectionChanged() {
    const int row = list_->currentRow();
    const bool chosen = row >= 0 && row < static_cast<int>(rows_.size());
    for (QPushButton* button : classButtons_) {
        button->setEnabled(chosen);
    }
    const bool pdf = chosen && rows_[static_cast<std::size_t>(row)].isLocalPDF;
    pdfScopeLabel_->setVisible(pdf);
    pdfScope_->setVisible(pdf);
}

LocalPDFClassificationScope ReviewPage::chosenPDFScope() const {
    return kPDFScopes[std::max(0, pdfScope_->currentIndex())].second;
}

void ReviewPage::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

}  // namespace lumenote::ui
