// Opening maps: good ones, every kind of bad file, and that a good map opens after each of them.
#include "platform/kernel/test_hooks.h"
#include "tests/editor_session.h"

#include <sys/stat.h>

namespace {

constexpr uint32_t backgroundGrey = 0xC0C0C0;
constexpr uint32_t cornerGrey = 0xBBBBBB;
const std::string cannotOpen =
    "Could not open 'DAT' file. File may be damaged or in use. Quit program, restart, and try again.";
const std::string unreadable =
    "Could not load terrain data from 'DAT' file. File may be damaged. Quit program, restart, and try again.";

void ExpectNoMap(const std::string& after)
{
    SCOPED_TRACE(after);
    EXPECT_EQ(Title(), "Kestrel Map Tool v105AA");
    EXPECT_EQ(TopDialog(), nullptr) << TextsOf(TopDialog());
    EXPECT_FALSE(shell.mapShown);
    EXPECT_TRUE(IsCommandEnabled(101) && IsCommandEnabled(102));
    EXPECT_FALSE(IsCommandEnabled(104) || IsCommandEnabled(201) || IsCommandEnabled(302));
    EXPECT_TRUE(headless.bars.empty());
    EXPECT_EQ(currentMap.allocatedColumns, 0);
    EXPECT_EQ(currentMap.openDataFile, noFile);
    const HostRect& client = HeadlessFrame()->client;
    const int strip = view.statusText[0] != 0 ? 36 : 0; // that tells of the failure, with its grow box
    for (int y = client.top; y < client.bottom - strip; y += 7) {
        for (int x = client.left; x < client.right; x += 7) {
            ASSERT_EQ(HeadlessPixel(x, y), backgroundGrey) << x << "," << y;
        }
    }
}

class OpenMapTest : public EditorSession {
  protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        WriteMap(MapFile(120, 450, 220));
    }

    // The second half of every bad attempt.
    void ThenOpenTheGoodMap(const std::string& after)
    {
        ThenCheck([=] { ExpectNoMap(after); });
        OpenMap("Map120c.dat");
        ThenCheck([=] {
            EXPECT_EQ(Title(), "Kestrel Map Tool v105AA - Map120c.dat") << after;
            ExpectArt(after.c_str());
            int grip = 0;
            for (int v = 220 + 34 - 18; v < 220 + 34; v++) {
                for (int h = 450 + 16 - 18; h < 450 + 16; h++) {
                    grip += SeenAt(h, v) != backgroundGrey && SeenAt(h, v) != cornerGrey ? 1 : 0;
                }
            }
            EXPECT_GT(grip, 10) << "the interface bitmap is there again " << after;
        });
        QuitAndRun();
    }

    void ExpectFailure(const std::string& name, const std::vector<std::string>& messages, const std::string& what)
    {
        SCOPED_TRACE(what);
        OpenMap(name);
        for (const std::string& message : messages) {
            ExpectMessage(message);
        }
        ThenOpenTheGoodMap(what);
    }
};

TEST_F(OpenMapTest, AMapFillsItsWindowPixelForPixel)
{
    ThenCheck([] { ExpectNoMap("at the start"); });
    OpenWith();
    ThenCheck([this] {
        EXPECT_EQ(Title(), "Kestrel Map Tool v105AA - Map101c.dat");
        EXPECT_TRUE(HeadlessFrame()->frame.left == 0 && HeadlessFrame()->frame.top == 0);
        EXPECT_TRUE(SizeOf(HeadlessFrame()).h == 600 + 16 && SizeOf(HeadlessFrame()).v == 400 + 34);
        ExpectArt("after opening");
        EXPECT_EQ(SeenAt(3, 400 + 20), backgroundGrey);
        EXPECT_EQ(SeenAt(601, 401), cornerGrey);
        ASSERT_EQ(headless.bars.size(), 2u);
        EXPECT_EQ(HeadlessScrollBar(1)->place.left, 600);
        EXPECT_EQ(HeadlessScrollBar(0)->place.top, 400);
        EXPECT_EQ(currentMap.loadedMapID, 101);
        EXPECT_EQ(currentMap.mapModified, 0);
        EXPECT_NE(currentMap.openDataFile, noFile) << "the file stays open until the next save";
        const HeadlessFileDialog& dialog = headless.fileDialogs.at(0);
        EXPECT_EQ(dialog.title + "|" + dialog.filterText + "|" + dialog.filterPattern,
                  "Select a map...|Map dat file (*.dat)|*.dat");
        EXPECT_EQ(std::filesystem::path(dialog.folder), std::filesystem::path(folder));
    });
    QuitAndRun();

    ScriptFileCancel();
    ScriptControl('o');
    ThenOpenTheGoodMap("a cancelled choice");
}

TEST_F(OpenMapTest, HeadersThatNoMapCanHaveAreRefused)
{
    const std::string tooWide = "Map width error.  Limits are 450 to 3100. Change width of map art file.";
    const std::string tooHigh = "Map height error. Limits are 220 to 3100. Change height of map art file.";
    const struct {
        const char* what;
        std::vector<std::pair<int, int>> words;
        std::vector<std::string> messages;
    } rows[] = {
        {"3101 high", {{bottomWord, 3101}}, {tooHigh, unreadable}},
        {"both too large", {{rightWord, 3200}, {bottomWord, 3300}}, {tooWide, tooHigh, unreadable}},
        {"too large and without columns", {{rightWord, 3101}, {columnsWord, 0}}, {tooWide, unreadable}},
        {"-32768 rows", {{rowsWord, -32768}}, {unreadable}},
        {"inside out", {{leftWord, 32767}, {rightWord, -32768}}, {unreadable}},
    };
    for (const auto& row : rows) {
        MapFile map(101, 600, 400);
        WriteMap(map);
        for (const auto& [index, value] : row.words) {
            map.words[index] = static_cast<int16_t>(value);
        }
        Write("Map101c.dat", map.Bytes());
        ExpectFailure("Map101c.dat", row.messages, row.what);
    }
}

TEST_F(OpenMapTest, AFileCutInItsSizesIsRefused)
{
    WriteMap(MapFile(101, 450, 220));
    const std::string whole = Read("Map101c.dat");
    for (const size_t length : {16, 11, 7, 1, 0}) {
        Write("Map101c.dat", whole.substr(0, length));
        OpenMap();
        ExpectMessage(unreadable);
    }
    ThenOpenTheGoodMap("cut files");
}

TEST_F(OpenMapTest, NothingOfAFailedAttemptIsTakenOver)
{
    MapFile map(100, 450, 220);
    map.words[eastingWord] = 55;
    map.words[versionWord] = 321;
    map.words[1] = 77;
    map.text = "of another map";
    WriteMap(map);
    Write("Map100c.bmp", "no art");
    WriteMap(MapFile(101, 450, 220));
    Write("Map101c.dat", Read("Map101c.dat").substr(0, 18));
    for (const bool newMap : {false, true}) {
        OpenMap("Map100c.dat");
        if (newMap) { // it keeps fields that it has no value for
            ScriptFile(Path("Map101c.bmp").c_str());
            ScriptControl('n');
            ClickButton("OK");
        } else {
            OpenMap();
        }
        ThenCheck([=] {
            const MapRecord& record = currentMap.record;
            EXPECT_TRUE(record.mapID == 101 && record.mapRect.bottom == 220 && record.auxWord1 == 0);
            EXPECT_TRUE(record.utmEasting == 0 && record.versionNumber == (newMap ? 100 : 0));
            EXPECT_STREQ(record.mapText, "");
            EXPECT_EQ(MarkedCells(), "");
            ExpectArt("of a cut file, or a new map");
        });
        QuitAndRun();
    }
}

TEST_F(OpenMapTest, WhatIsNoFileAndArtThatIsNoPictureAreRefused)
{
    Write("Map101c.bmp", ArtBytes(600, 400));
    ExpectFailure("Map101c.dat", {cannotOpen}, "no such file");
    std::filesystem::create_directory(Path("Map101c.dat"));
    ExpectFailure("Map101c.dat", {cannotOpen}, "a folder of that name");
    std::filesystem::remove(Path("Map101c.dat"));
    ASSERT_EQ(mkfifo(Path("Map101c.dat").c_str(), 0600), 0);
    ExpectFailure("Map101c.dat", {cannotOpen}, "a pipe of that name");
    std::filesystem::remove(Path("Map101c.dat"));

    WriteMap(MapFile(101, 600, 400));
    for (const size_t length : {0, 54, 300000}) {
        Write("Map101c.bmp", ArtBytes(600, 400).substr(0, length));
        ExpectFailure("Map101c.dat", {}, "art of " + std::to_string(length) + " bytes");
    }
    std::filesystem::remove(Path("Map101c.bmp"));
    ExpectFailure("Map101c.dat", {"Could not find a map art file named: Map101c.bmp"}, "no art");
}

TEST_F(OpenMapTest, ArtOfAnotherSizeIsCutOrSurrounded)
{
    for (const int width : {500, 700}) {
        WriteMap(MapFile(101, 600, 400));
        Write("Map101c.bmp", ArtBytes(width, width - 200));
        OpenMap();
        ThenCheck([=] {
            ExpectView([=](int h, int v) { return h < width && v < width - 200 ? ArtColour(h, v) : backgroundGrey; },
                       "of art of another size");
        });
        QuitAndRun();
    }
}

TEST_F(OpenMapTest, NamesFollowTheRuleOrAreRefused)
{
    const std::string rule =
        " ?\nThere seems to be an error in the file name of the file containing the terrain data for this map.\n"
        "The file name for the terrain data for a Type 2 map must use this convention: 'Map' + 3 digit number + "
        "'c.dat'.\n"
        "The 3 digit number must be in the range from 100 to 999.\n"
        "Example:  Map101c.dat";
    const std::string missing = "Could not find a map art file named: ";
    const std::pair<std::string, std::string> rows[] = {
        {"Map099c.dat", "Map099c.dat" + rule},
        {"Map000c.dat", "Map000c.dat" + rule},
        {"Mapabcc.dat", "Mapabcc.dat" + rule},
        {"M.dat", "M.dat" + rule},
        {"Map12", "Map12" + rule},
        {"Xyz123.dat", missing + "Map123c.bmp"},
        {"Map999", missing + "Map999c.bmp"},
        {"Map123cc.dat", missing + "Map123c.bmp"},
        {"Map100c.dat", missing + "Map100c.bmp"},
    };
    for (const auto& [name, message] : rows) {
        headless.sounds.clear();
        Write(name, MapFile(101, 600, 400).Bytes());
        OpenMap(name);
        ThenCheck([] { EXPECT_EQ(headless.sounds.size(), 1u) << "the alert sound"; });
        ExpectMessage(message);
        ThenOpenTheGoodMap(name);
    }
}

TEST_F(OpenMapTest, NamesAreFoundWithoutRegardToCaseAndInAnyFolder)
{
    const std::string deep = std::string(100, 'd') + "/" + std::string(253 - 13 - 101 - folder.size(), 'e');
    const std::string rows[][4] = {
        // folder, data file, art, the name that is chosen
        {".", "map101c.dat", "MAP101C.BMP", "map101c.dat"},
        {".", "MAP102C.DAT", "map102c.bmp", "Map102c.dat"},
        {"a folder  with blanks", "Map103c.dat", "Map103c.bmp", "Map103c.dat"},
        {"\xC3\xA9t\xC3\xA9", "Map104c.dat", "Map104c.bmp", "Map104c.dat"},
        {deep, "Map105c.dat", "Map105c.bmp", "Map105c.dat"},
        {deep + "ee", "Map106c.dat", "Map106c.bmp", "Map106c.dat"}, // a path of 255 characters
    };
    for (const auto& [where, data, art, chosen] : rows) {
        std::filesystem::create_directories(Path(where));
        Write(where + "/" + data, MapFile(101, 600, 400).Bytes());
        Write(where + "/" + art, ArtBytes(600, 400));
        if (where == deep + "ee") {
            ExpectFailure(where + "/" + chosen, {cannotOpen}, where);
            continue;
        }
        OpenMap(where + "/" + chosen);
        ThenCheck([&, title = "Kestrel Map Tool v105AA - " + chosen] {
            EXPECT_EQ(TextsOf(TopDialog()), "");
            EXPECT_EQ(Title(), title);
            ExpectArt("of a map in any folder");
        });
        QuitAndRun();
    }
}

TEST_F(OpenMapTest, ShortMemoryIsToldAndTheNextMapOpens)
{
    WriteMap(MapFile(101, 600, 400));
    for (const int successes : {0, 59, 60}) { // the first and the last column; the map image, which is not told of
        ThenCheck([=] { FailAllocationAfter(successes); });
        OpenMap();
        if (successes < 60) {
            ExpectMessage("Memory Allocation Error!", "Continue");
        }
        ThenOpenTheGoodMap("short memory");
    }
    ThenCheck([] { FailAllocationAfter(0); });
    OpenMap();
    ExpectMessage("Memory Allocation Error!", "Quit");
    Run();
}

// Counts and rectangle are taken as stored; whatever the program does with them stays inside the grid.
TEST_F(OpenMapTest, OddHeadersThatAreTakenLeaveTheProgramSound)
{
    const struct {
        const char* what;
        std::vector<std::pair<int, int>> words;
    } rows[] = {
        {"one cell", {{columnsWord, 1}, {rowsWord, 1}}},
        {"more cells than pixels", {{columnsWord, 310}, {rowsWord, 310}}},
        {"a map of one pixel", {{rightWord, 1}, {bottomWord, 1}}},
        {"not from 0", {{leftWord, 100}, {topWord, 50}, {rightWord, 700}, {bottomWord, 450}}},
        {"left of 0", {{leftWord, -300}, {topWord, -200}, {rightWord, 300}, {bottomWord, 200}}},
        {"at the far end", {{leftWord, 32000}, {rightWord, 32767}, {topWord, 32500}, {bottomWord, 32767}}},
        {"at the near end", {{leftWord, -32768}, {rightWord, -32000}, {topWord, -32768}, {bottomWord, -32500}}},
        {"numbers of any value", {{eastingWord, 32767}, {northingWord, -32768}, {versionWord, -1}, {idWord, -1}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        MapFile map(101, 600, 400);
        WriteMap(map);
        for (const auto& [index, value] : row.words) {
            map.words[index] = static_cast<int16_t>(value);
        }
        map.SizeCells(0xFFFF);
        Write("Map101c.dat", map.Bytes());
        OpenMap();
        ThenCheck([] { EXPECT_TRUE(shell.mapShown); });
        ScriptKey(VK_F9);
        ScriptKey(VK_F8);
        ScriptMenu(303);
        for (const ScriptPoint& place : {ScriptPoint{5, 47}, {200, 150}, {400, 300}, {600, 440}}) {
            ScriptMove(place.x, place.y);
            ScriptWait(30);
        }
        for (const int key : {VK_RIGHT, VK_DOWN, VK_LEFT, VK_UP}) {
            ScriptKey(key);
        }
        ScriptResize(400, 320);
        ScriptResize(2000, 2000);
        for (const char key : {'t', 'm'}) {
            OpenPalette(key, 202);
            ScriptDrag({{10, 50}, {300, 200}, {600, 430}, {2, 2}});
            PressKeyWith(VK_MENU, [] { ScriptDrag({{10, 60}, {300, 200}, {620, 450}}); });
            ClickButton("Fill");
            ClosePalette();
        }
        QuitAndRun();
    }
}

} // namespace
