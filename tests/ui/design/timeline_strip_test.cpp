// The timeline strip on screen: its blocks' colours where their times are,
// hatching for no input, grey for sleep, nothing in a pause, and the keyboard
// moving from block to block with the block's name and times as a tooltip.
#include "ui/design/timeline_strip.hpp"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

#include "ui/design/design_test_support.hpp"
#include "ui/design/palette.hpp"

namespace lumenote::ui::design {
namespace {

using classification::ActivityClassification;
using models::TimelineBlock;
using models::TimelineBlockKind;
using testing::near;

// A local time today, as the strip's times are shown in the local zone.
Date local(int hour, int minute) {
    const QDateTime time(QDate(2026, 11, 16), QTime(hour, minute));
    return Date::fromUnixSeconds(static_cast<double>(time.toSecsSinceEpoch()));
}

class TimelineStripTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { testing::ensureApplication(); }
    void TearDown() override { testing::applyAppearance(false); }

    static void press(QWidget& widget, int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&widget, &down);
    }

    // 09:00 ────────── 09:40 pause 09:50 ── 10:00 ─ 10:10 ─ 10:20
    //   Editor (focused)            Video     no input  asleep
    std::vector<TimelineBlock> blocks{
        {local(9, 0), local(9, 40), TimelineBlockKind::activity, ActivityClassification::focused,
         "Editor"},
        {local(9, 50), local(10, 0), TimelineBlockKind::activity,
         ActivityClassification::distracting, "Video"},
        {local(10, 0), local(10, 10), TimelineBlockKind::noInput, std::nullopt, "No input"},
        {local(10, 10), local(10, 20), TimelineBlockKind::sleep, std::nullopt, "Mac asleep"}};
};

TEST_F(TimelineStripTest, BlocksAreColouredByWhatTheyWere) {
    for (const bool dark : {false, true}) {
        testing::applyAppearance(dark);
        TimelineStrip strip;
        strip.setBlocks(blocks);
        strip.resize(80 * 4 + 4, 28);  // 80 minutes on 320 px: 4 px a minute
        const QImage image = strip.grab().toImage();
        const int y = image.height() / 2;
        const auto xAt = [](int minutes) { return 2 + minutes * 4 + 2; };
        EXPECT_TRUE(near(image.pixelColor(xAt(20), y),
                         classificationFill(ActivityClassification::focused, dark)));
        EXPECT_TRUE(near(image.pixelColor(xAt(55), y),
                         classificationFill(ActivityClassification::distracting, dark)));
        EXPECT_TRUE(near(image.pixelColor(xAt(75), y), sleepFill(dark)));
        const QColor pause = image.pixelColor(xAt(45), y);
        for (const auto classification :
             {ActivityClassification::focused, ActivityClassification::distracting}) {
            EXPECT_FALSE(near(pause, classificationFill(classification, dark)));
        }
        EXPECT_FALSE(near(pause, sleepFill(dark)));
        // The hatching: some pixels of a no-input minute differ from the rest.
        QColor first = image.pixelColor(xAt(62), y);
        int differing = 0;
        for (int x = xAt(61); x < xAt(69); ++x) {
            differing += near(image.pixelColor(x, y), first, 20) ? 0 : 1;
        }
        EXPECT_GT(differing, 0);
    }
}

TEST_F(TimelineStripTest, TheKeyboardMovesFromBlockToBlockShowingNameAndTimes) {
    TimelineStrip strip;
    strip.setBlocks(blocks);
    strip.resize(300, 28);
    EXPECT_EQ(strip.focusPolicy(), Qt::StrongFocus);
    EXPECT_FALSE(strip.currentBlock());
    press(strip, Qt::Key_Right);
    EXPECT_EQ(strip.currentBlock(), 0u);
    EXPECT_EQ(strip.toolTip(), "Editor, 09:00–09:40");
    press(strip, Qt::Key_Right);
    EXPECT_EQ(strip.toolTip(), "Video, 09:50–10:00");
    EXPECT_EQ(strip.accessibleDescription(), strip.toolTip());
    press(strip, Qt::Key_End);
    EXPECT_EQ(strip.toolTip(), "Mac asleep, 10:10–10:20");
    press(strip, Qt::Key_Right);
    EXPECT_EQ(strip.currentBlock(), 3u) << "stays on the last block";
    press(strip, Qt::Key_Left);
    EXPECT_EQ(strip.toolTip(), "No input, 10:00–10:10");
    press(strip, Qt::Key_Home);
    press(strip, Qt::Key_Left);
    EXPECT_EQ(strip.currentBlock(), 0u) << "stays on the first block";
}

TEST_F(TimelineStripTest, HoveringABlockShowsItsNameAndTimesAndAPauseShowsNothing) {
    TimelineStrip strip;
    strip.setBlocks(blocks);
    strip.resize(80 * 4 + 4, 28);
    strip.show();
    // The tooltip shown, or nothing when the strip turned the hover down.
    const auto hover = [&](int minutes) {
        const QPoint at(2 + minutes * 4 + 2, 14);
        QHelpEvent help(QEvent::ToolTip, at, strip.mapToGlobal(at));
        QApplication::sendEvent(&strip, &help);
        return help.isAccepted() && QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    EXPECT_EQ(hover(55), "Video, 09:50–10:00");
    EXPECT_EQ(hover(45), "") << "the pause between 09:40 and 09:50";
    EXPECT_EQ(hover(65), "No input, 10:00–10:10");
    QToolTip::hideText();
}

TEST_F(TimelineStripTest, NewBlocksStartWithoutAFocusedBlockAndAnEmptyStripSaysSo) {
    TimelineStrip strip;
    strip.setBlocks(blocks);
    press(strip, Qt::Key_End);
    strip.setBlocks({});
    EXPECT_FALSE(strip.currentBlock());
    EXPECT_TRUE(strip.toolTip().isEmpty());
    EXPECT_EQ(strip.accessibleDescription(), "Nothing recorded");
    press(strip, Qt::Key_Right);
    EXPECT_FALSE(strip.currentBlock());
    strip.resize(200, 28);
    EXPECT_FALSE(strip.grab().toImage().isNull());
}

TEST_F(TimelineStripTest, ADayStripShowsBlocksWithinTheWholeDay) {
    TimelineStrip strip;
    strip.setBlocks({blocks[0]}, models::TimelineSpan{local(0, 0), local(23, 59)});
    strip.resize(1440 / 4 + 4, 28);
    const QImage image = strip.grab().toImage();
    const QColor focused = classificationFill(ActivityClassification::focused, false);
    EXPECT_FALSE(near(image.pixelColor(2 + 60 / 4, image.height() / 2), focused)) << "01:00";
    EXPECT_TRUE(near(image.pixelColor(2 + (9 * 60 + 20) / 4, image.height() / 2), focused))
        << "09:20";
}

}  // namespace
}  // namespace lumenote::ui::design
