#include "ui/startup_failure_window.hpp"

#include <QApplication>
#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

#include "shell/startup_failure.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

StartupFailureWindow::StartupFailureWindow(const QString& text, QWidget* parent)
    : QWidget(parent, Qt::Window) {
    const QString title = qt(shell::kStartupFailureTitle);
    setWindowTitle(title);
    setMinimumWidth(460);

    auto* icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxCritical).pixmap(48, 48));
    icon->setAlignment(Qt::AlignTop);
    auto* heading = new QLabel(title, this);
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.3);
    heading->setFont(font);
    auto* body = new QLabel(text, this);
    body->setWordWrap(true);
    body->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* quit = new QPushButton(QStringLiteral("Quit"), this);
    quit->setDefault(true);
    connect(quit, &QPushButton::clicked, qApp, &QApplication::quit);

    auto* texts = new QVBoxLayout;
    texts->addWidget(heading);
    texts->addWidget(body);
    texts->addStretch();
    auto* top = new QHBoxLayout;
    top->addWidget(icon);
    top->addLayout(texts, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(quit);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(14);
    layout->addLayout(top);
    layout->addLayout(buttons);
}

}  // namespace lumenote::ui
