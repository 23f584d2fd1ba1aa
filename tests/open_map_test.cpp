// Opening maps: good ones, every kind of bad file, and that a good map opens after each of them.
#include "platform/kernel/system_calls.h"
#include "platform/kernel/test_hooks.h"
#include "tests/editor_session.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uint32_t backgroundGrey = 0xC0C0C0;
constexpr uint32_t cornerGrey = 0xBBBBBB;

void ExpectNoMap(const std::string& after)
{
    EXPECT_EQ(Title(), "Kestrel Map Tool v105AA") << after;
    EXPECT_EQ(TopDialog(), nullptr) << after << ": " << TextsOf(TopDialog());
    EXPECT_FALSE(shell.mapShown) << after;
    EXPECT_TRUE(IsCommandEnabled(101) && IsCommandEnabled(102)) << after;
    EXPECT_FALSE(IsCommandEnabled(104) || IsCommandEnabled(201) || IsCommandEnabled(302)) << after;
    EXPECT_TRUE(headless.bars.empty()) << after;
    EXPECT_EQ(currentMap.allocatedColumns, 0) << after;
    EXPECT_EQ(currentMap.openDataFile, noFile) << after;
    const HostRect& client = HeadlessFrame()->client;
    for (int y = client.top; y < client.bottom; y += 7) {
        for (int x = client.left; x < client.right; x += 7) {
            ASSERT_EQ(HeadlessPixel(x, y), backgroundGrey) << after << " at " << x << "," << y;
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
        Quit();
    }

    void ExpectFailure(const std::string& name, const std::vector<std::string>& messages, const std::string& what)
    {
        SCOPED_TRACE(what);
        OpenMap(name);
        for (const std::string& message : messages) {
            ExpectMessage(message);
        }
        ThenOpenTheGoodMap(what);
        Run();
    }
};

TEST_F(OpenMapTest, AMapFillsItsWindowPixelForPixel)
{
    WriteMap(MapFile(101, 600, 400));
    ThenCheck([] { ExpectNoMap("at the start"); });
    OpenMap();
    ThenCheck([this] {
        EXPECT_EQ(Title(), "Kestrel Map Tool v105AA - Map101c.dat");
        const HeadlessWindow* frame = HeadlessFrame();
        EXPECT_EQ(frame->frame.left, 0);
        EXPECT_EQ(frame->frame.top, 0);
        EXPECT_EQ(frame->client.right - frame->client.left, 600 + 16);
        EXPECT_EQ(frame->client.bottom - frame->client.top, 400 + 34);
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
    Quit();
    Run();
}

TEST_F(OpenMapTest, ACancelledChoiceChangesNothing)
{
    ScriptFileCancel();
    ScriptControl('o');
    ThenOpenTheGoodMap("a cancelled choice");
    Run();
}

TEST_F(OpenMapTest, HeadersThatNoMapCanHaveAreRefused)
{
    const std::string tooWide = "Map width error.  Limits are 450 to 3100. Change width of map art file.";
    const std::string tooHigh = "Map height error. Limits are 220 to 3100. Change height of map art file.";
    const std::string unreadable = "Could not load terrain data from 'DAT' file. File may be damaged. Quit program, "
                                   "restart, and try again.";
    struct Row {
        const char* what;
        std::vector<std::pair<int, int>> words;
        std::vector<std::string> messages;
    };
    const Row rows[] = {
        {"3101 wide", {{rightWord, 3101}}, {tooWide, unreadable}},
        {"3101 high", {{bottomWord, 3101}}, {tooHigh, unreadable}},
        {"both too large", {{rightWord, 3200}, {bottomWord, 3300}}, {tooWide, tooHigh, unreadable}},
        {"too large and without columns", {{rightWord, 3101}, {columnsWord, 0}}, {tooWide, unreadable}},
        {"all of the words wide", {{leftWord, -32768}, {rightWord, 32767}}, {tooWide, unreadable}},
        {"no columns", {{columnsWord, 0}}, {unreadable}},
        {"fewer than no columns", {{columnsWord, -1}}, {unreadable}},
        {"311 columns", {{columnsWord, 311}}, {unreadable}},
        {"32767 of both", {{columnsWord, 32767}, {rowsWord, 32767}}, {unreadable}},
        {"no rows", {{rowsWord, 0}}, {unreadable}},
        {"-32768 rows", {{rowsWord, -32768}}, {unreadable}},
        {"311 rows", {{rowsWord, 311}}, {unreadable}},
        {"no width", {{rightWord, 0}}, {unreadable}},
        {"upside down", {{bottomWord, -32768}}, {unreadable}},
        {"inside out", {{leftWord, 32767}, {rightWord, -32768}}, {unreadable}},
    };
    for (const Row& row : rows) {
        MapFile map(101, 600, 400);
        WriteMap(map);
        for (const auto& [index, value] : row.words) {
            map.words[index] = static_cast<int16_t>(value);
        }
        Write("Map101c.dat", map.Bytes());
        ExpectFailure("Map101c.dat", row.messages, row.what);
    }
}

TEST_F(OpenMapTest, AFileCutInItsSizesIsRefusedAndOneCutLaterOpens)
{
    MapFile map(101, 450, 220);
    map.text = "text";
    for (uint16_t& cell : map.cells) {
        cell = 0x1140;
    }
    WriteMap(map);
    const std::string whole = map.Bytes();
    constexpr size_t sizesEnd = 17; // the high byte of 220 is 0 like the word that was there
    for (size_t length = 0; length < sizesEnd; length++) {
        // Each lies under its own name: nothing that a cut file brought may help the next one over the limits.
        const std::string name = "Map" + std::to_string(200 + length) + "c.";
        Write(name + "dat", whole.substr(0, length));
        Write(name + "bmp", "not read");
        OpenMap(name + "dat");
        ThenCheck([=] { EXPECT_EQ(TextsOf(TopDialog()), MessageText(15133)) << length; });
        ClickButton("OK");
    }
    ThenOpenTheGoodMap("cut files");
    Run();

    const size_t lengths[] = {17, 18, 19, 49, 55, 56, 57, 60, 61, 62, 63, 500, whole.size() - 1, whole.size()};
    for (const size_t length : lengths) {
        Write("Map101c.dat", whole.substr(0, length));
        OpenMap();
        ThenCheck([=] {
            const size_t cellBytes = length > 61 ? length - 61 : 0;
            size_t whatIsThere = 0;
            for (int y = 0; y < 22; y++) {
                for (int x = 0; x < 45; x++) {
                    whatIsThere += CellWord(x, y) == 0x1140 ? 2 : CellWord(x, y) == 0x40 ? 1 : 0;
                    EXPECT_TRUE(CellWord(x, y) == 0x1140 || CellWord(x, y) == 0x40 || CellWord(x, y) == 0);
                }
            }
            EXPECT_EQ(whatIsThere, cellBytes) << length;
            EXPECT_STREQ(currentMap.record.mapText, map.text.substr(0, length > 56 ? length - 56 : 0).c_str());
            ExpectArt("of a cut file");
        });
        Quit();
        Run();
    }
}

TEST_F(OpenMapTest, TextsEndBeforeTheir256thCharacter)
{
    MapFile map(101, 600, 400);
    map.text = std::string(256, 'x');
    WriteMap(map);
    ExpectFailure("Map101c.dat",
                  {"Could not load terrain data from 'DAT' file. File may be damaged. Quit program, "
                   "restart, and try again."},
                  "a text of 256 characters");
    map.text.resize(255);
    map.Cell(0, 0) = 0x0888;
    WriteMap(map);
    OpenMap();
    ThenCheck([&] {
        EXPECT_EQ(currentMap.record.mapText, map.text);
        EXPECT_EQ(MarkedCells(), "0,0=0888");
    });
    Quit();
    Run();
}

TEST_F(OpenMapTest, FilesThatCannotBeReadAreRefused)
{
    const std::string cannotOpen =
        "Could not open 'DAT' file. File may be damaged or in use. Quit program, restart, and try again.";
    const std::string unreadable = "Could not load terrain data from 'DAT' file. File may be damaged. Quit program, "
                                   "restart, and try again.";
    WriteMap(MapFile(101, 600, 400));
    std::filesystem::remove(Path("Map101c.dat"));
    ExpectFailure("Map101c.dat", {cannotOpen}, "no such file");
    std::filesystem::create_directory(Path("Map101c.dat"));
    ExpectFailure("Map101c.dat", {cannotOpen}, "a folder of that name");
    std::filesystem::remove(Path("Map101c.dat"));
    ASSERT_EQ(mkfifo(Path("Map101c.dat").c_str(), 0600), 0);
    ExpectFailure("Map101c.dat", {cannotOpen}, "a pipe of that name");
    std::filesystem::remove(Path("Map101c.dat"));

    WriteMap(MapFile(101, 600, 400));
    systemCalls.open = [](const char* path, int flags, mode_t mode) {
        if (strstr(path, "Map101c.dat") != nullptr) {
            errno = EACCES;
            return -1;
        }
        return RealSystemCalls().open(path, flags, mode);
    };
    ExpectFailure("Map101c.dat", {cannotOpen}, "no permission");
    systemCalls = RealSystemCalls();

    static int readsBeforeFault;
    const auto failingRead = [](int descriptor, void* buffer, size_t count) -> ssize_t {
        if (readsBeforeFault-- == 0) {
            errno = EIO;
            return -1;
        }
        return RealSystemCalls().read(descriptor, buffer, count);
    };
    MapFile large(101, 600, 400); // more than the first read brings
    large.words[columnsWord] = 310;
    large.words[rowsWord] = 310;
    large.cells.resize(310 * 310);
    WriteMap(large);
    for (int good = 0; good < 2; good++) {
        readsBeforeFault = good;
        systemCalls.read = failingRead;
        ExpectFailure("Map101c.dat", good == 0 ? std::vector<std::string>{unreadable} : std::vector<std::string>{},
                      good == 0 ? "a fault in the header" : "a fault in the cells");
    }
}

TEST_F(OpenMapTest, ArtThatCannotBeLoadedIsRefused)
{
    const std::string good = ArtBytes(600, 400);
    const auto changed = [&](size_t offset, uint32_t value, size_t length = std::string::npos) {
        std::string art = good.substr(0, length);
        for (size_t i = 0; i < 4; i++) {
            art[offset + i] = static_cast<char>(value >> 8 * i & 0xFF);
        }
        return art;
    };
    struct Row {
        const char* what;
        std::string art;
    };
    const Row rows[] = {
        {"empty", ""},
        {"a byte", "B"},
        {"no bitmap", std::string(2000, 'x')},
        {"cut in the file header", good.substr(0, 13)},
        {"cut in the bitmap header", good.substr(0, 40)},
        {"only headers", good.substr(0, 54)},
        {"half", good.substr(0, good.size() / 2)},
        {"wider than its pixels", changed(18, 60000)},
        {"higher than its pixels", changed(22, 16384)},
        {"of no width", changed(18, 0)},
        {"of negative width", changed(18, 0xFFFFFDA8)},
        {"of the least height", changed(22, 0x80000000)},
        {"pixels behind the end", changed(10, 0x7FFFFFFF)},
        {"300 MB in a kilobyte", changed(18, 10000, 1024).replace(22, 2, "\x10\x27")},
        {"of 7 bits", changed(26, 7 << 16 | 1)},
        {"of an unknown compression", changed(30, 77)},
    };
    WriteMap(MapFile(101, 600, 400));
    for (const Row& row : rows) {
        Write("Map101c.bmp", row.art);
        ExpectFailure("Map101c.dat", {}, row.what);
    }
    std::filesystem::remove(Path("Map101c.bmp"));
    ExpectFailure("Map101c.dat", {"Could not find a map art file named: Map101c.bmp"}, "missing");
}

TEST_F(OpenMapTest, NamesFollowTheRuleOrAreRefused)
{
    const std::string rule =
        "There seems to be an error in the file name of the file containing the terrain data for this map.\n"
        "The file name for the terrain data for a Type 2 map must use this convention: 'Map' + 3 digit number + "
        "'c.dat'.\n"
        "The 3 digit number must be in the range from 100 to 999.\n"
        "Example:  Map101c.dat";
    struct Row {
        const char* name;
        std::string message;
    };
    const Row rows[] = {
        {"Map099c.dat", "Map099c.dat ?\n" + rule},
        {"Map000c.dat", "Map000c.dat ?\n" + rule},
        {"Mapabcc.dat", "Mapabcc.dat ?\n" + rule},
        {"M.dat", "M.dat ?\n" + rule},
        {"Map12", "Map12 ?\n" + rule},
        {"Xyz123.dat", "Could not find a map art file named: Map123c.bmp"},
        {"Map999", "Could not find a map art file named: Map999c.bmp"},
        {"Map123cc.dat", "Could not find a map art file named: Map123c.bmp"},
        {"Map101c.dat", "Could not find a map art file named: Map101c.bmp"},
    };
    for (const Row& row : rows) {
        Write(row.name, MapFile(101, 600, 400).Bytes());
        OpenMap(row.name);
        ThenCheck([&] { EXPECT_EQ(headless.sounds.size(), 1u) << "the alert sound with " << row.name; });
        ExpectMessage(row.message);
        ThenOpenTheGoodMap(row.name);
        Run();
        headless.sounds.clear();
    }
}

TEST_F(OpenMapTest, NamesAreFoundWithoutRegardToCaseAndInAnyFolder)
{
    struct Row {
        std::string folderName;
        const char* dataName;
        const char* artName;
        const char* chosen;
    };
    const std::string deep = std::string(100, 'd') + "/" + std::string(253 - 13 - 101 - folder.size(), 'e');
    const Row rows[] = {
        {".", "map101c.dat", "MAP101C.BMP", "map101c.dat"},
        {".", "MAP102C.DAT", "map102c.bmp", "Map102c.dat"},
        {"a folder  with blanks", "Map103c.dat", "Map103c.bmp", "Map103c.dat"},
        {"\xC3\xA9t\xC3\xA9", "Map104c.dat", "Map104c.bmp", "Map104c.dat"},
        {deep, "Map105c.dat", "Map105c.bmp", "Map105c.dat"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.folderName);
        std::filesystem::create_directories(Path(row.folderName));
        Write(row.folderName + "/" + row.dataName, MapFile(101, 600, 400).Bytes());
        Write(row.folderName + "/" + row.artName, ArtBytes(600, 400));
        OpenMap(row.folderName + "/" + row.chosen);
        ThenCheck([&] {
            EXPECT_EQ(TextsOf(TopDialog()), "");
            EXPECT_EQ(Title(), std::string("Kestrel Map Tool v105AA - ") + row.chosen);
            ExpectArt(row.chosen);
        });
        Quit();
        Run();
    }
    const std::string tooDeep = deep + "ee";
    std::filesystem::create_directories(Path(tooDeep));
    Write(tooDeep + "/Map101c.dat", MapFile(101, 600, 400).Bytes());
    Write(tooDeep + "/Map101c.bmp", ArtBytes(600, 400));
    ExpectFailure(tooDeep + "/Map101c.dat",
                  {"Could not open 'DAT' file. File may be damaged or in use. Quit program, restart, and try again."},
                  "a path of 255 characters");
}

TEST_F(OpenMapTest, ShortMemoryIsToldAndTheNextMapOpens)
{
    WriteMap(MapFile(101, 600, 400));
    for (const int successes : {0, 59}) { // the first and the last column
        ThenCheck([=] { FailAllocationAfter(successes); });
        OpenMap();
        ExpectMessage("Memory Allocation Error!", "Continue");
        ThenOpenTheGoodMap("short memory");
        Run();
    }
    ThenCheck([] { FailAllocationAfter(60); }); // the map image, which is not told of
    OpenMap();
    ThenOpenTheGoodMap("no memory for the map image");
    Run();
    ThenCheck([] { FailAllocationAfter(0); });
    OpenMap();
    ExpectMessage("Memory Allocation Error!", "Quit");
    Run();
}

// Counts and rectangle are taken as stored; whatever the program does with them stays inside the grid.
TEST_F(OpenMapTest, OddHeadersThatAreTakenLeaveTheProgramSound)
{
    struct Row {
        const char* what;
        std::vector<std::pair<int, int>> words;
    };
    const Row rows[] = {
        {"one cell", {{columnsWord, 1}, {rowsWord, 1}}},
        {"more cells than pixels", {{columnsWord, 310}, {rowsWord, 310}}},
        {"a map of one pixel", {{rightWord, 1}, {bottomWord, 1}}},
        {"not from 0", {{leftWord, 100}, {topWord, 50}, {rightWord, 700}, {bottomWord, 450}}},
        {"left of 0", {{leftWord, -300}, {topWord, -200}, {rightWord, 300}, {bottomWord, 200}}},
        {"at the far end", {{leftWord, 32000}, {rightWord, 32767}, {topWord, 32500}, {bottomWord, 32767}}},
        {"at the near end", {{leftWord, -32768}, {rightWord, -32000}, {topWord, -32768}, {bottomWord, -32500}}},
        {"numbers of any value", {{eastingWord, 32767}, {northingWord, -32768}, {versionWord, -1}, {idWord, -1}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        MapFile map(101, 600, 400);
        WriteMap(map);
        for (const auto& [index, value] : row.words) {
            map.words[index] = static_cast<int16_t>(value);
        }
        map.cells.assign(static_cast<size_t>(map.words[columnsWord]) * static_cast<size_t>(map.words[rowsWord]),
                         0xFFFF);
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
            OpenPalette(key);
            ClickItem(202);
            ScriptDrag({{10, 50}, {300, 200}, {600, 430}, {2, 2}});
            PressKeyWith(VK_MENU, [] { ScriptDrag({{10, 60}, {300, 200}, {620, 450}}); });
            ClickButton("Fill");
            ClosePalette();
        }
        Quit();
        Run();
    }
}

} // namespace
