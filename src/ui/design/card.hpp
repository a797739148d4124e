// The unit of every page: a rounded panel on the palette's base colour with a
// thin border, a title, an optional subtitle and a body the page fills. Its
// title is its accessible name.
#pragma once

#include <QFrame>

class QLabel;
class QVBoxLayout;

namespace lumenote::ui::design {

class Card final : public QFrame {
    Q_OBJECT

  public:
    explicit Card(const QString& title, const QString& subtitle = {}, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    // An empty subtitle hides its line.
    void setSubtitle(const QString& subtitle);
    QString title() const;
    QString subtitle() const;
    // Where the page puts the card's content, below the title.
    QVBoxLayout* bodyLayout() const { return body_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QLabel* title_;
    QLabel* subtitle_;
    QVBoxLayout* body_;
};

}  // namespace lumenote::ui::design
