// A figure at a glance: a large value with its unit ("2 h 05 min") over a
// one-line caption ("studied today"), or, where the figure would mean
// nothing, a muted sentence in its place ("Not enough data"). Its accessible
// name is the value and the caption together.
#pragma once

#include <QWidget>

class QLabel;

namespace lumenote::ui::design {

class Metric final : public QWidget {
    Q_OBJECT

  public:
    explicit Metric(QWidget* parent = nullptr);

    void setValue(const QString& value, const QString& caption);
    // Shows `reason` muted where the value goes, under the same caption.
    void setUnavailable(const QString& reason);
    bool isAvailable() const { return available_; }
    QString value() const;
    QString caption() const;

  private:
    void restyle();
    QLabel* value_;
    QLabel* caption_;
    bool available_ = true;
};

}  // namespace lumenote::ui::design
