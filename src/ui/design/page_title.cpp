#include "ui/design/page_title.hpp"

namespace lumenote::ui::design {

namespace {

constexpr double kTitleScale = 1.6;

}  // namespace

QLabel* makePageTitle(const QString& text, QWidget* parent) {
    auto* title = new QLabel(text, parent);
    title->setObjectName(QStringLiteral("pageTitle"));
    title->setAccessibleName(text);
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * kTitleScale);
    font.setWeight(QFont::Bold);
    title->setFont(font);
    return title;
}

}  // namespace lumenote::ui::design
