// What the View menu adds to the map: read-out, UTM grid, terrain analysis; and that all of it goes away whole.
#include "app/map_views.h"
#include "tests/editor_session.h"

namespace {

constexpr uint32_t labelYellow = 0xFFFF66;

class ViewsTest : public EditorSession {
  protected:
    std::vector<uint32_t> before;
};

void PointAt(int h, int v)
{
    ScriptCall([=] {
        const ScriptPoint place = OnScreenOfMap(h, v);
        ScriptMove(place.x, place.y);
    });
}

// ---- read-out ----

TEST_F(ViewsTest, GridReferencesCountFromTheBottomLeftCorner)
{
    OpenWith([](MapFile* map) {
        map->words[eastingWord] = 98;
        map->words[northingWord] = 42;
    });
    ThenCheck([] {
        struct Row {
            int h;
            int v;
            const char* reference;
        };
        const Row rows[] = {
            {10, 390, "980420"},  {19, 390, "980420"},  {20, 389, "981420"},  {109, 291, "989429"},
            {110, 290, "990430"}, {210, 190, "000440"}, {310, 290, "010430"}, {599, 0, "038459"},
            {9, 390, "980420"},   {1, 390, "980420"},   {0, 390, "98-1420"},  {10, 391, "980420"},
            {10, 399, "980420"},  {589, 10, "037458"},  {10, 400, "98042-1"},
        };
        for (const Row& row : rows) {
            char reference[256];
            FormatGridReference(reference, row.h, row.v);
            EXPECT_STREQ(reference, row.reference) << row.h << "," << row.v;
        }
    });
    Quit();
    Run();
}

TEST_F(ViewsTest, TheReadOutTellsTheTerrainUnderThePointer)
{
    struct Row {
        uint16_t word;
        const char* text; // behind the reference
    };
    const Row rows[] = {
        {0x0000, " E0  Clear"},
        {0x1140, " E0  Woods Rough2 Impassable to wheeled vehicles"},
        {0x0008, " E1  Clear"},
        {0x00E8, " E1  Road Woods Town Clear"},
        {0x2800, " E0 "},
        {0xF800, " E0 "},
        {0x3200, " E0  Water Impassable to wheeled and tracked vehicles"},
        {0x0C00, " E0  Rough1 Impassable to all ground units"},
        {0x1F00, " E0  Rough3 Impassable to wheeled vehicles"},
        {0x2017, " E0  Rough4"},
        {0x3CE8, " E1  Road Woods Town Impassable to all ground units"},
    };
    OpenWith([&](MapFile* map) {
        for (size_t i = 0; i < std::size(rows); i++) {
            map->Cell(static_cast<int>(i) + 2, 20) = rows[i].word;
        }
        map->words[eastingWord] = 7;
        map->words[northingWord] = 42;
    });
    PointAt(10, 390);
    ScriptMenu(305);
    ThenCheck([] {
        EXPECT_STREQ(view.statusText, "UTM 070420 E0  Clear");
        EXPECT_TRUE(IsCommandChecked(305));
        EXPECT_EQ(headless.sounds.size(), 1u);
    });
    for (size_t i = 0; i < std::size(rows); i++) {
        PointAt(static_cast<int>(i) * 10 + 25, 205);
        ThenCheck([=, &rows] {
            char reference[256];
            FormatGridReference(reference, static_cast<int>(i) * 10 + 25, 205);
            EXPECT_EQ(std::string(view.statusText), std::string("UTM ") + reference + rows[i].text);
        });
    }
    const std::string last = " E1  Road Woods Town Impassable to all ground units";
    PointAt(600, 205);
    PointAt(300, 400);
    PointAt(-5, 205);
    ThenCheck([=] {
        const std::string text = view.statusText;
        EXPECT_EQ(text.substr(text.size() - last.size()), last) << "outside the map it stays";
        int inked = 0;
        for (int h = 0; h < 400; h++) {
            for (int v = 417; v < 434; v++) {
                inked += SeenAt(h, v) != 0xC0C0C0 ? 1 : 0;
            }
        }
        EXPECT_GT(inked, 100) << "and is to be seen";
        headless.presentCount = 0;
    });
    ScriptWait(1000);
    ThenCheck([] { EXPECT_EQ(headless.presentCount, 0) << "nothing is drawn while the pointer rests"; });
    ScriptKey(VK_F9);
    ThenCheck([] {
        EXPECT_STREQ(view.statusText, "");
        EXPECT_FALSE(IsCommandChecked(305));
        for (int h = 0; h < 500; h++) {
            ASSERT_EQ(SeenAt(h, 427), 0xC0C0C0u) << h;
        }
    });
    PointAt(300, 300);
    ThenCheck([] { EXPECT_STREQ(view.statusText, ""); });
    Quit();
    Run();
}

// ---- UTM grid ----

TEST_F(ViewsTest, GridAndLabelsSwitchInEveryOrder)
{
    struct Row {
        int command;
        int mode;
    };
    const Row rows[] = {{302, 1}, {302, 0}, {303, 2}, {303, 1}, {303, 2}, {302, 0}, {302, 1}, {303, 2},
                        {303, 1}, {302, 0}, {304, 0}, {303, 2}, {302, 0}, {302, 1}, {304, 1}, {302, 0}};
    OpenWith();
    ThenCheck([this] { before = Screen(); });
    for (const Row& row : rows) {
        ScriptMenu(row.command);
        ThenCheck([=] {
            EXPECT_EQ(view.utmGridMode, row.mode);
            EXPECT_EQ(IsCommandChecked(302), row.mode != 0);
            EXPECT_EQ(IsCommandChecked(303), row.mode == 2);
            EXPECT_EQ(IsCommandChecked(304), view.terrainAnalysisOn != 0);
            const uint32_t ground = view.terrainAnalysisOn ? 0xDDDDDD : ArtColour(110, 215);
            EXPECT_EQ(SeenAt(110, 215), row.mode != 0 ? 0x000000u : ground);
            const uint32_t labelGround = view.terrainAnalysisOn ? 0xDDDDDD : ArtColour(106, 344 - 8);
            EXPECT_EQ(SeenAt(106, 344 - 8) == labelGround, row.mode != 2);
        });
    }
    ThenCheck([this] { EXPECT_EQ(Difference(before, Screen()), "") << "all of it is gone"; });
    Quit();
    Run();
}

TEST_F(ViewsTest, LinesAndLabelsStandAtTheirKilometres)
{
    OpenWith(
        [](MapFile* map) {
            map->words[eastingWord] = 98;
            map->words[northingWord] = 7;
        },
        900, 920);
    ScriptMenu(302);
    ThenCheck([] {
        ExpectView(
            [](int h, int v) {
                const bool onVertical = h >= 10 && h < 890 && (h - 10) % 100 == 0 && v >= 10 && v <= 910;
                const bool onHorizontal = v > 10 && v <= 910 && (910 - v) % 100 == 0 && h >= 10 && h <= 890;
                return onVertical || onHorizontal ? 0x000000 : ArtColour(h, v);
            },
            "of the grid");
    });
    ScriptMenu(303);
    ThenCheck([] {
        const auto yellowNear = [](int h, int v) {
            int count = 0;
            for (int y = v - 12; y < v + 5; y++) {
                for (int x = h; x < h + 14; x++) {
                    count += SeenAt(x, y) == labelYellow ? 1 : 0;
                }
            }
            return count;
        };
        for (int h = 10; h < 890; h += 100) { // eastings: 46 and 546 above the bottom edge
            EXPECT_GT(yellowNear(h - 5, 864), 40) << h;
            EXPECT_GT(yellowNear(h - 5, 364), 40) << h;
        }
        for (int v = 910; v > 10; v -= 100) { // northings: 45 and 545 right of the left edge
            EXPECT_GT(yellowNear(55, v + 4), 40) << v;
            EXPECT_GT(yellowNear(555, v + 4), 40) << v;
        }
        EXPECT_EQ(yellowNear(205, 600), 0);
        for (int h = 10; h < 890; h += 100) {
            EXPECT_EQ(yellowNear(h + 11, 864), 0) << "a number of two digits, also after 99";
        }
        // 98, 99, 00: each number has its picture, wherever it stands.
        const auto glyph = [](int h, int v) {
            std::string bits;
            for (int y = v - 10; y < v + 2; y++) {
                for (int x = h; x < h + 14; x++) {
                    bits += SeenAt(x, y) == labelYellow ? '.' : '#';
                }
            }
            return bits;
        };
        EXPECT_NE(glyph(5, 864), glyph(105, 864)) << "98 and then 99";
        EXPECT_EQ(glyph(105, 864), glyph(105, 364)) << "one number along its line";
        EXPECT_NE(glyph(105, 864), glyph(205, 864)) << "99 and then 00";
    });
    Quit();
    Run();
}

TEST_F(ViewsTest, NewUTMNumbersAreDrawnAtOnce)
{
    const auto label = [] {
        std::vector<uint32_t> pixels;
        for (int v = 330; v < 350; v++) {
            for (int h = 105; h < 120; h++) {
                pixels.push_back(SeenAt(h, v));
            }
        }
        return pixels;
    };
    OpenWith();
    ScriptMenu(303);
    ThenCheck([=, this] { before = label(); });
    ScriptMenu(204);
    ClickItem(106);
    ScriptKey(VK_BACK);
    ScriptText("56");
    ClickButton("OK");
    ThenCheck([=, this] {
        EXPECT_EQ(currentMap.record.utmEasting, 56);
        EXPECT_EQ(currentMap.mapModified, 1);
        EXPECT_NE(before, label());
        EXPECT_EQ(SeenAt(110, 215), 0x000000u);
    });
    Quit();
    Run();
}

// ---- terrain analysis ----

static std::vector<uint32_t> CellSeenAt(int left, int top)
{
    std::vector<uint32_t> pixels;
    for (int v = top; v < top + cellSize; v++) {
        for (int h = left; h < left + cellSize; h++) {
            pixels.push_back(SeenAt(h, v));
        }
    }
    return pixels;
}

TEST_F(ViewsTest, TheAnalysisShowsEachCellsTerrain)
{
    struct Row {
        uint16_t word;
        uint32_t edge; // the cell's corner
        uint32_t ring; // its second pixel
        uint32_t centre;
    };
    constexpr uint32_t tile = 0xFFFFFFFF; // black, whatever the digit
    const uint32_t art = 0xFEFFFFFF;
    const Row rows[] = {
        {0x0000, 0xDDDDDD, 0xDDDDDD, 0xDDDDDD},
        {0x0800, 0x999999, 0x999999, 0x999999},
        {0x1000, 0x666666, 0x666666, 0x666666},
        {0x1800, 0x555555, 0x555555, 0x555555},
        {0x2000, 0x000000, 0x000000, 0x000000},
        {0x3000, 0xA6CAF0, 0xA6CAF0, 0xA6CAF0},
        {0x2800, art, art, art},
        {0xF800, art, art, art},
        {0x2840, art, art, 0x66CC66},
        {0x0040, 0xDDDDDD, 0xDDDDDD, 0x66CC66},
        {0x1080, 0x666666, 0x666666, 0x990033},
        {0x00C0, 0xDDDDDD, 0xDDDDDD, 0x990033},
        {0x2008, 0x9A6834, 0x000000, 0x000000},
        {0x0020, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF},
        {0x3720, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF},
        {0x0468, 0x9A6834, 0xFFFFFF, 0x66CC66},
        {0x01C0, tile, tile, tile},
        {0x0240, tile, tile, tile},
        {0x0580, tile, tile, tile},
        {0x0408, 0x9A6834, tile, tile},
        {0x2848, 0x9A6834, art, 0x66CC66},
        {0x0002, 0xDDDDDD, 0xDDDDDD, 0xDDDDDD},
    };
    OpenWith([&](MapFile* map) {
        for (size_t i = 0; i < std::size(rows); i++) {
            map->Cell(2 * static_cast<int>(i) + 1, 10) = rows[i].word;
            if (rows[i].ring != art) {
                map->Cell(2 * static_cast<int>(i) + 1, 12) = rows[i].word; // a row without cells that show the art
            }
        }
    });
    ThenCheck([this] { before = Screen(); });
    ScriptKey(VK_F8);
    ThenCheck([&] {
        EXPECT_TRUE(IsCommandChecked(304));
        EXPECT_EQ(headless.cursorKind, hostCursorArrow);
        for (size_t i = 0; i < std::size(rows); i++) {
            const int left = 20 * static_cast<int>(i) + 10;
            if (rows[i].ring != art) {
                EXPECT_EQ(CellSeenAt(left, 120), CellSeenAt(left, 100)) << rows[i].word;
            }
            const auto expect = [&](int inset, uint32_t wanted) {
                const uint32_t seen = SeenAt(left + inset, 100 + inset);
                if (wanted == tile) {
                    EXPECT_TRUE(seen == 0x000000 || (seen == 0xFFFFFF && inset >= 2)) << rows[i].word << " " << inset;
                } else {
                    EXPECT_EQ(seen, wanted == art ? ArtColour(left + inset, 100 + inset) : wanted)
                        << rows[i].word << " " << inset;
                }
            };
            expect(0, rows[i].edge);
            expect(1, rows[i].ring);
            expect(2, rows[i].ring);
            expect(4, rows[i].centre);
            EXPECT_EQ(SeenAt(left + 10, 105), 0xDDDDDDu) << "its neighbour";
        }
    });
    ScriptMenu(304);
    ThenCheck([this] { EXPECT_EQ(Difference(before, Screen()), "") << "all of it is gone"; });
    Quit();
    Run();
}

TEST_F(ViewsTest, ThePalettesBringTheAnalysisUpToDate)
{
    OpenWith([](MapFile* map) { map->Cell(5, 5) = 0x1040; });
    ThenCheck([this] { before = Screen(); });
    ScriptKey(VK_F8);
    ScriptMenu(302);
    OpenFeatures(204);
    ClickOnMap(205, 205);
    ThenCheck([] { EXPECT_EQ(SeenAt(205, 205), 0xFF0000u) << "a mark over the analysis"; });
    ClickItem(203); // a change of the tool draws the picture anew
    ThenCheck([] {
        EXPECT_EQ(SeenAt(205, 205), 0xFFFFFFu) << "the road";
        EXPECT_EQ(SeenAt(55, 55), 0x66CC66u);
        EXPECT_EQ(SeenAt(110, 215), 0x000000u) << "the grid stays";
    });
    ClickItem(214);
    ClickButton("Yes");
    ThenCheck([] {
        EXPECT_EQ(SeenAt(205, 205), 0xDDDDDDu);
        EXPECT_EQ(SeenAt(55, 55), 0x666666u);
    });
    ClosePalette();
    OpenMoveCosts();
    ClickItem(216);
    ClickButton("Yes");
    ThenCheck([] { EXPECT_EQ(SeenAt(55, 55), 0xDDDDDDu); });
    ScriptKey(VK_F8); // also while a palette is open
    ThenCheck([] { EXPECT_FALSE(IsCommandChecked(304)); });
    ClosePalette();
    ScriptMenu(302);
    ThenCheck([this] { EXPECT_EQ(Difference(before, Screen()), ""); });
    Quit();
    Run();
}

} // namespace
