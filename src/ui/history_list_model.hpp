// The History page's list for Qt's views: the pager's entries as rows, read
// a page at a time as the view scrolls (canFetchMore/fetchMore), so that
// opening the page reads one page however long the history is, and only
// rows that have been scrolled to are ever held.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QAbstractListModel>

#include "ui/models/history_list.hpp"

namespace lumenote::ui {

class HistoryListModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    enum Role {
        // True for a week's heading, false for a session.
        isHeadingRole = Qt::UserRole + 1,
        sessionIdRole,  // the session's id as text; empty for a heading
        startRole,      // QDateTime of the session's start or the week's first day
        subjectRole,
        goalRole,
        durationRole,
        focusScoreRole,
        statusRole,      // the status as an int; invalid when unknown
        statusTextRole,  // the status's word: "Completed", …; empty when unknown
    };

    // `store` must outlive the model.
    HistoryListModel(recording::RecordingStore& store, LocalCalendar calendar,
                     unsigned firstWeekday, QObject* parent = nullptr);

    // Starts again from the newest session under `filter`, reading its first
    // page.
    void setFilter(const models::HistoryFilter& filter);
    // Reads the history again under the current filter (after a deletion or
    // an undo).
    void reload();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

    const models::HistoryFilter& filter() const { return pager_->filter(); }
    // The sessions among `rows`, in row order; headings are left out.
    std::vector<Uuid> sessionIds(const QModelIndexList& rows) const;
    // The store's error of the last page that could not be read.
    const std::optional<StoreError>& readError() const { return readError_; }

  Q_SIGNALS:
    void readFailed(const QString& message);

  private:
    recording::RecordingStore& store_;
    LocalCalendar calendar_;
    unsigned firstWeekday_;
    std::unique_ptr<models::HistoryPager> pager_;
    std::vector<models::HistoryEntry> entries_;
    std::optional<StoreError> readError_;
};

}  // namespace lumenote::ui
