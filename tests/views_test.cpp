// What the View menu adds to the map: read-out, UTM grid, terrain analysis; and that all of it goes away whole.
#include "app/map_views.h"
#include "tests/editor_session.h"

#include <algorithm>
#include <utility>

namespace {

constexpr uint32_t labelYellow = 0xFFFF66;

typedef EditorSession ViewsTest;

void PointAt(int h, int v)
{
    ScriptCall([=] {
        const ScriptPoint place = OnScreenOfMap(h, v);
        ScriptMove(place.x, place.y);
    });
}

std::vector<uint32_t> Seen(int left, int top, int right, int bottom)
{
    std::vector<uint32_t> pixels;
    for (int v = top; v < bottom; v++) {
        for (int h = left; h < right; h++) {
            pixels.push_back(SeenAt(h, v));
        }
    }
    return pixels;
}

// ---- read-out ----

TEST_F(ViewsTest, GridReferencesCountFromTheBottomLeftCorner)
{
    OpenWith([](MapFile* map) {
        map->words[eastingWord] = 98;
        map->words[northingWord] = 42;
    });
    ThenCheck([] {
        const struct {
            int h;
            int v;
            const char* reference;
        } rows[] = {
            {10, 390, "980420"},  {19, 390, "980420"},  {20, 389, "981420"},  {109, 291, "989429"},
            {110, 290, "990430"}, {210, 190, "000440"}, {310, 290, "010430"}, {599, 0, "038459"},
            {9, 390, "980420"},   {1, 390, "980420"},   {0, 390, "98-1420"},  {10, 391, "980420"},
            {10, 399, "980420"},  {589, 10, "037458"},  {10, 400, "98042-1"},
        };
        for (const auto& row : rows) {
            char reference[256];
            FormatGridReference(reference, row.h, row.v);
            EXPECT_STREQ(reference, row.reference) << row.h << "," << row.v;
        }
    });
    QuitAndRun();
}

TEST_F(ViewsTest, TheReadOutTellsTheTerrainUnderThePointer)
{
    const struct {
        uint16_t word;
        const char* text; // behind the reference
    } rows[] = {
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
        ThenCheck([text = rows[i].text] { EXPECT_EQ(std::string(view.statusText).substr(10), text); });
    }
    PointAt(600, 205);
    PointAt(300, 400);
    PointAt(-5, 205);
    ThenCheck([&] {
        EXPECT_EQ(std::string(view.statusText).substr(10), std::end(rows)[-1].text) << "outside the map it stays";
        const std::vector<uint32_t> strip = Seen(0, 417, 400, 434);
        const auto plain = std::count(strip.begin(), strip.end(), 0xC0C0C0);
        EXPECT_LT(plain, static_cast<std::ptrdiff_t>(strip.size()) - 100) << "and is to be seen";
        headless.presentCount = 0;
    });
    ScriptWait(1000);
    ThenCheck([] { EXPECT_EQ(headless.presentCount, 0) << "nothing is drawn while the pointer rests"; });
    ScriptKey(VK_F9);
    ThenCheck([] {
        EXPECT_STREQ(view.statusText, "");
        EXPECT_FALSE(IsCommandChecked(305));
        EXPECT_EQ(Seen(0, 417, 500, 434), std::vector<uint32_t>(17 * 500, 0xC0C0C0));
    });
    PointAt(300, 300);
    ThenCheck([] { EXPECT_STREQ(view.statusText, ""); });
    QuitAndRun();
}

// ---- UTM grid ----

// The pixels of a label whose text begins there: '.' for its ground, '#' for all else.
std::string LabelPicture(int h, int v)
{
    std::string picture;
    for (const uint32_t pixel : Seen(h, v - 10, h + 14, v + 2)) {
        picture += pixel == labelYellow ? '.' : '#';
    }
    return picture;
}

TEST_F(ViewsTest, GridAndLabelsSwitchInEveryOrder)
{
    const std::pair<int, int> rows[] = {// commands, and the grid's mode then
                                        {302, 1}, {302, 0}, {303, 2}, {303, 1}, {303, 2}, {302, 0},
                                        {302, 1}, {303, 2}, {303, 1}, {302, 0}, {304, 0}, {303, 2},
                                        {302, 0}, {302, 1}, {304, 1}, {302, 0}};
    OpenWith();
    KeepScreen();
    for (const auto& row : rows) {
        ScriptMenu(row.first);
        ThenCheck([mode = row.second] {
            EXPECT_EQ(view.utmGridMode, mode);
            EXPECT_EQ(IsCommandChecked(302), mode != 0);
            EXPECT_EQ(IsCommandChecked(303), mode == 2);
            EXPECT_EQ(IsCommandChecked(304), view.terrainAnalysisOn != 0);
            const uint32_t ground = view.terrainAnalysisOn ? 0xDDDDDD : ArtColour(110, 215);
            EXPECT_EQ(SeenAt(110, 215), mode != 0 ? 0x000000u : ground);
            const uint32_t labelGround = view.terrainAnalysisOn ? 0xDDDDDD : ArtColour(106, 344 - 8);
            EXPECT_EQ(SeenAt(106, 344 - 8) == labelGround, mode != 2);
        });
    }
    ExpectKeptScreen("all of it is gone");
    QuitAndRun();
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
            const std::string picture = LabelPicture(h, v);
            return std::count(picture.begin(), picture.end(), '.');
        };
        for (int h = 10; h < 890; h += 100) { // eastings: 46 and 546 above the bottom edge
            EXPECT_GT(yellowNear(h - 5, 864), 40) << h;
            EXPECT_GT(yellowNear(h - 5, 364), 40) << h;
            EXPECT_EQ(yellowNear(h + 11, 864), 0) << "a number of two digits, also after 99";
        }
        for (int v = 910; v > 10; v -= 100) { // northings: 45 and 545 right of the left edge
            EXPECT_GT(yellowNear(55, v + 4), 40) << v;
            EXPECT_GT(yellowNear(555, v + 4), 40) << v;
        }
        EXPECT_EQ(yellowNear(205, 600), 0);
        // 98, 99, 00: each number has its picture, wherever it stands.
        EXPECT_NE(LabelPicture(5, 864), LabelPicture(105, 864)) << "98 and then 99";
        EXPECT_EQ(LabelPicture(105, 864), LabelPicture(105, 364)) << "one number along its line";
        EXPECT_NE(LabelPicture(105, 864), LabelPicture(205, 864)) << "99 and then 00";
    });
    ScriptMenu(204); // new numbers are drawn at once
    ClickItem(106);
    ScriptText("99");
    ClickButton("OK");
    ThenCheck([] {
        EXPECT_NE(LabelPicture(5, 864), LabelPicture(105, 864)) << "99 and then 00";
        EXPECT_EQ(LabelPicture(205, 864), LabelPicture(205, 364));
        EXPECT_EQ(SeenAt(110, 215), 0x000000u);
    });
    QuitAndRun();
}

// ---- terrain analysis ----

TEST_F(ViewsTest, TheAnalysisShowsEachCellsTerrain)
{
    constexpr uint32_t itsTile = 0xFFFFFFFF; // black, whatever the digit
    const uint32_t itsArt = 0xFEFFFFFF;
    const struct {
        uint16_t word;
        uint32_t edge; // the cell's corner
        uint32_t ring; // its second pixel
        uint32_t centre;
    } rows[] = {{0x0000, 0xDDDDDD, 0xDDDDDD, 0xDDDDDD}, {0x0800, 0x999999, 0x999999, 0x999999},
                {0x1000, 0x666666, 0x666666, 0x666666}, {0x1800, 0x555555, 0x555555, 0x555555},
                {0x2000, 0x000000, 0x000000, 0x000000}, {0x3000, 0xA6CAF0, 0xA6CAF0, 0xA6CAF0},
                {0x2800, itsArt, itsArt, itsArt},       {0xF800, itsArt, itsArt, itsArt},
                {0x2840, itsArt, itsArt, 0x66CC66},     {0x0040, 0xDDDDDD, 0xDDDDDD, 0x66CC66},
                {0x1080, 0x666666, 0x666666, 0x990033}, {0x00C0, 0xDDDDDD, 0xDDDDDD, 0x990033},
                {0x2008, 0x9A6834, 0x000000, 0x000000}, {0x0020, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF},
                {0x3720, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF}, {0x0468, 0x9A6834, 0xFFFFFF, 0x66CC66},
                {0x01C0, itsTile, itsTile, itsTile},    {0x0240, itsTile, itsTile, itsTile},
                {0x0580, itsTile, itsTile, itsTile},    {0x0408, 0x9A6834, itsTile, itsTile},
                {0x2848, 0x9A6834, itsArt, 0x66CC66},   {0x0002, 0xDDDDDD, 0xDDDDDD, 0xDDDDDD}};
    OpenWith([&](MapFile* map) {
        for (size_t i = 0; i < std::size(rows); i++) {
            map->Cell(2 * static_cast<int>(i) + 1, 10) = rows[i].word;
            if (rows[i].ring != itsArt) {
                map->Cell(2 * static_cast<int>(i) + 1, 12) = rows[i].word; // a row without cells that show the art
            }
        }
    });
    KeepScreen();
    ScriptKey(VK_F8);
    ThenCheck([&] {
        EXPECT_TRUE(IsCommandChecked(304));
        EXPECT_EQ(headless.cursorKind, hostCursorArrow);
        for (size_t i = 0; i < std::size(rows); i++) {
            const int left = 20 * static_cast<int>(i) + 10;
            const auto cell = [=](int top) { return Seen(left, top, left + 10, top + 10); };
            if (rows[i].ring != itsArt) {
                EXPECT_EQ(cell(120), cell(100)) << rows[i].word;
            }
            const auto expect = [&](int inset, uint32_t wanted) {
                const uint32_t seen = SeenAt(left + inset, 100 + inset);
                if (wanted == itsTile) {
                    EXPECT_TRUE(seen == 0x000000 || (seen == 0xFFFFFF && inset >= 2)) << rows[i].word << " " << inset;
                } else {
                    EXPECT_EQ(seen, wanted == itsArt ? ArtColour(left + inset, 100 + inset) : wanted)
                        << rows[i].word << " " << inset;
                }
            };
            expect(0, rows[i].edge);
            expect(1, rows[i].ring);
            expect(2, rows[i].ring);
            expect(4, rows[i].centre);
            EXPECT_EQ(SeenAt(left + 10, 105), 0xDDDDDDu) << "its neighbour";
        }
        EXPECT_EQ(SeenAt(300, 399), 0xDDDDDDu) << "the last row, too";
    });
    ScriptMenu(304);
    ExpectKeptScreen("all of it is gone");
    QuitAndRun();
}

TEST_F(ViewsTest, ThePalettesBringTheAnalysisUpToDate)
{
    OpenWith([](MapFile* map) { map->Cell(5, 5) = 0x1040; });
    KeepScreen();
    ScriptKey(VK_F8);
    ScriptMenu(302);
    OpenPalette('t', 204);
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
    OpenPalette('m', 216);
    ClickButton("Yes");
    ThenCheck([] { EXPECT_EQ(SeenAt(55, 55), 0xDDDDDDu); });
    ScriptKey(VK_F8); // also while a palette is open
    ThenCheck([] { EXPECT_FALSE(IsCommandChecked(304)); });
    ClosePalette();
    ScriptMenu(302);
    ExpectKeptScreen("all of it is gone");
    QuitAndRun();
}

} // namespace
