// The top-ten table on screen: its lines in columns, the panel under them, the marked row in its
// colour, and the picture outside the panel left alone.

#include "game/arcade/ScoreTableView.h"

#include <cstdlib>
#include <ctime>
#include <utility>

#include "engine/GL.h"
#include "tests/game/scores/ScoreEntries.h"
#include "tests/support/GameSession.h"

using namespace testing_support;

namespace {

class ScoreTableViewTest : public HudScene {
protected:
    void SetUp() override {
        HudScene::SetUp();
        setenv("TZ", "UTC", 1);
        tzset();
    }

    // Clears to mid grey and draws `view` alone.
    static Pixels drawOnGrey(ScoreTableView& view) {
        glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        view.draw();
        return readScreen();
    }
    static bool isYellow(uint32_t c) { return red(c) > 200 && green(c) > 170 && blue(c) < 90; }
    static bool isWhite(uint32_t c) { return red(c) > 200 && green(c) > 200 && blue(c) > 200; }
    static bool isHeading(uint32_t c) { return blue(c) > 200 && green(c) > 150 && red(c) > 100 && red(c) < 190; }
    // The first and the last column of the screen with a pixel that `test` picks in rows [y0, y1).
    static std::pair<int, int> inkColumns(const Pixels& p, int y0, int y1, bool (*test)(uint32_t)) {
        int first = -1, last = -1;
        for (int x = 0; x < p.width; ++x)
            for (int y = y0; y < y1; ++y)
                if (test(p.at(x, y))) {
                    if (first < 0) first = x;
                    last = x;
                    break;
                }
        return {first, last};
    }
    // Pixels of the band of row `row` (0 the heading) that `test` picks.
    static int countInRow(const Pixels& p, const ScoreTableView& view, int row, bool (*test)(uint32_t)) {
        const int top = (int)(view.top() + ScoreTableView::PANEL_MARGIN + ScoreTableView::ROW_STEP * (float)row +
                              (row > 0 ? ScoreTableView::ROW_STEP * 0.25f : 0.0f));
        int n = 0;
        for (int y = top; y < top + (int)ScoreTableView::FONT_SIZE; ++y)
            for (int x = (int)view.left(); x < (int)view.right(); ++x) n += test(p.at(x, y)) ? 1 : 0;
        return n;
    }
};

} // namespace

TEST_F(ScoreTableViewTest, TheHeadingNamesTheColumns) {
    EXPECT_EQ(ScoreTableView::headingLine(), " #  Name              Score  Wave  Date      ");
}

TEST_F(ScoreTableViewTest, ARowHoldsRankNameScoreWaveAndTheDayInColumnsUnderTheHeading) {
    EXPECT_EQ(ScoreTableView::rowLine(0, scoreEntry("Ada", 4200, 5, 1764000123), "Ada"),
              " 1  Ada                4200     5  2025-11-24");
    EXPECT_EQ(ScoreTableView::rowLine(9, scoreEntry("abcdefghijkl", 4294967295u, 9999, 0), "abcdefghijkl"),
              "10  abcdefghijkl  4294967295  9999  1970-01-01");
    // The name shown may differ from the entry's: the one being typed.
    EXPECT_EQ(ScoreTableView::rowLine(2, scoreEntry("Ada", 7, 1, 1764000123), "Bo_"),
              " 3  Bo_                   7     1  2025-11-24");
}

TEST_F(ScoreTableViewTest, ThePanelDarkensItsRectangleAndNothingOutside) {
    ScoreTableView view(372.0f);
    EXPECT_EQ(view.top(), 360.0f);
    EXPECT_EQ(view.bottom(), 372.0f + 24.0f * 11.25f + 12.0f);
    // 45 characters of 10 pixels, centred.
    EXPECT_EQ(view.left(), 415.0f - 12.0f);
    EXPECT_EQ(view.right(), 415.0f + 450.0f + 12.0f);
    const Pixels p = drawOnGrey(view);
    // Grey 0.5 under black at 0.85: 0.075 of full, 19 of 255.
    const uint32_t inside = p.at(404, 361);
    EXPECT_NEAR(red(inside), 19, 1);
    EXPECT_EQ(red(inside), green(inside));
    EXPECT_EQ(red(inside), blue(inside));
    const int outside[][2] = {{402, 400}, {877, 400}, {640, 359}, {640, 654}};
    for (const auto& xy : outside) EXPECT_NEAR(red(p.at(xy[0], xy[1])), 128, 1) << xy[0] << "," << xy[1];
}

TEST_F(ScoreTableViewTest, EveryLineStartsAtThePanelsLeftMarginAndEndsWithinIt) {
    ScoreTable table;
    table.add(scoreEntry("abcdefghijkl", 4294967295u, 9999, 1764000123));
    table.add(scoreEntry("b", 1, 1, 1764000123));
    ScoreTableView view(372.0f);
    view.show(table, 0);
    const Pixels p = drawOnGrey(view);
    // Lines start at 415 with 10-pixel characters: each line's first ink is its second character
    // (" #", " 1", " 2"), its last the date's last digit. Glyph ink runs up to two pixels past its
    // cell on either side, still inside the panel.
    const std::pair<int, int> lines[] = {inkColumns(p, 372, 392, isHeading), inkColumns(p, 402, 422, isYellow),
                                         inkColumns(p, 426, 446, isWhite)};
    for (int i = 0; i < 3; ++i) {
        EXPECT_GE(lines[i].first, 423) << i;
        EXPECT_LT(lines[i].first, 437) << i;
        if (i > 0) {
            EXPECT_GE(lines[i].second, 853) << i;
        }
        EXPECT_LT(lines[i].second, (int)view.right()) << i;
    }
}

TEST_F(ScoreTableViewTest, TheMarkedRowIsYellowTheOthersWhiteAndEmptyRowsBlank) {
    ScoreTable table;
    table.add(scoreEntry("first", 900, 4, 1764000123));
    table.add(scoreEntry("second", 500, 3, 1764000123));
    table.add(scoreEntry("third", 100, 1, 1764000123));
    ScoreTableView view(372.0f);
    view.show(table, 1);
    const Pixels p = drawOnGrey(view);
    EXPECT_EQ(countInRow(p, view, 1, isYellow), 0);
    EXPECT_GT(countInRow(p, view, 1, isWhite), 100);
    EXPECT_GT(countInRow(p, view, 2, isYellow), 100);
    EXPECT_EQ(countInRow(p, view, 2, isWhite), 0);
    EXPECT_GT(countInRow(p, view, 3, isWhite), 100);
    for (int row = 4; row <= 10; ++row) {
        EXPECT_EQ(countInRow(p, view, row, isWhite), 0) << row;
        EXPECT_EQ(countInRow(p, view, row, isYellow), 0) << row;
    }
}

TEST_F(ScoreTableViewTest, AShorterTableShownLaterBlanksTheRowsItNoLongerHas) {
    ScoreTable full, one;
    for (uint32_t i = 1; i <= 10; ++i) full.add(scoreEntry("p" + std::to_string(i), i * 10, 1, 0));
    one.add(scoreEntry("solo", 5, 1, 0));
    ScoreTableView view(372.0f);
    view.show(full, -1);
    view.show(one, 0);
    const Pixels p = drawOnGrey(view);
    EXPECT_GT(countInRow(p, view, 1, isYellow), 100);
    for (int row = 2; row <= 10; ++row) EXPECT_EQ(countInRow(p, view, row, isWhite), 0) << row;
}
