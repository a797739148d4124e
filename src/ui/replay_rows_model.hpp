// The replay rows of one session as a two-level tree model: a browser's run
// of pages is a parent row with its pages as children. The rows are the
// view model's (models::ReplayRow); the model only lends them to a
// QTreeView, so a session of thousands of rows has no widget per row.
#pragma once

#include <QAbstractItemModel>

#include <vector>

#include "ui/models/replay_view.hpp"

namespace lumenote::ui {

class ReplayRowsModel final : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum Column { timesColumn, nameColumn, durationColumn, chipColumn, columnCount_ };
    enum Role {
        // The chip's class (an int of ActivityClassification), invalid for
        // rows that show a state instead of a class.
        classificationRole = Qt::UserRole + 1,
        kindRole,  // models::ReplayRowKind as an int
    };

    explicit ReplayRowsModel(QObject* parent = nullptr);

    void setRows(std::vector<models::ReplayRow> rows);
    // The row behind `index`, or null for an invalid index.
    const models::ReplayRow* rowAt(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    std::vector<models::ReplayRow> rows_;
};

}  // namespace lumenote::ui
