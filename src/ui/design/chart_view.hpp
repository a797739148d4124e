// A chart on screen: one widget that holds a chart's figures and paints them
// with the chart module in the widget's palette. Its text alternative, the
// same figures as a table, is its accessible description, its tableText()
// and, through "Show as table" in its context menu, what it shows instead of
// the drawing.
#pragma once

#include <QWidget>

#include <variant>

#include "ui/models/chart_data.hpp"
#include "ui/models/chart_table.hpp"

class QAction;
class QTableWidget;

namespace lumenote::ui::design {

class ChartView final : public QWidget {
    Q_OBJECT

  public:
    enum class Kind { bar, stackedBar, line, ring };

    explicit ChartView(QWidget* parent = nullptr);

    // Each replaces the figures and the kind; the accessible name becomes the
    // chart's title unless one was set.
    void setBarChart(models::BarChartData figures);
    void setStackedBarChart(models::StackedBarChartData figures);
    void setLineChart(models::LineChartData figures);
    void setRing(models::RingData figures);

    Kind kind() const;
    models::ChartTable table() const;
    // The table as tab-separated lines, the header first.
    QString tableText() const;
    // Shows the figures as a table instead of the drawing.
    void setShowsTable(bool shows);
    bool showsTable() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void setData(std::variant<models::BarChartData, models::StackedBarChartData,
                              models::LineChartData, models::RingData>
                     figures);
    void fillTable();
    bool isEmpty() const;

    std::variant<models::BarChartData, models::StackedBarChartData, models::LineChartData,
                 models::RingData>
        data_;
    QAction* showTable_;
    QTableWidget* tableWidget_ = nullptr;
};

}  // namespace lumenote::ui::design
