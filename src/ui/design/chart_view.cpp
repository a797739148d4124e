#include "ui/design/chart_view.hpp"

#include <QAction>
#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QTableWidget>
#include <algorithm>
#include <type_traits>

#include "ui/design/charts.hpp"
#include "ui/design/qt_text.hpp"

namespace lumenote::ui::design {

namespace {

// What a chart of each kind is called when its page gives it no name.
QString titleOf(ChartView::Kind kind) {
    switch (kind) {
        case ChartView::Kind::bar:
            return QStringLiteral("Study time per day");
        case ChartView::Kind::stackedBar:
            return QStringLiteral("Classes per day");
        case ChartView::Kind::line:
            return QStringLiteral("Focus score by week");
        case ChartView::Kind::ring:
            return QStringLiteral("Daily goal");
    }
    return {};
}

}  // namespace

ChartView::ChartView(QWidget* parent) : QWidget(parent) {
    showTable_ = new QAction(QStringLiteral("Show as table"), this);
    showTable_->setCheckable(true);
    connect(showTable_, &QAction::toggled, this, &ChartView::setShowsTable);
    addAction(showTable_);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    setData(models::BarChartData{});
}

void ChartView::setBarChart(models::BarChartData figures) {
    setData(std::move(figures));
}
void ChartView::setStackedBarChart(models::StackedBarChartData figures) {
    setData(std::move(figures));
}
void ChartView::setLineChart(models::LineChartData figures) {
    setData(std::move(figures));
}
void ChartView::setRing(models::RingData figures) {
    setData(std::move(figures));
}

void ChartView::setData(std::variant<models::BarChartData, models::StackedBarChartData,
                                     models::LineChartData, models::RingData>
                            figures) {
    const bool wasNamed = !accessibleName().isEmpty() && accessibleName() != titleOf(kind());
    data_ = std::move(figures);
    if (!wasNamed) {
        setAccessibleName(titleOf(kind()));
    }
    setAccessibleDescription(tableText());
    if (kind() == Kind::ring) {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    } else {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    }
    if (tableWidget_ != nullptr) {
        fillTable();
    }
    updateGeometry();
    update();
}

ChartView::Kind ChartView::kind() const {
    return static_cast<Kind>(data_.index());
}

models::ChartTable ChartView::table() const {
    return std::visit(
        [](const auto& figures) {
            using Data = std::decay_t<decltype(figures)>;
            if constexpr (std::is_same_v<Data, models::BarChartData>) {
                return models::barChartTable(figures);
            } else if constexpr (std::is_same_v<Data, models::StackedBarChartData>) {
                return models::stackedBarChartTable(figures);
            } else if constexpr (std::is_same_v<Data, models::LineChartData>) {
                return models::lineChartTable(figures);
            } else {
                return models::ringTable(figures);
            }
        },
        data_);
}

QString ChartView::tableText() const {
    return qt(models::tableText(table()));
}

void ChartView::setShowsTable(bool shows) {
    if (shows && tableWidget_ == nullptr) {
        tableWidget_ = new QTableWidget(this);
        tableWidget_->setAccessibleName(accessibleName());
        tableWidget_->setEditTriggers(QAbstractItemView::NoEditTriggers);
        tableWidget_->verticalHeader()->hide();
        tableWidget_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
        fillTable();
    }
    if (tableWidget_ != nullptr) {
        tableWidget_->setGeometry(rect());
        tableWidget_->setVisible(shows);
    }
    if (showTable_->isChecked() != shows) {
        showTable_->setChecked(shows);
    }
    update();
}

bool ChartView::showsTable() const {
    return tableWidget_ != nullptr && !tableWidget_->isHidden();
}

void ChartView::fillTable() {
    const models::ChartTable figures = table();
    tableWidget_->clear();
    tableWidget_->setColumnCount(static_cast<int>(figures.header.size()));
    tableWidget_->setRowCount(static_cast<int>(figures.rows.size()));
    QStringList header;
    for (const std::string& cell : figures.header) {
        header.append(qt(cell));
    }
    tableWidget_->setHorizontalHeaderLabels(header);
    for (std::size_t row = 0; row < figures.rows.size(); ++row) {
        for (std::size_t column = 0; column < figures.rows[row].size(); ++column) {
            tableWidget_->setItem(static_cast<int>(row), static_cast<int>(column),
                                  new QTableWidgetItem(qt(figures.rows[row][column])));
        }
    }
}

bool ChartView::isEmpty() const {
    return std::visit(
        [](const auto& figures) {
            using Data = std::decay_t<decltype(figures)>;
            if constexpr (std::is_same_v<Data, models::BarChartData> ||
                          std::is_same_v<Data, models::StackedBarChartData>) {
                return figures.days.empty();
            } else if constexpr (std::is_same_v<Data, models::LineChartData>) {
                return std::none_of(figures.points.begin(), figures.points.end(),
                                    [](const auto& point) { return point.value.has_value(); });
            } else {
                return false;
            }
        },
        data_);
}

QSize ChartView::sizeHint() const {
    return kind() == Kind::ring ? QSize(44, 44) : QSize(360, 200);
}

QSize ChartView::minimumSizeHint() const {
    return kind() == Kind::ring ? QSize(24, 24) : QSize(160, 100);
}

void ChartView::paintEvent(QPaintEvent*) {
    if (showsTable()) {
        return;
    }
    QPainter painter(this);
    const ChartStyle style = chartStyle(palette());
    const QRectF target = QRectF(rect()).adjusted(2, 2, -2, -2);
    if (isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(target, Qt::AlignCenter, QStringLiteral("No data yet"));
        return;
    }
    std::visit(
        [&](const auto& figures) {
            using Data = std::decay_t<decltype(figures)>;
            if constexpr (std::is_same_v<Data, models::BarChartData>) {
                paintBarChart(painter, target, figures, style);
            } else if constexpr (std::is_same_v<Data, models::StackedBarChartData>) {
                paintStackedBarChart(painter, target, figures, style);
            } else if constexpr (std::is_same_v<Data, models::LineChartData>) {
                paintLineChart(painter, target, figures, style);
            } else {
                paintRing(painter, QRectF(rect()), figures, style);
            }
        },
        data_);
}

void ChartView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        update();
    }
}

void ChartView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (tableWidget_ != nullptr) {
        tableWidget_->setGeometry(rect());
    }
}

}  // namespace lumenote::ui::design
