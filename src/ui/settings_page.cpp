#include "ui/settings_page.hpp"

#include <algorithm>

#include <QHBoxLayout>
#include <QListWidget>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStyledItemDelegate>

#include "ui/settings_about_section.hpp"
#include "ui/settings_browsers_section.hpp"
#include "ui/settings_classification_section.hpp"
#include "ui/settings_data_section.hpp"
#include "ui/settings_general_section.hpp"
#include "ui/settings_notifications_section.hpp"
#include "ui/settings_sessions_section.hpp"
#include "ui/settings_tracking_section.hpp"

namespace lumenote::ui {

namespace {

// Section names drawn inset from the list's edges, highlight included, so
// that the list reads as a sidebar rather than a table.
class SectionDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem inset = option;
        inset.rect = option.rect.adjusted(kInset, 1, -kInset, -1);
        QStyledItemDelegate::paint(painter, inset, index);
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(2 * kInset, 14);
    }

  private:
    static constexpr int kInset = 8;
};

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
    sections_->setItemDelegate(new SectionDelegate(sections_));
    sections_->setSpacing(3);
    pages_ = new QStackedWidget(this);

    general_ = new GeneralSettingsSection(dependencies_);
    data_ = new DataSettingsSection(dependencies_);
    about_ = new AboutSettingsSection(dependencies_);
    browsers_ = new BrowsersSettingsSection(dependencies_);
    auto* classification = new ClassificationSettingsSection(dependencies_);
    for (const auto& [name, section] :
         {std::pair{QStringLiteral("General"), static_cast<QWidget*>(general_)},
          std::pair{QStringLiteral("Sessions"),
                    static_cast<QWidget*>(new SessionsSettingsSection(dependencies_))},
          std::pair{QStringLiteral("Tracking"),
                    static_cast<QWidget*>(new TrackingSettingsSection(dependencies_))},
          std::pair{QStringLiteral("Classification"), static_cast<QWidget*>(classification)},
          std::pair{QStringLiteral("Browsers"), static_cast<QWidget*>(browsers_)},
          std::pair{QStringLiteral("Notifications"),
                    static_cast<QWidget*>(new NotificationsSettingsSection(dependencies_))},
          std::pair{QStringLiteral("Data"), static_cast<QWidget*>(data_)},
          std::pair{QStringLiteral("About"), static_cast<QWidget*>(about_)}}) {
        sections_->addItem(name);
        pages_->addWidget(scrolled(section, pages_));
    }
    sections_->setFixedWidth(std::max(160, sections_->sizeHintForColumn(0) + 24));
    layout->addWidget(sections_);
    layout->addWidget(pages_, 1);

    connect(sections_, &QListWidget::currentRowChanged, pages_, &QStackedWidget::setCurrentIndex);
    connect(data_, &DataSettingsSection::historyChanged, this, &SettingsPage::historyChanged);
    // A restore brings its own rules.
    connect(data_, &DataSettingsSection::historyChanged, classification,
            &ClassificationSettingsSection::refresh);
    sections_->setCurrentRow(0);
}

SettingsPage::~SettingsPage() = default;

void SettingsPage::showSection(Section section) {
    sections_->setCurrentRow(static_cast<int>(section));
}

void SettingsPage::shortcutStateChanged() {
    general_->shortcutStateChanged();
}

}  // namespace lumenote::ui
