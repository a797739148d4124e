#include "ui/settings_about_section.hpp"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "portability/export_file.hpp"
#include "runtime/diagnostic_report_input.hpp"
#include "ui/design/banner.hpp"
#include "ui/design/card.hpp"
#include "ui/design/named_controls.hpp"
#include "ui/design/qt_text.hpp"
#include "ui/models/about_settings.hpp"
#include "ui/settings_section_frame.hpp"

#if LUMENOTE_UPDATE_CHECKS
#include "updates/feed_address.hpp"
#include "updates/release_channel.hpp"
#endif

namespace lumenote::ui {

namespace {

QLabel* paragraph(std::string_view text, QWidget* parent) {
    auto* label = new QLabel(qt(text), parent);
    label->setWordWrap(true);
    return label;
}

}  // namespace

AboutSettingsSection::AboutSettingsSection(SettingsDependencies& dependencies, QWidget* parent)
    : QWidget(parent), dependencies_(dependencies) {
    setObjectName(QStringLiteral("aboutSection"));
    auto* layout = sectionLayout(this, QStringLiteral("About"),
                                 QStringLiteral("A local study-session recorder: everything it "
                                                "records stays on this computer."));
    banner_ = design::errorBanner(QStringLiteral("aboutBanner"), this);
    layout->addWidget(banner_);

    auto* product = new design::Card(QStringLiteral("Lumenote"), {}, this);
    auto* version = new QLabel(
        qt(models::versionText(dependencies_.appVersion, dependencies_.appBuild)), product);
    version->setObjectName(QStringLiteral("aboutVersion"));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    product->bodyLayout()->addWidget(version);
#if LUMENOTE_UPDATE_CHECKS
    product->bodyLayout()->addWidget(paragraph(models::kUpdateChecksText, product));
    allowUpdateChecks_ = new QCheckBox(qt(models::kAllowUpdateChecksTitle), product);
    allowUpdateChecks_->setObjectName(QStringLiteral("updatesCheckEnabled"));
    allowUpdateChecks_->setAccessibleName(qt(models::kAllowUpdateChecksTitle));
    product->bodyLayout()->addWidget(allowUpdateChecks_);
    updateAddress_ = paragraph({}, product);
    updateAddress_->setObjectName(QStringLiteral("updatesFeedAddress"));
    updateAddress_->setTextFormat(Qt::PlainText);
    updateAddress_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    product->bodyLayout()->addWidget(updateAddress_);
    connect(allowUpdateChecks_, &QCheckBox::toggled, this,
            [this](bool on) { dependencies_.preferences.setUpdatesCheckEnabled(on); });
    token_ = dependencies_.preferences.addObserver([this](settings::PreferenceProperty property) {
        if (property == settings::PreferenceProperty::updatesCheckEnabled ||
            property == settings::PreferenceProperty::updatesFeedAddress) {
            refreshUpdates();
        }
    });
    refreshUpdates();
#else
    product->bodyLayout()->addWidget(paragraph(models::kUpdatesText, product));
#endif
    layout->addWidget(product);

    auto* report =
        new design::Card(QStringLiteral("Diagnostic Report"), qt(models::kReportPrivacyText), this);
    auto* reportButtons = new QHBoxLayout;
    auto* show = design::namedButton(QStringLiteral("Show Report"), QStringLiteral("reportShow"),
                                     report, QStringLiteral("Show diagnostic report"));
    copy_ = design::namedButton(QStringLiteral("Copy"), QStringLiteral("reportCopy"), report,
                                QStringLiteral("Copy diagnostic report"));
    save_ = design::namedButton(QStringLiteral("Save…"), QStringLiteral("reportSave"), report,
                                QStringLiteral("Save diagnostic report"));
    copy_->setEnabled(false);
    save_->setEnabled(false);
    reportButtons->addWidget(show);
    reportButtons->addWidget(copy_);
    reportButtons->addWidget(save_);
    reportButtons->addStretch(1);
    report->bodyLayout()->addLayout(reportButtons);
    report_ = new QPlainTextEdit(report);
    report_->setObjectName(QStringLiteral("reportText"));
    report_->setAccessibleName(QStringLiteral("Diagnostic report"));
    report_->setReadOnly(true);
    report_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    report_->setMinimumHeight(260);
    report_->setVisible(false);
    report->bodyLayout()->addWidget(report_);
    layout->addWidget(report);

    auto* feedback = new design::Card(
        QStringLiteral("Feedback"),
        QStringLiteral("Opens a message in your mail program; no report is attached."), this);
    auto* feedbackRow = new QHBoxLayout;
    auto* write =
        design::namedButton(QStringLiteral("Write Feedback…"), QStringLiteral("feedbackWrite"),
                            feedback, QStringLiteral("Write feedback"));
    feedbackRow->addWidget(write);
    feedbackRow->addStretch(1);
    feedback->bodyLayout()->addLayout(feedbackRow);
    layout->addWidget(feedback);
    layout->addStretch(1);

    connect(show, &QPushButton::clicked, this, &AboutSettingsSection::showReport);
    connect(copy_, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(report_->toPlainText()); });
    connect(save_, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getSaveFileName(
            this, QStringLiteral("Save Diagnostic Report"),
            QDir::home().filePath(QStringLiteral("Lumenote Diagnostic Report.txt")),
            QStringLiteral("Text (*.txt)"));
        if (!path.isEmpty()) {
            (void)saveReportTo(path.toStdString());
        }
    });
    connect(write, &QPushButton::clicked, this, [this] {
        const auto message = portability::buildFeedbackMessage(facts());
        QDesktopServices::openUrl(QUrl(qt(message.mailtoLink())));
    });
}

AboutSettingsSection::~AboutSettingsSection() {
    if (token_ != 0) {
        dependencies_.preferences.removeObserver(token_);
    }
}

void AboutSettingsSection::refreshUpdates() {
#if LUMENOTE_UPDATE_CHECKS
    const settings::PreferencesStore& preferences = dependencies_.preferences;
    const QSignalBlocker blocker(allowUpdateChecks_);
    allowUpdateChecks_->setChecked(preferences.updatesCheckEnabled());
    updateAddress_->setText(qt(models::updateAddressText(updates::effectiveFeedAddress(
        preferences.updatesFeedAddress(), updates::compiledFeedAddress()))));
#endif
}

portability::DiagnosticReportFacts AboutSettingsSection::facts() {
    if (dependencies_.diagnosticFacts) {
        return dependencies_.diagnosticFacts();
    }
    const auto orNothing = [](const std::string& text) {
        return text.empty() ? std::nullopt : std::optional<std::string>(text);
    };
    return runtime::gatherDiagnosticReportFacts({dependencies_.paths,
                                                 orNothing(dependencies_.appVersion),
                                                 orNothing(dependencies_.appBuild)});
}

void AboutSettingsSection::showReport() {
    report_->setPlainText(qt(portability::buildDiagnosticReport(facts())));
    report_->setVisible(true);
    copy_->setEnabled(true);
    save_->setEnabled(true);
}

bool AboutSettingsSection::saveReportTo(const std::filesystem::path& path) {
    banner_->setVisible(false);
    auto file = portability::AtomicExportFile::create(path);
    if (!file) {
        banner_->setText(qt(file.error().message()));
        banner_->setVisible(true);
        return false;
    }
    const QByteArray bytes = report_->toPlainText().toUtf8();
    auto written = (*file)->write(std::string_view(bytes.constData(), bytes.size()));
    if (written.ok()) {
        written = (*file)->commit();
    }
    if (!written) {
        banner_->setText(qt(written.error().message()));
        banner_->setVisible(true);
        return false;
    }
    return true;
}

}  // namespace lumenote::ui
