// Selecting an area with the band: its cells, the question, and that no trace of either stays.
#include "platform/kernel/test_hooks.h"
#include "tests/editor_session.h"

#include <algorithm>

namespace {

typedef EditorSession AreaFillTest;

// Which cells carry the word, as "left,top-right,bottom" of a full block; otherwise all of them.
std::string Block(uint16_t word)
{
    int left = 1000;
    int top = 1000;
    int right = -1;
    int bottom = -1;
    int count = 0;
    for (int y = 0; y < currentMap.record.rowCount; y++) {
        for (int x = 0; x < currentMap.record.columnCount; x++) {
            if (CellWord(x, y) == word) {
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x);
                bottom = std::max(bottom, y);
                count++;
            }
        }
    }
    if (count == 0) {
        return "";
    }
    if (count != (right - left + 1) * (bottom - top + 1)) {
        return MarkedCells();
    }
    return std::to_string(left) + "," + std::to_string(top) + "-" + std::to_string(right) + "," +
           std::to_string(bottom);
}

TEST_F(AreaFillTest, ABandSelectsTheCellsWhoseFarEdgesItCovers)
{
    const struct {
        std::vector<MapPoint> points;
        const char* cells;
    } rows[] = {
        {{{15, 15}, {44, 33}}, "1,1-3,2"},
        {{{15, 15}, {49, 39}}, "1,1-4,3"},
        {{{49, 39}, {15, 15}}, "1,1-4,3"},
        {{{15, 39}, {300, 300}, {49, 15}}, "1,1-4,3"},
        {{{55, 55}}, ""},
        {{{52, 52}, {58, 58}}, ""},
        {{{0, 10}, {9, 19}}, "0,1-0,1"},
        {{{305, 205}, {700, 500}}, "30,20-59,39"},
        {{{105, 105}, {-50, -30}}, "0,0-9,9"},
    };
    OpenWith();
    for (const char palette : {'t', 'm'}) {
        OpenPalette(palette, 202);
        for (const auto& row : rows) {
            AltDragOnMap(row.points);
            ThenCheck([=] { EXPECT_EQ(SizeOf(HeadlessPopup()).h, palette == 't' ? 190 : 130); });
            ClickButton("Fill");
            ThenCheck([=, &row] {
                EXPECT_EQ(Block(palette == 't' ? 0x40 : 0x800), row.cells) << palette;
                EXPECT_EQ(editing.selectionRect.right, 0);
                ClearAllCells();
            });
        }
        ClosePalette();
    }
    QuitAndRun();
}

TEST_F(AreaFillTest, AnswersSetClearOrLeave)
{
    const auto fill = [](MapFile* map) {
        map->Cell(2, 2) = 0x1740;
        map->Cell(3, 2) = 0xFFFF;
        map->Cell(9, 9) = 0x0100;
    };
    const struct {
        char palette;
        int tool;
        const char* answer;
        const char* cells; // 2,2 to 4,2 are selected
    } rows[] = {
        {'t', 202, "Fill", "2,2=1740 3,2=FFFF 4,2=0040 9,9=0100"},
        {'t', 202, "Erase", "2,2=1700 3,2=FFBF 9,9=0100"},
        {'t', 202, "Cancel", "2,2=1740 3,2=FFFF 9,9=0100"},
        {'t', 212, "Fill", "2,2=1240 3,2=FAFF 4,2=0200 9,9=0100"},
        {'t', 212, "Erase", "2,2=1040 3,2=F8FF 9,9=0100"},
        {'m', 206, "Fill", "2,2=3740 3,2=37FF 4,2=3000 9,9=0100"},
        {'m', 202, "Fill", "2,2=0F40 3,2=0FFF 4,2=0800 9,9=0100"},
        {'m', 206, "Cancel", "2,2=1740 3,2=FFFF 9,9=0100"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.tool) + row.answer);
        OpenWith(fill);
        OpenPalette(row.palette, row.tool);
        AltDragOnMap({{20, 20}, {49, 29}});
        ClickButton(row.answer);
        ThenCheck([=] { EXPECT_EQ(MarkedCells(), row.cells); });
        QuitAndRun();
    }
}

TEST_F(AreaFillTest, TheQuestionHangsFromTheSelectionAndStaysOnTheScreen)
{
    const struct {
        std::vector<MapPoint> points;
        int left; // of a question of 190 x 40, on the screen
        int top;
    } rows[] = {
        {{{315, 115}, {449, 249}}, 4 + 450 - 190, 46 + 250},
        {{{15, 115}, {49, 249}}, 0, 46 + 250},          // would begin left of the screen
        {{{315, 115}, {449, 399}}, 4 + 450 - 190, 440}, // would end below it
        {{{5, 300}, {29, 399}}, 0, 440},
    };
    HeadlessReset(640, 480);
    OpenWith();
    OpenPalette('t', 202, 335, 222); // clear of the presses
    const auto expectAt = [](int left, int top) {
        ASSERT_NE(HeadlessPopup(), nullptr);
        EXPECT_TRUE(HeadlessPopup()->client.left == left && HeadlessPopup()->client.top == top);
        EXPECT_EQ(std::count_if(headless.windows.begin(), headless.windows.end(),
                                [](const HeadlessWindow* window) { return window->visible; }),
                  2)
            << "the palette or the question";
    };
    for (const auto& row : rows) {
        ScriptWait(20);
        AltDragOnMap(row.points);
        ThenCheck([=, &row] { expectAt(row.left, row.top); });
        ClickButton("Cancel");
        ThenCheck([=] { expectAt(335, 222); });
    }
    ScriptMoveFrame(100, 0); // the pointer goes on beside the screen, as it does where there is a second one
    AltDragOnMap({{315, 115}, {599, 249}});
    ThenCheck([=] { expectAt(640 - 190, 46 + 250); });
    ClickButton("Cancel");
    QuitAndRun();
}

TEST_F(AreaFillTest, NoTraceOfTheBandStays)
{
    const auto fill = [](MapFile* map) {
        for (int x = 0; x < 60; x++) {
            map->Cell(x, 12) = 0x40;
        }
    };
    // With the palette away from the band and over it.
    for (const int left : {700, 30}) {
        SCOPED_TRACE(left);
        OpenWith(fill);
        OpenPalette('t', 202, left, 100);
        KeepScreen();
        for (const std::vector<MapPoint>& points :
             {std::vector<MapPoint>{{345, 95}, {420, 300}, {599, 399}}, {{355, 311}}, {{340, 320}, {-20, 450}}}) {
            AltDragOnMap(points);
            ThenCheck([this] {
                EXPECT_NE(Difference(keptScreen, Screen()), "");
                ScriptMenu(301); // a repaint under the question, which must not leave half a band
            });
            ClickButton("Cancel");
            ScriptMove(640, 512);
            ExpectKeptScreen("after Cancel");
        }
        AltDragOnMap({{345, 95}, {599, 399}});
        ClickButton("Fill");
        ThenCheck([] { EXPECT_EQ(Block(0x40), MarkedCells()); });
        AltDragOnMap({{345, 95}, {599, 399}});
        ClickButton("Erase");
        AltDragOnMap({{340, 120}, {599, 129}});
        ClickButton("Fill");
        ScriptMove(640, 512);
        ExpectKeptScreen("filled, erased and filled again");
        ClosePalette();
        ThenCheck([] { ExpectArt("with the palette closed"); });
        QuitAndRun();
    }
}

// Its buttons are told apart by their numbers: where one is missing, the next would answer for it.
TEST_F(AreaFillTest, AQuestionWithoutAllItsButtonsIsNotAsked)
{
    OpenWith();
    OpenPalette('t', 202);
    for (const int successes : {0, 1, 2, 3}) { // the dialog, then its buttons
        ThenCheck([=] { FailAllocationAfter(successes); });
        AltDragOnMap({{105, 55}, {200, 100}});
        ThenCheck([=] { EXPECT_EQ(SizeOf(HeadlessPopup()).h, 300) << "the palette, " << successes; });
    }
    AltDragOnMap({{105, 55}, {200, 100}});
    ClickButton("Cancel");
    QuitAndRun();
}

TEST_F(AreaFillTest, OnlyCellsThatAreWhollyInViewAreFilled)
{
    HeadlessReset(640, 480); // 616 x 396 pixels of the map are in view
    WriteMap(MapFile(101, 900, 700));
    OpenMap();
    OpenPalette('m', 203, 40, 300);
    ScriptKey(VK_RIGHT); // the view begins at 128, 80
    ScriptKey(VK_DOWN);
    AltDragOnMap({{500, 200}, {800, 300}});
    ClickButton("Fill");
    ThenCheck([] { EXPECT_EQ(Block(0x1000), "50,20-73,29") << "the band ends at 801, the view at 744"; });
    QuitAndRun();
}

} // namespace
