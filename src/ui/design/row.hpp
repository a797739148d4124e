// One line of a list (sessions, activities, rules, review groups): an
// optional icon, a title, an optional subtitle, and at the end either a value
// text or a widget such as a chip. A clickable row takes the keyboard focus
// and emits activated() on a click, Enter or Space. Its accessible name says
// title, subtitle and the trailing text in that order.
#pragma once

#include <QIcon>
#include <QWidget>

class QLabel;
class QHBoxLayout;

namespace lumenote::ui::design {

class Row final : public QWidget {
    Q_OBJECT

  public:
    explicit Row(const QString& title, const QString& subtitle = {}, QWidget* parent = nullptr);

    void setIcon(const QIcon& icon);
    void setTitle(const QString& title);
    void setSubtitle(const QString& subtitle);
    // Replaces a trailing widget, if any.
    void setTrailingText(const QString& text);
    // The row takes ownership of `widget`; it replaces a trailing text. Its
    // accessible name (or a label's text) joins the row's.
    void setTrailingWidget(QWidget* widget);
    void setClickable(bool clickable);
    bool isClickable() const { return clickable_; }

  Q_SIGNALS:
    void activated();

  protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void clearTrailing();
    void updateAccessibleName();

    QLabel* icon_;
    QLabel* title_;
    QLabel* subtitle_;
    QLabel* trailingText_;
    QWidget* trailingWidget_ = nullptr;
    QHBoxLayout* layout_;
    bool clickable_ = false;
};

}  // namespace lumenote::ui::design
