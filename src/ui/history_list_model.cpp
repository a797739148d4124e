#include "ui/history_list_model.hpp"

#include <algorithm>

#include <QDateTime>
#include <QLocale>

#include "ui/design/chip.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui {

namespace {

QDateTime dateTimeOf(Date date) {
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(date.millisecondsSince1970()));
}

}  // namespace

HistoryListModel::HistoryListModel(recording::RecordingStore& store, LocalCalendar calendar,
                                   unsigned firstWeekday, QObject* parent)
    : QAbstractListModel(parent),
      store_(store),
      calendar_(std::move(calendar)),
      firstWeekday_(firstWeekday) {
    setFilter({});
}

void HistoryListModel::setFilter(const models::HistoryFilter& filter) {
    beginResetModel();
    pager_ = std::make_unique<models::HistoryPager>(store_, calendar_, firstWeekday_, filter);
    entries_.clear();
    readError_.reset();
    endResetModel();
    fetchMore({});
}

void HistoryListModel::reload() {
    setFilter(pager_->filter());
}

int HistoryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant HistoryListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() < 0 ||
        static_cast<std::size_t>(index.row()) >= entries_.size()) {
        return {};
    }
    const models::HistoryEntry& entry = entries_[static_cast<std::size_t>(index.row())];
    if (const auto* heading = std::get_if<models::HistoryWeekHeading>(&entry)) {
        switch (role) {
            case isHeadingRole:
                return true;
            case startRole:
                return dateTimeOf(heading->weekStart);
            case Qt::DisplayRole:
            case Qt::AccessibleTextRole:
                return QStringLiteral("Week of %1")
                    .arg(QLocale().toString(dateTimeOf(heading->weekStart).date(),
                                            QLocale::LongFormat));
            default:
                return {};
        }
    }
    const auto& row = std::get<models::HistorySessionRow>(entry);
    switch (role) {
        case isHeadingRole:
            return false;
        case sessionIdRole:
            return qt(row.id.upperString());
        case startRole:
            return dateTimeOf(row.start);
        case Qt::DisplayRole:
        case subjectRole:
            return qt(row.subject);
        case goalRole:
            return qt(row.goal);
        case durationRole:
            return qt(row.durationText);
        case focusScoreRole:
            return qt(row.focusScoreText);
        case statusRole:
            return row.status ? QVariant(static_cast<int>(*row.status)) : QVariant();
        case statusTextRole:
            return row.status ? design::statusChipText(*row.status) : QString();
        case Qt::AccessibleTextRole:
            return QStringLiteral("%1, %2, %3, focus score %4, %5")
                .arg(qt(row.subject),
                     QLocale().toString(dateTimeOf(row.start), QLocale::ShortFormat),
                     qt(row.durationText), qt(row.focusScoreText),
                     row.status ? design::statusChipText(*row.status) : QString());
        default:
            return {};
    }
}

Qt::ItemFlags HistoryListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    if (data(index, isHeadingRole).toBool()) {
        return Qt::ItemIsEnabled;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

bool HistoryListModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && !pager_->atEnd() && !readError_;
}

void HistoryListModel::fetchMore(const QModelIndex& parent) {
    if (parent.isValid() || pager_->atEnd()) {
        return;
    }
    auto page = pager_->nextPage();
    if (!page) {
        readError_ = page.error();
        Q_EMIT readFailed(qt(models::historyReadFailureText(page.error())));
        return;
    }
    if (page->empty()) {
        return;
    }
    const int first = static_cast<int>(entries_.size());
    beginInsertRows({}, first, first + static_cast<int>(page->size()) - 1);
    entries_.insert(entries_.end(), std::make_move_iterator(page->begin()),
                    std::make_move_iterator(page->end()));
    endInsertRows();
}

std::vector<Uuid> HistoryListModel::sessionIds(const QModelIndexList& rows) const {
    std::vector<int> numbers;
    for (const QModelIndex& index : rows) {
        if (index.isValid() && index.model() == this) {
            numbers.push_back(index.row());
        }
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    std::vector<Uuid> ids;
    for (const int number : numbers) {
        if (const auto* row = std::get_if<models::HistorySessionRow>(
                &entries_[static_cast<std::size_t>(number)])) {
            ids.push_back(row->id);
        }
    }
    return ids;
}

}  // namespace lumenote::ui
