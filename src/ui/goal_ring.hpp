// The tray panel's ring of the day's progress towards the daily study goal,
// drawn by the design system's ring; its
// accessible name says the figure in words.
#pragma once

#include <QWidget>

namespace lumenote::ui {

class GoalRing final : public QWidget {
    Q_OBJECT

  public:
    explicit GoalRing(QWidget* parent = nullptr);
    // 0 ... 1; values outside are clamped.
    void setProgress(double progress);
    QSize sizeHint() const override { return {44, 44}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double progress_ = 0.0;
};

}  // namespace lumenote::ui
