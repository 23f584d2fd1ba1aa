// Strokes and selections in the map window: which cells change, and what the user sees of it.
#include "tests/editor_session.h"

#include <algorithm>

namespace {

constexpr uint32_t red = 0xFF0000;

class PaintingTest : public EditorSession {
  protected:
    // One session: the map, the palette with the tool, the steps, the cells that are not 0 afterwards.
    void ExpectCells(char palette, int tool, const std::function<void(MapFile*)>& fill,
                     const std::function<void()>& steps, const std::string& cells, const char* what)
    {
        SCOPED_TRACE(what);
        OpenWith(fill);
        OpenPalette(palette, tool);
        if (tool == 201) {
            ClickItem(tool); // it was on from the start
        }
        steps();
        ThenCheck([=] { EXPECT_EQ(MarkedCells(), cells); });
        QuitAndRun();
    }
};

// ---- cells ----

TEST_F(PaintingTest, TheFirstCellDecidesWhetherAStrokeSetsOrClears)
{
    const struct {
        char palette;
        int tool;
        uint16_t before[3]; // of the cells 10 to 12 of row 10
        const char* after;
    } rows[] = {
        {'t', 201, {0, 0xFFF7, 8}, "10,10=0008 11,10=FFFF 12,10=0008"},
        {'t', 201, {0xFFFF, 0, 8}, "10,10=FFF7"},
        {'t', 202, {0, 0x1140, 0}, "10,10=0040 11,10=1140 12,10=0040"},
        {'t', 202, {0x40, 0x1140, 0x80}, "11,10=1100 12,10=0080"},
        {'t', 203, {0x40, 0x80, 0}, "10,10=00C0 11,10=0080 12,10=0080"},
        {'t', 203, {0xC0, 0x80, 1}, "10,10=0040 12,10=0001"},
        {'t', 204, {0xFFDF, 0, 0x20}, "10,10=FFFF 11,10=0020 12,10=0020"},
        {'t', 204, {0xFFFF, 0, 0x20}, "10,10=FFDF"},
        {'t', 205, {0xFFFD, 2, 0}, "10,10=FFFF 11,10=0002 12,10=0002"},
        {'t', 205, {2, 0xFFFF, 0}, "11,10=FFFD"},
        {'t', 211, {0x0200, 0x0700, 0xF8FF}, "10,10=0100 11,10=0100 12,10=F9FF"},
        {'t', 212, {0x0100, 0, 0x0400}, "10,10=0200 11,10=0200 12,10=0200"},
        {'t', 212, {0xFAFF, 0x0100, 0x0400}, "10,10=F8FF"},
        {'t', 213, {0x0340, 0x0100, 0x0400}, "10,10=0440 11,10=0400 12,10=0400"},
        {'t', 213, {0x0440, 0x0100, 0x0740}, "10,10=0040 12,10=0040"},
        {'m', 201, {0x1007, 0x30FF, 0xFFFF}, "10,10=0007 11,10=00FF 12,10=07FF"},
        {'m', 201, {0x0001, 0x3001, 0xF801}, "10,10=0001 11,10=0001 12,10=0001"},
        {'m', 202, {0, 0x2840, 0x1000}, "10,10=0800 11,10=0840 12,10=0800"},
        {'m', 203, {0x17FF, 0x2040, 0}, "10,10=07FF 11,10=0040"},
        {'m', 204, {0x07FF, 0x1800, 0}, "10,10=1FFF 11,10=1800 12,10=1800"},
        {'m', 205, {0, 0, 0xF840}, "10,10=2000 11,10=2000 12,10=2040"},
        {'m', 206, {0x2800, 0, 0xF840}, "10,10=3000 11,10=3000 12,10=3040"},
        {'m', 206, {0x3040, 0x0840, 0}, "10,10=0040 11,10=0040"},
    };
    const auto stroke = [] { DragOnMap({{105, 105}, {115, 105}, {125, 105}, {115, 105}, {105, 105}}); };
    for (const auto& row : rows) {
        const auto fill = [&](MapFile* map) {
            for (int i = 0; i < 3; i++) {
                map->Cell(10 + i, 10) = row.before[i];
            }
        };
        ExpectCells(row.palette, row.tool, fill, stroke, row.after,
                    (std::to_string(row.tool) + " gives " + row.after).c_str());
    }
}

TEST_F(PaintingTest, ModifiersCountOnlyAlone)
{
    // Right by a pixel and far down; straight down; and so to the left and up.
    const std::vector<MapPoint> rightwards = {{105, 105}, {106, 108}, {117, 135}, {128, 155}};
    const std::vector<MapPoint> downwards = {{105, 105}, {105, 112}, {135, 125}};
    const std::vector<MapPoint> leftwards = {{105, 105}, {104, 90}, {95, 55}, {85, 205}};
    const std::vector<MapPoint> upwards = {{105, 105}, {105, 103}, {125, 95}, {5, 85}};
    const struct {
        const char* what;
        std::vector<int> keys;
        std::vector<MapPoint> points;
        const char* cells;
    } rows[] = {
        {"Shift to the right", {VK_SHIFT}, rightwards, "10,10=0040 11,10=0040 12,10=0040"},
        {"Shift down", {VK_SHIFT}, downwards, "10,10=0040 10,11=0040 10,12=0040"},
        {"Shift to the left", {VK_SHIFT}, leftwards, "8,10=0040 9,10=0040 10,10=0040"},
        {"Shift up", {VK_SHIFT}, upwards, "10,8=0040 10,9=0040 10,10=0040"},
        {"no key", {}, downwards, "10,10=0040 10,11=0040 13,12=0040"},
        {"Shift and Alt", {VK_SHIFT, VK_MENU}, downwards, "10,10=0040 10,11=0040 13,12=0040"},
        {"Shift and Control", {VK_SHIFT, VK_CONTROL}, downwards, "10,10=0040 10,11=0040 13,12=0040"},
        {"Alt and Control", {VK_MENU, VK_CONTROL}, downwards, "10,10=0040 10,11=0040 13,12=0040"},
    };
    for (const auto& row : rows) {
        const auto steps = [&] {
            for (const int key : row.keys) {
                ScriptKeyDown(key);
            }
            DragOnMap(row.points);
            for (const int key : row.keys) {
                ScriptKeyUp(key);
            }
        };
        ExpectCells('t', 202, nullptr, steps, row.cells, row.what);
    }
}

TEST_F(PaintingTest, PointsOutsideTheMapBelongToNoCell)
{
    const auto wooded = [](MapFile* map) { map->Cell(0, 5) = 0x40; };
    const struct {
        const char* what;
        std::vector<MapPoint> points;
        const char* cells; // 0,5 was wooded
    } rows[] = {
        {"left of it", {{15, 35}, {-1, 35}, {-9, 75}, {-4, 95}}, "1,3=0040 0,5=0040"},
        {"above it", {{15, 15}, {25, -1}, {35, -9}}, "1,1=0040 0,5=0040"},
        {"right and below", {{595, 395}, {600, 395}, {605, 385}, {595, 400}, {585, 409}}, "0,5=0040 59,39=0040"},
        {"a start in the status strip", {{105, 425}, {5, 55}, {15, 55}}, ""},
        {"a start in the strip over clear cells", {{105, 425}, {15, 45}, {5, 55}}, "1,4=0040 0,5=0040"},
        {"never inside", {{105, 425}, {-5, 55}, {-5, -5}}, "0,5=0040"},
    };
    for (const auto& row : rows) {
        ExpectCells(
            't', 202, wooded, [&] { DragOnMap(row.points); }, row.cells, row.what);
    }
}

TEST_F(PaintingTest, AFastFlickLeavesNoReportedPlaceOut)
{
    std::string cells;
    for (int cell = 0; cell < 40 * 20; cell++) {
        cells += (cells.empty() ? "" : " ") + std::to_string(10 + cell % 40) + "," + std::to_string(10 + cell / 40) +
                 "=0040";
    }
    const auto flick = [] {
        std::vector<MapPoint> points;
        for (int i = 0; i < 40 * 20; i++) { // to and fro, row by row
            const int column = i / 40 % 2 == 0 ? i % 40 : 39 - i % 40;
            points.push_back({105 + 10 * column, 105 + 10 * (i / 40)});
        }
        DragOnMap(points, 0);
    };
    ExpectCells('t', 202, nullptr, flick, cells, "800 places at one time");
    const auto rightPress = [] {
        ThenCheck([] {
            const ScriptPoint place = OnScreenOfMap(105, 105);
            ScriptPress(place.x, place.y, hostRightButton);
            ScriptMove(place.x + 50, place.y);
            ScriptRelease();
        });
    };
    ExpectCells('t', 202, nullptr, rightPress, "10,10=0040", "a press of the right button paints one cell");
}

TEST_F(PaintingTest, PressesElsewhereAreTakenBeforeTheTool)
{
    OpenWith();
    OpenPalette('t', 202);
    DragOnMap({{600 + 16 - 5, 434 - 5}, {500, 380}}); // the grow box
    ThenCheck([] {
        EXPECT_EQ(SizeOf(HeadlessFrame()).h, 500);
        EXPECT_EQ(MarkedCells(), "");
    });
    PressKeyWith(VK_MENU, [] { ClickOnMap(200, 5); }); // the move strip
    ThenCheck([] {
        EXPECT_STREQ(view.statusText, MessageText(10039).c_str());
        ScriptKey(VK_SPACE);
    });
    ThenCheck([] { EXPECT_STREQ(view.statusText, ""); });
    PressKeyWith(VK_SHIFT, [] { ClickOnMap(205, 5); }); // not with Shift
    ThenCheck([] { EXPECT_EQ(MarkedCells(), "20,0=0040"); });
    ClickItem(202);
    ClickOnMap(300, 300);
    ThenCheck([] {
        EXPECT_EQ(headless.beeps, 1) << "no tool";
        EXPECT_EQ(MarkedCells(), "20,0=0040");
    });
    DragOnMap({{480, 370}, {480, 350}});
    ClosePalette();
    OpenPalette('m', 202);
    ClickItem(202);
    ClickOnMap(300, 300);
    ThenCheck([] {
        EXPECT_EQ(headless.beeps, 3);
        EXPECT_EQ(MarkedCells(), "20,0=0040");
    });
    QuitAndRun();
}

// ---- marks ----

// What the 10 x 10 pixels of a cell show: '#' the mark's colour, '.' the art, '?' anything else.
std::string CellPicture(int x, int y, uint32_t mark)
{
    std::string picture;
    for (int v = 10 * y; v < 10 * y + 10; v++) {
        for (int h = 10 * x; h < 10 * x + 10; h++) {
            const uint32_t seen = SeenAt(h, v);
            picture += seen == mark ? '#' : seen == ArtColour(h, v) ? '.' : '?';
        }
    }
    return picture;
}

const std::string filled(100, '#');
const std::string plain(100, '.');

std::string Square(int first, int last, bool isFilled)
{
    std::string picture;
    for (int v = 0; v < 10; v++) {
        for (int h = 0; h < 10; h++) {
            const bool inside = h >= first && h <= last && v >= first && v <= last;
            const bool edge = h == first || h == last || v == first || v == last;
            picture += inside && (isFilled || edge) ? '#' : '.';
        }
    }
    return picture;
}

TEST_F(PaintingTest, FeatureMarksAreSolidOrOutlinedInTheGridColour)
{
    OpenWith();
    OpenPalette('t', 202);
    ClickOnMap(105, 105);
    ThenCheck([] { EXPECT_EQ(CellPicture(10, 10, red), filled); });
    ClickOnMap(105, 105);
    ThenCheck([] { ExpectArt("after the mark was cleared"); });
    ClickOnMap(105, 105);
    ClickItem(206);
    ThenCheck([] { EXPECT_EQ(CellPicture(10, 10, red), Square(0, 9, false)) << "after a repaint"; });
    ClickOnMap(125, 105);
    ThenCheck([] { EXPECT_EQ(CellPicture(12, 10, red), Square(0, 9, false)) << "at once"; });
    const std::pair<int, uint32_t> rows[] = {
        {207, 0x000000}, {209, 0x7A007A}, {210, 0x00FF00}, {210, 0xFFFFFF}, {208, red}};
    for (const auto& row : rows) {
        ClickItem(row.first);
        ClickOnMap(145, 105);
        ThenCheck([colour = row.second] {
            EXPECT_EQ(CellPicture(10, 10, colour), Square(0, 9, false)) << colour;
            EXPECT_EQ(CellPicture(14, 10, colour), CellWord(14, 10) != 0 ? Square(0, 9, false) : plain);
        });
    }
    ClickItem(206);
    ClickItem(203);
    ThenCheck([] { ExpectArt("with a tool that no cell has"); });
    ClosePalette();
    ThenCheck([] { ExpectArt("with the palette closed"); });
    QuitAndRun();
}

TEST_F(PaintingTest, NoGoMarksAreTilesWithTheirDigit)
{
    OpenWith();
    OpenPalette('t', 211);
    ClickOnMap(105, 105);
    ClickItem(212);
    ClickOnMap(125, 105);
    ClickItem(213);
    ClickOnMap(145, 105);
    ClickItem(215);
    ThenCheck([] {
        const std::string pictures[] = {CellPicture(10, 10, 0), CellPicture(12, 10, 0), CellPicture(14, 10, 0)};
        for (const std::string& picture : pictures) {
            const auto black = std::count(picture.begin(), picture.end(), '#');
            EXPECT_TRUE(black > 70 && black < 97) << black;
            EXPECT_EQ(std::count(picture.begin(), picture.end(), '.'), 0);
            EXPECT_EQ(picture[0], '#');
        }
        EXPECT_TRUE(pictures[0] != pictures[1] && pictures[1] != pictures[2] && pictures[0] != pictures[2]);
    });
    ClickItem(206);
    ThenCheck([] { EXPECT_EQ(CellPicture(10, 10, red), Square(0, 9, false)) << "outlined"; });
    ClickItem(215);
    ThenCheck([] {
        EXPECT_EQ(CellPicture(10, 10, red), plain) << "another level is not shown";
        EXPECT_EQ(CellPicture(14, 10, red), Square(0, 9, false));
    });
    ClickOnMap(105, 105);
    ThenCheck([] { EXPECT_EQ(MarkedCells(), "10,10=0400 12,10=0200 14,10=0400"); });
    QuitAndRun();
}

TEST_F(PaintingTest, MoveCostMarksAreDrawnInTheBrushStyle)
{
    OpenWith();
    OpenPalette('m');
    const std::pair<int, uint32_t> rows[] = {
        {202, 0xBBBBBB}, {203, 0x808080}, {204, 0x555555}, {205, 0x000000}, {206, 0x0000FF}};
    const std::string styles[] = {filled, Square(3, 6, true), Square(0, 9, false)};
    for (int style = 0; style < 3; style++) {
        ClickItem(213 + style);
        for (const auto& row : rows) {
            const int x = row.first - 190;
            const int y = 10 + 2 * style;
            ClickItem(row.first);
            ClickOnMap(10 * x + 5, 10 * y + 5);
            ThenCheck([=] { EXPECT_EQ(CellPicture(x, y, row.second), styles[style]) << x << " style " << style; });
        }
    }
    // A cleared cell shows the Clear colour until the next repaint.
    ClickItem(213);
    ClickOnMap(165, 105); // Water, which it is
    ThenCheck([] { EXPECT_EQ(CellPicture(16, 10, 0xDDDDDD), filled); });
    ScriptMenu(301);
    ThenCheck([] {
        EXPECT_EQ(CellPicture(16, 10, 0xDDDDDD), plain);
        EXPECT_EQ(CellPicture(12, 10, 0xBBBBBB), filled);
    });
    ClosePalette();
    ThenCheck([] { ExpectArt("with the palette closed"); });
    QuitAndRun();
}

TEST_F(PaintingTest, MarksStayInsideTheView)
{
    HeadlessReset(640, 480); // 616 x 396 pixels of the map are in view
    OpenWith(nullptr, 905, 705);
    OpenPalette('t', 202, 40, 300);
    PressKeyWith(VK_SHIFT, [] { DragOnMap({{395, 15}, {500, 15}, {612, 15}, {630, 15}}); });
    ThenCheck([] {
        EXPECT_EQ(CellWord(61, 1), 0x40) << "a cell that is partly in view is painted";
        EXPECT_EQ(SeenAt(615, 15), red);
        EXPECT_NE(SeenAt(616, 15), red) << "not over the bar";
    });
    ScriptMenu(301);
    ThenCheck([] { EXPECT_EQ(SeenAt(612, 15), ArtColour(612, 15)) << "the overlay leaves it out"; });
    ScriptKey(VK_RIGHT);
    ScriptKey(VK_RIGHT);
    ScriptKey(VK_RIGHT);
    for (int i = 0; i < 4; i++) {
        ScriptKey(VK_DOWN);
    }
    PressKeyWith(VK_SHIFT, [] { DragOnMap({{902, 695}, {902, 702}}); });
    ThenCheck([] {
        EXPECT_EQ(view.viewRect.right, 905);
        EXPECT_EQ(view.viewRect.bottom, 705);
        EXPECT_EQ(CellWord(90, 69), 0x40);
        EXPECT_EQ(CellWord(90, 70), 0x40) << "the last, partial cell";
        EXPECT_EQ(SeenAt(903, 695), red);
    });
    QuitAndRun();
}

} // namespace
