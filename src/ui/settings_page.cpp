#include "ui/settings_page.hpp"

#include <QHBoxLayout>
#include <QListWidget>
#include <QScrollArea>
#include <QStackedWidget>

#include "ui/settings_data_section.hpp"

namespace lumenote::ui {

namespace {

QScrollArea* scrolled(QWidget* section, QWidget* parent) {
    auto* area = new QScrollArea(parent);
    area->setWidget(section);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return area;
}

}  // namespace

SettingsPage::SettingsPage(SettingsDependencies dependencies, QWidget* parent)
    : QWidget(parent), dependencies_(std::move(dependencies)) {
    setObjectName(QStringLiteral("settingsPage"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    sections_ = new QListWidget(this);
    sections_->setObjectName(QStringLiteral("settingsSections"));
    sections_->setAccessibleName(QStringLiteral("Settings sections"));
    sections_->setFrameShape(QFrame::NoFrame);
    sections_->setStyleSheet(
        QStringLiteral("QListWidget { padding: 12px 8px; }"
                       "QListWidget::item { padding: 6px 10px; }"));
    pages_ = new QStackedWidget(this);

    data_ = new DataSettingsSection(dependencies_);
    for (const auto& [name, section] :
         {std::pair{QStringLiteral("Data"), static_cast<QWidget*>(data_)}}) {
        sections_->addItem(name);
        pages_->addWidget(scrolled(section, pages_));
    }
    sections_->setFixedWidth(sections_->sizeHintForColumn(0) + 56);
    layout->addWidget(sections_);
    layout->addWidget(pages_, 1);

    connect(sections_, &QListWidget::currentRowChanged, pages_, &QStackedWidget::setCurrentIndex);
    connect(data_, &DataSettingsSection::historyChanged, this, &SettingsPage::historyChanged);
    sections_->setCurrentRow(0);
}

SettingsPage::~SettingsPage() = default;

void SettingsPage::showSection(Section section) {
    sections_->setCurrentRow(static_cast<int>(section));
}

SettingsPage::Section SettingsPage::currentSection() const {
    return static_cast<Section>(sections_->currentRow());
}

}  // namespace lumenote::ui
