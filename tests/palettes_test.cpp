// The two editing palettes: their groups of boxes, what outlives them, their places, and the whole-map operations.
#include "tests/editor_session.h"

namespace {

constexpr uint32_t red = 0xFF0000;

class PalettesTest : public EditorSession {};

// The boxes of the open palette that are on.
std::string BoxesOn()
{
    std::string on;
    for (int item = 201; item <= 217; item++) {
        const DialogItem* box = FindItemByID(TopDialog(), item);
        if (box != nullptr && box->kind == checkBoxItem && box->state == 1) {
            on += (on.empty() ? "" : " ") + std::to_string(item);
        }
    }
    return on;
}

// Clicks on items; what is on after each.
void ClickThrough(const std::vector<std::pair<int, const char*>>& clicks)
{
    for (const auto& [item, on] : clicks) {
        ClickItem(item);
        ThenCheck([clicked = item, wanted = on] { EXPECT_EQ(BoxesOn(), wanted) << "after " << clicked; });
    }
}

TEST_F(PalettesTest, TheFeaturesPalettesBoxesFormTheirGroups)
{
    OpenWith();
    OpenPalette('t');
    ThenCheck([] {
        EXPECT_EQ(BoxesOn(), "201 206 208");
        EXPECT_EQ(currentMap.mapModified, 1);
        EXPECT_TRUE(SizeOf(HeadlessPopup()).h == 300 && SizeOf(HeadlessPopup()).v == 255);
    });
    ClickThrough({{201, "206 208"},
                  {202, "202 206 208"},
                  {205, "205 206 208"},
                  {211, "206 208 211"},
                  {213, "206 208 213"},
                  {215, "206 208 213 215"},
                  {203, "203 206 208 215"},
                  {212, "206 208 212 215"},
                  {212, "206 208 215"},
                  {206, "208 215"},
                  {209, "209 215"},
                  {209, "215"},
                  {210, "210 215"},
                  {210, "215"},
                  {204, "204 215"}});
    ThenCheck([] { EXPECT_TRUE(editing.noGoLevel == 0 && editing.featureTool == roadTool); });
    ClosePalette();
    ThenCheck([] { EXPECT_EQ(editing.featureTool, 0); });
    OpenPalette('t');
    ThenCheck([] { EXPECT_EQ(BoxesOn(), "201") << "the style stays, the tool and Show all NO-GO do not"; });
    ClickThrough({{206, "201 206"}, {207, "201 206 207"}});
    ClosePalette();
    OpenPalette('t');
    ThenCheck([] { EXPECT_EQ(BoxesOn(), "201 206 207"); });
    QuitAndRun();
}

TEST_F(PalettesTest, TheMoveCostPalettesBoxesFormTheirGroups)
{
    OpenWith();
    OpenPalette('m');
    ThenCheck([] {
        EXPECT_EQ(BoxesOn(), "201 213");
        EXPECT_EQ(currentMap.mapModified, 1);
        EXPECT_TRUE(SizeOf(HeadlessPopup()).h == 285 && SizeOf(HeadlessPopup()).v == 210);
    });
    ClickThrough({{202, "202 208 213"},
                  {206, "206 208 212 213"},
                  {208, "206 212 213"},
                  {206, "212 213"},
                  {206, "206 212 213"},
                  {214, "206 212 214"},
                  {214, "206 212 214"},
                  {215, "206 212 215"},
                  {207, "206 207 212 215"},
                  {201, "201 207 212 215"},
                  {201, "207 212 215"}});
    ThenCheck([] { EXPECT_EQ(editing.moveCostTool, -1); });
    ClosePalette();
    OpenPalette('m');
    ThenCheck([] { EXPECT_EQ(BoxesOn(), "201 207 212 215"); });
    QuitAndRun();
}

TEST_F(PalettesTest, APaletteReopensWhereItWasLeftAndClosesInFiveWays)
{
    const auto expectPlace = [](int left, int top) {
        ThenCheck([=] {
            ASSERT_NE(HeadlessPopup(), nullptr);
            EXPECT_TRUE(HeadlessPopup()->client.left == left && HeadlessPopup()->client.top == top);
        });
    };
    const auto expectClosed = [] {
        ThenCheck([] {
            EXPECT_EQ(HeadlessPopup(), nullptr);
            ExpectArt("after the palette");
        });
    };
    OpenWith();
    ScriptControl('t');
    expectPlace(25, 50);
    ScriptControl('w');
    expectClosed();
    OpenPalette('t', 0, 700, 300);
    expectPlace(700, 300);
    ThenCheck([] { ScriptPressAndRelease(TopDialog(), {9, 12}, {9, 12}); }); // the box on the left
    expectClosed();
    ScriptMenu(202);
    expectPlace(700, 300);
    ThenCheck([] { ScriptPressAndRelease(TopDialog(), {9, 272}, {9, 272}); }); // and on the right
    expectClosed();
    OpenPalette('m', 0, 30, 500);
    ScriptKey(VK_ESCAPE);
    ScriptControl('t');
    expectPlace(30, 500);
    ScriptKey(VK_ESCAPE);
    expectClosed();
    OpenPalette('t', 0, 30, 500);
    ThenCheck([] { SendMessageA(TopDialog()->window, WM_CLOSE, 0, 0); }); // as the desktop asks it to
    expectClosed();
    QuitAndRun();
}

TEST_F(PalettesTest, OnePaletteIsOpenAtATimeAndTheMapStaysAlive)
{
    OpenWith();
    for (const char palette : {'t', 'm'}) {
        OpenPalette(palette);
        ThenCheck([] {
            for (const int command : {104, 106, 301, 302, 303, 304, 305, 401}) {
                EXPECT_TRUE(IsCommandEnabled(command)) << command;
            }
            for (const int command : {101, 102, 201, 202, 203, 204, 205, 402}) {
                EXPECT_FALSE(IsCommandEnabled(command)) << command;
            }
        });
        ScriptControl('t');
        ScriptControl('m');
        ScriptControl('o');
        ScriptMenu(201);
        ScriptKey(VK_F9);
        ScriptMove(palette == 't' ? 104 : 114, 146);
        ThenCheck([=] {
            EXPECT_EQ(headless.windows.size(), 2u);
            EXPECT_EQ(TextsOf(TopDialog()).substr(0, 7), palette == 't' ? "Primary" : "Create:");
            EXPECT_STREQ(view.statusText, palette == 't' ? "UTM 009029 E0  Clear" : "UTM 010029 E0  Clear")
                << "the read-out follows the pointer";
            ScriptKey(VK_F9);
        });
        ClosePalette();
    }
    QuitAndRun();
    EXPECT_EQ(headless.fileDialogs.size(), 1u);
}

TEST_F(PalettesTest, AQuestionComesBackToTheTopAndNoKeyAnswersItUnseen)
{
    for (const bool underPalette : {true, false}) {
        OpenWith();
        if (underPalette) {
            OpenPalette('t', 0, 490, 420);
        } else {
            ScriptMenu(204);
        }
        WindowPtr other = nullptr;
        WindowPtr question = nullptr;
        const auto pressOther = [&] { ThenCheck([&] { ScriptPressAndRelease(other, {95, 3}, {95, 3}); }); };
        const auto expectOnTop = [](WindowPtr& wanted, const char* when) {
            ThenCheck([=, &wanted] {
                EXPECT_EQ(TopDialog(), wanted) << when;
                EXPECT_EQ(HeadlessPopup()->token, wanted->window) << when;
            });
        };
        ThenCheck([&] { other = TopDialog(); });
        ScriptControl('s');
        ThenCheck([&] { question = TopDialog(); });
        pressOther();
        expectOnTop(question, "raised again");
        ThenCheck([] { headless.refusesRaises = 1; });
        pressOther();
        ScriptKey(VK_RETURN);
        expectOnTop(other, "the window manager leaves it there");
        ThenCheck([] { headless.refusesRaises = 0; });
        expectOnTop(question, "raised at last");
        ThenCheck([] { headless.covered = 1; });
        ScriptKey(VK_RETURN);
        ThenCheck([this] {
            EXPECT_EQ(headless.covered, 0) << "a key brings it up";
            EXPECT_FALSE(Exists("Map101c.dat_old")) << "and does not answer it";
        });
        ScriptKey(VK_RETURN);
        ThenCheck([this] {
            EXPECT_TRUE(Exists("Map101c.dat_old")) << "the next one does";
            if (shell.featuresPaletteOpen == 0) {
                ScriptButton("Cancel");
            }
        });
        QuitAndRun();
        EXPECT_EQ(remove("Map101c.dat_old"), 0);
    }
}

// ---- overlays ----

// Whether the mark, the art or neither is shown in the middle of the cell's left edge.
char Shown(int x, int y, uint32_t mark)
{
    const uint32_t seen = SeenAt(10 * x, 10 * y + 5);
    return seen == mark ? '#' : seen == ArtColour(10 * x, 10 * y + 5) ? '.' : '?';
}

TEST_F(PalettesTest, CodesWithoutAMeaningAreNeverMarked)
{
    OpenWith([](MapFile* map) {
        for (int code = 0; code < 32; code++) {
            map->Cell(code, 10) = static_cast<uint16_t>(code << 11);
        }
        for (int level = 0; level < 8; level++) {
            map->Cell(level, 20) = static_cast<uint16_t>(level << 8);
        }
    });
    OpenPalette('m');
    for (int item = 207; item <= 212; item++) {
        ClickItem(item);
    }
    ThenCheck([] {
        const uint32_t marks[] = {0xDDDDDD, 0xBBBBBB, 0x808080, 0x555555, 0, 0x1000000, 0x0000FF};
        for (int code = 0; code < 32; code++) {
            const bool isMarked = code < 7 && code != 5;
            EXPECT_EQ(Shown(code, 10, isMarked ? marks[code] : 0x1000000), isMarked ? '#' : '.') << code;
        }
    });
    ClickItem(201);
    ThenCheck([] { ExpectArt("without a tool, whatever is to be shown"); });
    ClosePalette();

    OpenPalette('t', 201);
    ThenCheck([] { ExpectArt("without a feature tool"); });
    const auto expectLevels = [](uint32_t mark, const char* levels) {
        ThenCheck([=] {
            std::string shown;
            for (int level = 0; level < 8; level++) {
                shown += Shown(level, 20, mark);
            }
            EXPECT_EQ(shown, levels);
        });
    };
    ClickItem(212);
    expectLevels(0, "..#.....");
    ClickItem(215);
    expectLevels(0, ".##.#...");
    ClickItem(206);
    expectLevels(red, ".#######");
    ClickItem(215);
    expectLevels(red, "..#.....");
    QuitAndRun();
}

TEST_F(PalettesTest, PartlyVisibleCellsAreMarkedForMoveCostsOnly)
{
    HeadlessReset(640, 480); // 616 x 396 pixels of the map are in view
    MapFile map(101, 900, 700);
    map.cells.assign(map.cells.size(), 0x1040);
    WriteMap(map);
    OpenMap();
    OpenPalette('t', 202, 40, 300);
    ThenCheck([] {
        EXPECT_EQ(SeenAt(609, 200), red);
        EXPECT_EQ(SeenAt(610, 200), ArtColour(610, 200));
        EXPECT_EQ(SeenAt(500, 389), red);
        EXPECT_EQ(SeenAt(500, 390), ArtColour(500, 390));
    });
    ClosePalette();
    OpenPalette('m', 203, 40, 300);
    ThenCheck([] {
        EXPECT_EQ(SeenAt(615, 200), 0x808080u);
        EXPECT_NE(SeenAt(616, 200), 0x808080u);
        EXPECT_EQ(SeenAt(500, 395), 0x808080u);
        EXPECT_NE(SeenAt(500, 396), 0x808080u);
    });
    ScriptWheel(-120);
    ScriptKey(VK_RIGHT);
    ThenCheck([] {
        EXPECT_EQ(view.viewRect.top, 80);
        EXPECT_EQ(view.viewRect.left, 128);
        EXPECT_EQ(SeenAt(128, 100), 0x808080u) << "the partly visible first column";
        EXPECT_EQ(SeenAt(743, 100), 0x808080u);
    });
    QuitAndRun();
}

// ---- the whole map ----

TEST_F(PalettesTest, WholeMapOperationsAskFirst)
{
    const char before[] = "0,0=3FFF 1,0=1748 2,0=0040 3,0=0880 4,0=1880 5,0=0020 6,0=3040 59,39=2880";
    const std::string remove = "Do you really want to remove all terrain features?All terrain features will be "
                               "removed.Move costs will not be changed.";
    const std::string zero = "Do you really want to zero all move costs?All move costs will be set to zero.Terrain "
                             "features will not be removed.";
    const std::string slow = "Do you really want to set all woods or town cells to a movecost of Rough2 ?";
    const struct {
        char palette;
        int item;
        const char* answer;
        std::string question;
        const char* cells;
        int beeps;
    } rows[] = {
        {'t', 214, "No", remove, before, 0},
        {'t', 214, "Yes", remove, "0,0=3800 1,0=1000 3,0=0800 4,0=1800 6,0=3000 59,39=2800", 0},
        {'m', 216, "No", zero, before, 0},
        {'m', 216, "Yes", zero, "0,0=07FF 1,0=0748 2,0=0040 3,0=0080 4,0=0080 5,0=0020 6,0=0040 59,39=0080", 0},
        {'m', 217, "No", slow, before, 0},
        {'m', 217, "Yes", slow, "0,0=3FFF 1,0=1748 2,0=1040 3,0=1080 4,0=1880 5,0=0020 6,0=3040 59,39=2880", 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.question + row.answer);
        OpenWith([](MapFile* map) {
            const uint16_t words[] = {0x3FFF, 0x1748, 0x0040, 0x0880, 0x1880, 0x0020, 0x3040};
            for (int x = 0; x < 7; x++) {
                map->Cell(x, 0) = words[x];
            }
            map->Cell(59, 39) = 0x2880;
        });
        OpenPalette(row.palette, row.palette == 't' ? 202 : 206);
        if (row.palette == 'm') {
            ClickItem(209);
        }
        ThenCheck([] { headless.beeps = 0; });
        WindowPtr palette = nullptr;
        ThenCheck([&] { palette = TopDialog(); });
        ClickItem(row.item);
        ThenCheck([&] { ScriptPressAndRelease(palette, {9, 12}, {9, 12}); }); // its close box answers nothing
        ExpectMessage(row.question, row.answer);
        ThenCheck([&] {
            EXPECT_EQ(MarkedCells(), row.cells);
            EXPECT_EQ(headless.beeps, row.beeps);
            if (row.palette == 't') {
                EXPECT_EQ(SeenAt(25, 5), CellWord(2, 0) & cellWoods ? red : ArtColour(25, 5));
            } else {
                EXPECT_EQ(SeenAt(25, 5), CellWord(2, 0) >> 11 == 2 ? 0x808080 : ArtColour(25, 5));
                EXPECT_EQ(SeenAt(65, 5), CellWord(6, 0) >> 11 == 6 ? 0x0000FF : ArtColour(65, 5));
            }
            EXPECT_TRUE(IsCommandEnabled(104)) << "the menus are back";
            EXPECT_FALSE(IsCommandEnabled(201));
        });
        QuitAndRun();
    }
}

} // namespace
