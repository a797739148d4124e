#include "ui/desktop_observation_view.hpp"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>

#include "ui/design/qt_text.hpp"
#include "ui/observation_report.hpp"

namespace lumenote::ui {

namespace {

QLabel* selectableParagraph(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

QPushButton* button(const QString& text, const QString& accessibleName, const QString& objectName,
                    QWidget* parent) {
    auto* made = new QPushButton(text, parent);
    made->setAccessibleName(accessibleName);
    made->setObjectName(objectName);
    made->setAutoDefault(false);
    return made;
}

}  // namespace

DesktopObservationView::DesktopObservationView(DesktopObservationServices services, QWidget* parent)
    : QWidget(parent), services_(std::move(services)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    report_ = selectableParagraph(this);
    report_->setObjectName(QStringLiteral("observationReport"));
    report_->setTextFormat(Qt::RichText);
    layout->addWidget(report_);

    installExtension_ = button(QStringLiteral("Install the GNOME Shell Extension"),
                               QStringLiteral("Install the GNOME Shell Extension"),
                               QStringLiteral("observationInstallExtension"), this);
    installExtension_->hide();
    auto* again = button(QStringLiteral("Check Again"), QStringLiteral("Check this desktop again"),
                         QStringLiteral("observationCheckAgain"), this);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(installExtension_);
    buttons->addWidget(again);
    buttons->addStretch(1);
    layout->addLayout(buttons);

    installResult_ = selectableParagraph(this);
    installResult_->setObjectName(QStringLiteral("observationInstallResult"));
    installResult_->hide();
    layout->addWidget(installResult_);

    connect(again, &QPushButton::clicked, this, &DesktopObservationView::refresh);
    connect(installExtension_, &QPushButton::clicked, this,
            &DesktopObservationView::installGnomeExtension);
}

void DesktopObservationView::refresh() {
    if (!services_.checkSetup) {
        return;
    }
    const runtime::SetupCheck check = services_.checkSetup();
    report_->setText(observationReportHtml(check.report));
    installExtension_->setVisible(
        services_.installGnomeExtension &&
        check.waylandStep == platform::observation::WaylandSetupStep::installGnomeExtension);
}

void DesktopObservationView::installGnomeExtension() {
    const runtime::GnomeExtensionSetup setup = services_.installGnomeExtension();
    QStringList lines;
    for (const std::string& sentence : setup.sentences) {
        lines << qt(sentence);
    }
    installResult_->setText(lines.join(QLatin1Char('\n')));
    installResult_->show();
    // Installed, the extension still waits for the next login, so the check
    // shows the gap; the button stays only for another try after a failure.
    refresh();
    installExtension_->setVisible(installExtension_->isVisibleTo(this) && !setup.installed);
}

}  // namespace lumenote::ui
