// A number typed into a field and handed to the preferences store when the
// field is left or Enter is pressed. The field then shows what the store
// holds, and under it the store's range when the store clamped the value, or
// a plea for a number when the text was none (nothing is stored then).
#pragma once

#include <functional>

#include <QWidget>

#include "ui/models/number_entry.hpp"

class QLabel;
class QLineEdit;

namespace lumenote::ui {

class NumberField final : public QWidget {
    Q_OBJECT

  public:
    // `read` gives the store's value and `write` assigns one, both in the
    // field's unit; `name` is the field's accessible name and prefixes the
    // object names ("Name" + "Field" / "Sentence").
    NumberField(const QString& name, const QString& objectName, models::NumberRange range,
                std::function<double()> read, std::function<void(double)> write,
                QWidget* parent = nullptr);

    // Shows the store's value again and clears the sentence.
    void refresh();

  private:
    void commit();

    models::NumberRange range_;
    std::function<double()> read_;
    std::function<void(double)> write_;
    QLineEdit* field_;
    QLabel* sentence_;
};

}  // namespace lumenote::ui
