#include "ui/settings_classification_section.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/chip.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/design/row.hpp"
#include "ui/settings_section_frame.hpp"

namespace lumenote::ui {

namespace {

// A row with the class as its chip; the list item carries the row's words
// for assistive technology.
void addRow(QListWidget* list, const QString& title, const QString& detail,
            classification::ActivityClassification classification) {
    auto* row = new design::Row(title, detail);
    auto* chip = new design::Chip;
    chip->setClassification(classification);
    row->setTrailingWidget(chip);
    row->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* item = new QListWidgetItem(list);
    item->setData(Qt::AccessibleTextRole, row->accessibleName());
    item->setSizeHint(row->sizeHint());
    list->setItemWidget(item, row);
}

}  // namespace

ClassificationSettingsSection::ClassificationSettingsSection(SettingsDependencies& dependencies,
                                                             QWidget* parent)
    : QWidget(parent), dependencies_(dependencies) {
    setObjectName(QStringLiteral("classificationSection"));
    auto* layout = sectionLayout(
        this, QStringLiteral("Classification"),
        QStringLiteral("Whether time in an application or on a website counts as focused, "
                       "distracting or neutral. A rule of yours always wins over a suggestion."));
    banner_ = design::errorBanner(QStringLiteral("classificationBanner"), this);
    layout->addWidget(banner_);
    layout->addWidget(ruleCard(applications_, QStringLiteral("Applications"),
                               QStringLiteral("Named by their desktop entry identifier."),
                               "applicationRules"));
    layout->addWidget(ruleCard(websites_, QStringLiteral("Websites"),
                               QStringLiteral("A rule for a site covers its subdomains."),
                               "websiteRules"));

    const auto starters = models::starterRows();
    auto* suggestions =
        new design::Card(qt(classification::kStarterSuggestionsHeading),
                         qt(classification::recognisedByDefaultText(starters.size())), this);
    auto* starterList = new QListWidget(suggestions);
    starterList->setObjectName(QStringLiteral("starterSuggestions"));
    starterList->setAccessibleName(qt(classification::kStarterSuggestionsHeading));
    starterList->setMinimumHeight(200);
    for (const auto& row : starters) {
        addRow(starterList, qt(row.name), qt(row.detail), row.classification);
    }
    suggestions->bodyLayout()->addWidget(starterList);
    layout->addWidget(suggestions);

    auto* pdfs = new design::Card(
        QStringLiteral("Local PDFs"),
        QStringLiteral("PDFs opened from this computer in a browser are recorded by a label: "
                       "yours, or one taken from the file name."),
        this);
    pdfOutcome_ = new QLabel(pdfs);
    pdfOutcome_->setObjectName(QStringLiteral("pdfOutcome"));
    pdfOutcome_->setVisible(false);
    pdfs->bodyLayout()->addWidget(pdfOutcome_);
    auto* pdfRow = new QHBoxLayout;
    auto* clearLabels = design::namedButton(QStringLiteral("Clear Labels Taken from File Names"),
                                            QStringLiteral("clearPDFLabels"), pdfs,
                                            QStringLiteral("Clear labels taken from file names"));
    pdfRow->addWidget(clearLabels);
    pdfRow->addStretch(1);
    pdfs->bodyLayout()->addLayout(pdfRow);
    layout->addWidget(pdfs);
    layout->addStretch(1);

    connect(clearLabels, &QPushButton::clicked, this, [this] {
        banner_->setVisible(false);
        if (auto cleared = dependencies_.rules.clearFilenameDerivedPDFLabels(); !cleared) {
            showError(qt(cleared.error().message()));
            return;
        }
        pdfOutcome_->setText(QStringLiteral("Labels taken from file names were cleared."));
        pdfOutcome_->setVisible(true);
    });
    token_ = dependencies_.rules.changed().add([this] { refresh(); });
    refresh();
}

ClassificationSettingsSection::~ClassificationSettingsSection() {
    dependencies_.rules.changed().remove(token_);
}

QWidget* ClassificationSettingsSection::ruleCard(RuleList& rules, const QString& title,
                                                 const QString& subtitle, const char* name) {
    auto* card = new design::Card(title, subtitle, this);
    const QString prefix = QLatin1String(name);
    rules.list = new QListWidget(card);
    rules.list->setObjectName(prefix);
    rules.list->setAccessibleName(title + QStringLiteral(" rules"));
    rules.list->setMinimumHeight(120);
    card->bodyLayout()->addWidget(rules.list);
    rules.empty = new QLabel(
        rules.kind == RuleEditor::Kind::application
            ? QStringLiteral("No application rules yet: applications are classified by the "
                             "starter suggestions below, or stay unclassified.")
            : QStringLiteral("No website rules yet: websites are classified by the starter "
                             "suggestions below, or stay unclassified."),
        card);
    rules.empty->setObjectName(prefix + QStringLiteral("Empty"));
    rules.empty->setWordWrap(true);
    card->bodyLayout()->addWidget(rules.empty);
    auto* buttons = new QHBoxLayout;
    const QString noun = rules.kind == RuleEditor::Kind::application ? QStringLiteral("application")
                                                                     : QStringLiteral("website");
    auto* add = design::namedButton(QStringLiteral("Add…"), prefix + QStringLiteral("Add"), card,
                                    QStringLiteral("Add %1 rule").arg(noun));
    rules.change = design::namedButton(QStringLiteral("Change…"), prefix + QStringLiteral("Change"),
                                       card, QStringLiteral("Change %1 rule").arg(noun));
    rules.remove = design::namedButton(QStringLiteral("Remove"), prefix + QStringLiteral("Remove"),
                                       card, QStringLiteral("Remove %1 rule").arg(noun));
    buttons->addWidget(add);
    buttons->addWidget(rules.change);
    buttons->addWidget(rules.remove);
    buttons->addStretch(1);
    card->bodyLayout()->addLayout(buttons);

    connect(add, &QPushButton::clicked, this, [this, &rules] { edit(rules, true); });
    connect(rules.change, &QPushButton::clicked, this, [this, &rules] { edit(rules, false); });
    connect(rules.list, &QListWidget::itemActivated, this, [this, &rules] { edit(rules, false); });
    connect(rules.remove, &QPushButton::clicked, this, [this, &rules] { remove(rules); });
    connect(rules.list, &QListWidget::currentRowChanged, this, [&rules](int row) {
        rules.change->setEnabled(row >= 0);
        rules.remove->setEnabled(row >= 0);
    });
    return card;
}

void ClassificationSettingsSection::refresh() {
    auto applications = dependencies_.store.appClassifications();
    auto websites = dependencies_.store.websiteClassifications();
    if (!applications || !websites) {
        showError(qt(classification::classificationFailureMessage(
            applications ? classification::ClassificationFailure::websiteRulesNotLoaded
                         : classification::ClassificationFailure::applicationRulesNotLoaded)));
    }
    fill(applications_, applications ? models::applicationRuleRows(*applications)
                                     : std::vector<models::RuleRow>{});
    fill(websites_, websites ? models::websiteRuleRows(*websites) : std::vector<models::RuleRow>{});
}

void ClassificationSettingsSection::fill(RuleList& rules, std::vector<models::RuleRow> rows) {
    const int current = rules.list->currentRow();
    rules.list->clear();
    rules.rows = std::move(rows);
    for (const models::RuleRow& row : rules.rows) {
        addRow(rules.list, qt(row.title), qt(row.detail), row.classification);
    }
    rules.list->setCurrentRow(std::min(current, rules.list->count() - 1));
    rules.list->setVisible(rules.list->count() > 0);
    rules.empty->setVisible(rules.list->count() == 0);
    const bool chosen = rules.list->currentRow() >= 0;
    rules.change->setEnabled(chosen);
    rules.remove->setEnabled(chosen);
}

void ClassificationSettingsSection::edit(RuleList& rules, bool adding) {
    const int row = rules.list->currentRow();
    if (!adding && row < 0) {
        return;
    }
    RuleEditor editor(dependencies_.rules, rules.kind,
                      adding ? std::nullopt : std::optional(rules.rows[row]), this);
    editor.exec();
}

void ClassificationSettingsSection::remove(RuleList& rules) {
    const int row = rules.list->currentRow();
    if (row < 0) {
        return;
    }
    banner_->setVisible(false);
    const std::string key = rules.rows[row].key;
    const auto removed = rules.kind == RuleEditor::Kind::application
                             ? dependencies_.rules.removeApplicationClassification(key)
                             : dependencies_.rules.removeWebsiteClassification(key);
    if (!removed) {
        showError(qt(removed.error().message()));
    }
}

void ClassificationSettingsSection::showError(const QString& message) {
    banner_->setText(message);
    banner_->setVisible(true);
}

}  // namespace lumenote::ui
