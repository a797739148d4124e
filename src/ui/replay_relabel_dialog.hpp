// Asks how a stretch without input should be labelled and over which part
// of it: Studying away from Mac, Break or Unconfirmed, from and to within the
// row's own stretch (the whole stretch unless the user narrows it).
#pragma once

#include <QDialog>

#include <optional>

#include "foundation/dates.hpp"
#include "recording/enumerations.hpp"

class QComboBox;
class QDateTimeEdit;

namespace lumenote::ui {

class ReplayRelabelDialog final : public QDialog {
    Q_OBJECT

  public:
    // `start` and `end` bound the range that may be chosen.
    ReplayRelabelDialog(Date start, Date end, QWidget* parent = nullptr);

    // The chosen state; empty for Unconfirmed.
    std::optional<recording::ConfirmedStudyState> state() const;
    Date from() const;
    Date to() const;

  private:
    QComboBox* state_;
    QDateTimeEdit* from_;
    QDateTimeEdit* to_;
};

}  // namespace lumenote::ui
