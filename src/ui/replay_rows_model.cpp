#include "ui/replay_rows_model.hpp"

#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

// A top-level row's index carries the id 0; a child's carries its parent's
// row plus one, which is all parent() needs.

ReplayRowsModel::ReplayRowsModel(QObject* parent) : QAbstractItemModel(parent) {}

void ReplayRowsModel::setRows(std::vector<models::ReplayRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

const models::ReplayRow* ReplayRowsModel::rowAt(const QModelIndex& index) const {
    if (!index.isValid()) {
        return nullptr;
    }
    if (index.internalId() == 0) {
        return &rows_.at(static_cast<std::size_t>(index.row()));
    }
    const auto& parent = rows_.at(static_cast<std::size_t>(index.internalId() - 1));
    return &parent.children.at(static_cast<std::size_t>(index.row()));
}

QModelIndex ReplayRowsModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    if (!parent.isValid()) {
        return createIndex(row, column, quintptr{0});
    }
    return createIndex(row, column, static_cast<quintptr>(parent.row()) + 1);
}

QModelIndex ReplayRowsModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == 0) {
        return {};
    }
    return createIndex(static_cast<int>(child.internalId() - 1), 0, quintptr{0});
}

int ReplayRowsModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) {
        return static_cast<int>(rows_.size());
    }
    if (parent.column() != 0 || parent.internalId() != 0) {
        return 0;  // one level deep
    }
    return static_cast<int>(rowAt(parent)->children.size());
}

int ReplayRowsModel::columnCount(const QModelIndex&) const {
    return columnCount_;
}

QVariant ReplayRowsModel::data(const QModelIndex& index, int role) const {
    const models::ReplayRow* row = rowAt(index);
    if (row == nullptr) {
        return {};
    }
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            switch (index.column()) {
                case timesColumn:
                    return qt(row->times);
                case nameColumn:
                    return qt(row->name);
                case durationColumn:
                    return qt(row->duration);
                case chipColumn:
                    return qt(row->chipText);
                default:
                    return {};
            }
        case Qt::ToolTipRole:
            return qt(row->name + ", " + row->times + ", " + row->duration +
                      (row->chipText.empty() ? "" : ", " + row->chipText));
        case Qt::TextAlignmentRole:
            return index.column() == durationColumn
                       ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                       : QVariant(int(Qt::AlignLeft | Qt::AlignVCenter));
        case classificationRole:
            return row->classification ? QVariant(static_cast<int>(*row->classification))
                                       : QVariant();
        case kindRole:
            return static_cast<int>(row->kind);
        default:
            return {};
    }
}

QVariant ReplayRowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
        case timesColumn:
            return QStringLiteral("Time");
        case nameColumn:
            return QStringLiteral("Activity");
        case durationColumn:
            return QStringLiteral("Duration");
        case chipColumn:
            return QStringLiteral("Class");
        default:
            return {};
    }
}

}  // namespace lumenote::ui
