#include "ui/settings_browsers_section.hpp"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/browser_installation.hpp"
#include "runtime/setup_test_input.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/models/browser_settings.hpp"
#include "ui/settings_section_frame.hpp"

namespace lumenote::ui {

namespace {

QLabel* line(const std::string& text, QWidget* parent) {
    auto* label = new QLabel(qt(text), parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

bridge::NativeHostConfiguration configurationOf(const SettingsDependencies& dependencies) {
    return dependencies.nativeHost
               ? *dependencies.nativeHost
               : bridge::nativeHostConfiguration(dependencies.paths, processEnvironmentValue);
}

}  // namespace

BrowsersSettingsSection::BrowsersSettingsSection(SettingsDependencies& dependencies,
                                                 QWidget* parent)
    : QWidget(parent), dependencies_(dependencies), checker_(configurationOf(dependencies)) {
    setObjectName(QStringLiteral("browsersSection"));
    auto* layout = sectionLayout(
        this, QStringLiteral("Browsers"),
        QStringLiteral("The browser extension tells Lumenote which website is in front: "
                       "hostnames only, never addresses or page titles, and nothing leaves this "
                       "computer."));
    banner_ = design::errorBanner(QStringLiteral("browsersBanner"), this);
    layout->addWidget(banner_);
    outcome_ = new QLabel(this);
    outcome_->setObjectName(QStringLiteral("browsersOutcome"));
    outcome_->setVisible(false);
    layout->addWidget(outcome_);

    browsers_ = new QVBoxLayout;
    browsers_->setSpacing(12);
    layout->addLayout(browsers_);
    auto* checkRow = new QHBoxLayout;
    notInstalled_ = new QLabel(this);
    notInstalled_->setObjectName(QStringLiteral("browsersNotInstalled"));
    notInstalled_->setWordWrap(true);
    auto* checkAgain =
        design::namedButton(QStringLiteral("Check Again"), QStringLiteral("browsersCheck"), this,
                            QStringLiteral("Check browsers again"));
    checkRow->addWidget(notInstalled_, 1);
    checkRow->addWidget(checkAgain);
    layout->addLayout(checkRow);

    auto* packages = new design::Card(QStringLiteral("Extension Packages"), {}, this);
    for (const std::string& text :
         models::extensionPackagesLines(dependencies_.extensionPackages)) {
        packages->bodyLayout()->addWidget(line(text, packages));
    }
    layout->addWidget(packages);

    auto* setup = new design::Card(
        QStringLiteral("Setup Test"),
        QStringLiteral("Checks application tracking, the store, the browser and its extension, "
                       "and notifications, and says what to do next."),
        this);
    auto* setupRow = new QHBoxLayout;
    auto* run =
        design::namedButton(QStringLiteral("Run Setup Test"), QStringLiteral("setupTestRun"), setup,
                            QStringLiteral("Run setup test"));
    copyReport_ =
        design::namedButton(QStringLiteral("Copy Report"), QStringLiteral("setupTestCopy"), setup,
                            QStringLiteral("Copy setup test report"));
    copyReport_->setEnabled(false);
    setupRow->addWidget(run);
    setupRow->addWidget(copyReport_);
    setupRow->addStretch(1);
    setup->bodyLayout()->addLayout(setupRow);
    setupItems_ = new QLabel(setup);
    setupItems_->setObjectName(QStringLiteral("setupTestItems"));
    setupItems_->setWordWrap(true);
    setupItems_->setVisible(false);
    setup->bodyLayout()->addWidget(setupItems_);
    setupReport_ = new QPlainTextEdit(setup);
    setupReport_->setObjectName(QStringLiteral("setupTestReport"));
    setupReport_->setAccessibleName(QStringLiteral("Setup test report"));
    setupReport_->setReadOnly(true);
    setupReport_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setupReport_->setMinimumHeight(200);
    setupReport_->setVisible(false);
    setup->bodyLayout()->addWidget(setupReport_);
    layout->addWidget(setup);
    layout->addStretch(1);

    connect(checkAgain, &QPushButton::clicked, this, &BrowsersSettingsSection::refresh);
    connect(run, &QPushButton::clicked, this, &BrowsersSettingsSection::runSetupTest);
    connect(copyReport_, &QPushButton::clicked, this, [this] {
        QApplication::clipboard()->setText(setupReport_->toPlainText());
        outcome_->setText(qt(bridge::kReportCopiedMessage));
        outcome_->setVisible(true);
    });
    refresh();
}

std::vector<bridge::BrowserStatusRow> BrowsersSettingsSection::rows() const {
    if (dependencies_.browserStatus) {
        return dependencies_.browserStatus(checker_);
    }
    const Date now = dependencies_.wallClock.now();
    const bridge::BrowserBridgeStore store(
        bridge::BrowserBridgeStore::defaultRoot(dependencies_.paths, processEnvironmentValue));
    const auto extensions = bridge::BrowserExtensionStatusService::readNow(store, now);
    const auto state = store.readState();
    return bridge::browserStatusRows({
        checker_,
        extensions,
        bridge::BrowserSearchLocations::fromEnvironment(processEnvironmentValue),
        state,
        std::nullopt,
        state && state->sessionRunning,
        state && state->browserTrackingPaused,
        state ? state->frontmostBrowserBundleIdentifier : std::nullopt,
        dependencies_.rules.localPDFFilenameLabelsEnabled(),
        {},
        now,
    });
}

void BrowsersSettingsSection::refresh() {
    while (QLayoutItem* item = browsers_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const std::vector<bridge::BrowserStatusRow> all = rows();
    for (const bridge::BrowserStatusRow& row : all) {
        if (models::deservesCard(row)) {
            browsers_->addWidget(browserCard(row));
        }
    }
    notInstalled_->setText(qt(models::notInstalledText(all)));
}

QWidget* BrowsersSettingsSection::browserCard(const bridge::BrowserStatusRow& row) {
    const models::BrowserCard text = models::browserCard(row, dependencies_.calendar);
    auto* card = new design::Card(qt(text.title), qt(text.diagnosis), this);
    const QString key = qt(rawValue(row.diagnosis.browser));
    card->setObjectName(key + QStringLiteral("Card"));
    auto* facts = new QFormLayout;
    for (const models::BrowserFact& fact : text.facts) {
        QLabel* value = line(fact.value, card);
        value->setAccessibleName(qt(fact.label));
        facts->addRow(qt(fact.label), value);
    }
    card->bodyLayout()->addLayout(facts);
    auto* actions = new QHBoxLayout;
    const bridge::SupportedBrowser browser = row.diagnosis.browser;
    const auto add = [&](bool shown, const QString& word, const char* suffix, bool removing) {
        if (!shown) {
            return;
        }
        auto* made = design::namedButton(word, key + QLatin1String(suffix), card,
                                         word + QLatin1Char(' ') + qt(text.title));
        connect(made, &QPushButton::clicked, this,
                [this, browser, removing] { change(browser, removing); });
        actions->addWidget(made);
    };
    add(text.canRegister, QStringLiteral("Register"), "Register", false);
    add(text.canRepair, QStringLiteral("Repair"), "Repair", false);
    add(text.canRemove, QStringLiteral("Remove"), "Remove", true);
    actions->addStretch(1);
    card->bodyLayout()->addLayout(actions);
    return card;
}

void BrowsersSettingsSection::change(bridge::SupportedBrowser browser, bool removing) {
    banner_->setVisible(false);
    const auto changed = removing ? checker_.remove(browser) : checker_.repair(browser);
    const QString name = qt(bridge::displayName(browser));
    if (!changed) {
        banner_->setText(name + QStringLiteral(": ") + qt(bridge::message(changed.error())));
        banner_->setVisible(true);
        outcome_->setVisible(false);
    } else {
        outcome_->setText(name + QStringLiteral(": ") +
                          qt(removing ? bridge::kRegistrationRemovedMessage
                                      : bridge::kRegistrationRepairedMessage));
        outcome_->setVisible(true);
    }
    refresh();
}

void BrowsersSettingsSection::runSetupTest() {
    const bridge::SetupTestInput input =
        dependencies_.setupTestInput
            ? dependencies_.setupTestInput()
            : runtime::gatherSetupTestInput(
                  {dependencies_.paths, dependencies_.appVersion, dependencies_.appBuild});
    const bridge::SetupTestReport report =
        bridge::runSetupTest(input, dependencies_.wallClock.now());
    QStringList lines;
    for (const std::string& text : models::setupTestLines(report)) {
        lines.append(qt(text));
    }
    setupItems_->setText(lines.join(QLatin1Char('\n')));
    setupItems_->setVisible(true);
    setupReport_->setPlainText(qt(report.diagnosticText));
    setupReport_->setVisible(true);
    copyReport_->setEnabled(true);
}

}  // namespace lumenote::ui
