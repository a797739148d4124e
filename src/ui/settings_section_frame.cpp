#include "ui/settings_section_frame.hpp"

#include <QLabel>
#include <QVBoxLayout>

namespace lumenote::ui {

QVBoxLayout* sectionLayout(QWidget* section, const QString& title, const QString& summary) {
    auto* layout = new QVBoxLayout(section);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(12);
    auto* heading = new QLabel(title, section);
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setWeight(QFont::Bold);
    heading->setFont(font);
    layout->addWidget(heading);
    if (!summary.isEmpty()) {
        auto* line = new QLabel(summary, section);
        line->setWordWrap(true);
        line->setForegroundRole(QPalette::PlaceholderText);
        layout->addWidget(line);
    }
    return layout;
}

}  // namespace lumenote::ui
