// A session or a day as one horizontal bar: a block per stretch, coloured by
// its class; time without input hatched, the computer asleep grey, paused
// gaps left empty. Hovering a block, or moving the keyboard focus onto it
// (Left and Right, Home and End), shows its name and times ("YouTube,
// 09:05–09:20", times in the user's locale) as a tooltip and in the
// accessible description.
#pragma once

#include <QWidget>

#include <cstddef>
#include <optional>
#include <vector>

#include "ui/models/timeline_model.hpp"

namespace lumenote::ui::design {

class TimelineStrip final : public QWidget {
    Q_OBJECT

  public:
    explicit TimelineStrip(QWidget* parent = nullptr);

    // Shows `blocks` (in time order, as models::timelineBlocks gives them)
    // over `span`, or over the blocks' own span when none is given (a day
    // strip passes the whole day). The focus returns to no block.
    void setBlocks(std::vector<models::TimelineBlock> blocks,
                   std::optional<models::TimelineSpan> span = std::nullopt);
    const std::vector<models::TimelineBlock>& blocks() const { return blocks_; }
    // The block the keyboard is on, if any.
    std::optional<std::size_t> currentBlock() const { return current_; }
    // A block's name and its times: "YouTube, 09:05–09:20".
    QString blockText(std::size_t index) const;

    QSize sizeHint() const override { return {360, 28}; }
    QSize minimumSizeHint() const override { return {60, 16}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

  private:
    QRectF barRect() const;
    void moveTo(std::size_t index);

    std::vector<models::TimelineBlock> blocks_;
    std::optional<models::TimelineSpan> span_;
    std::optional<std::size_t> current_;
};

}  // namespace lumenote::ui::design
