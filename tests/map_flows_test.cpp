// Opening, creating, changing, saving and quitting, driven as a user would, with real files in a folder of their own.
#include "mapdata/map_bytes.h"
#include "platform/kernel/test_hooks.h"
#include "tests/dialog_driver.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

class MapFlowsTest : public DialogDriver {
  protected:
    void SetUp() override
    {
        DialogDriver::SetUp();
        startFolder = std::filesystem::current_path();
        std::string pattern = std::filesystem::temp_directory_path() / "kestrel-map-flows-XXXXXX";
        folder = std::string(mkdtemp(pattern.data())) + "/";
    }

    void TearDown() override
    {
        DialogDriver::TearDown();
        std::filesystem::current_path(startFolder);
        std::filesystem::remove_all(folder);
    }

    Bytes FileBytes(const std::string& name) const
    {
        std::ifstream file(folder + name, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), {});
    }

    bool Exists(const std::string& name) const
    {
        return std::filesystem::exists(folder + name);
    }

    void StoreFile(const std::string& name, const Bytes& bytes) const
    {
        std::ofstream file(folder + name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    // A black bitmap of 8 bits with a green pixel at the top-left corner.
    void StoreArt(const std::string& name, int width, int height) const
    {
        const uint32_t stride = static_cast<uint32_t>(width + 3) / 4 * 4;
        const uint32_t offset = 14 + 40 + 8;
        Bytes bytes;
        const auto add = [&bytes](uint32_t value, int count) {
            for (int i = 0; i < count; i++) {
                bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
            }
        };
        add('B' | 'M' << 8, 2);
        add(offset + stride * static_cast<uint32_t>(height), 4);
        add(0, 4);
        add(offset, 4);
        add(40, 4);
        add(static_cast<uint32_t>(width), 4);
        add(static_cast<uint32_t>(height), 4);
        add(1, 2);
        add(8, 2);
        for (uint32_t value : {0u, 0u, 0u, 0u, 2u, 0u}) {
            add(value, 4);
        }
        add(0, 4);
        add(0x00FF00, 4);
        bytes.resize(offset + stride * static_cast<size_t>(height));
        bytes[offset + stride * static_cast<size_t>(height - 1)] = 1;
        StoreFile(name, bytes);
    }

    void StoreMap(const std::string& name, int id, int width, int height) const
    {
        MapRecord record;
        record.mapID = static_cast<int16_t>(id);
        record.columnCount = static_cast<int16_t>(CellCountOf(width));
        record.rowCount = static_cast<int16_t>(CellCountOf(height));
        record.mapRect = {0, 0, static_cast<int16_t>(height), static_cast<int16_t>(width)};
        record.versionNumber = 123;
        strcpy(record.mapText, "carried");
        Bytes bytes(maxMapHeaderBytes);
        bytes.resize(EncodeMapHeader(&record, bytes.data()));
        for (int cell = 0; cell < record.columnCount * record.rowCount; cell++) {
            bytes.push_back(static_cast<uint8_t>(cell));
            bytes.push_back(static_cast<uint8_t>(cell >> 8));
        }
        StoreFile(name, bytes);
    }

    void StoreBothFiles()
    {
        StoreMap("Map101c.dat", 101, 600, 500);
        StoreArt("Map101c.bmp", 600, 500);
    }

    void Open(const std::string& name)
    {
        ScriptFile((folder + name).c_str());
        OpenMapCommand();
    }

    void Create(const std::string& name)
    {
        ScriptFile((folder + name).c_str());
        NewMapCommand();
    }

    // Notes the texts of the dialog that is up by then, and presses a button of it.
    void ScriptNoteAndPress(const std::string& button)
    {
        ScriptCall([this] { notes.push_back(TextsOf(TopDialog())); });
        ScriptButton(button);
    }

    std::string WindowTitle() const
    {
        char title[256];
        GetWTitle(shell.mapWindow, title);
        return title;
    }

    std::string folder;
    std::filesystem::path startFolder;
    std::vector<std::string> notes;
};

using Notes = std::vector<std::string>;

// ---- opening ----

TEST_F(MapFlowsTest, OpeningShowsTheMapAndKeepsItsFileOpen)
{
    StoreBothFiles();
    Open("Map101c.dat");
    EXPECT_EQ(shell.mapShown, 1);
    EXPECT_EQ(WindowTitle(), "Kestrel Map Tool v105AA - Map101c.dat");
    EXPECT_NE(currentMap.openDataFile, noFile);
    EXPECT_EQ(currentMap.loadedMapID, 101);
    EXPECT_EQ(currentMap.record.columnCount, 60);
    EXPECT_EQ(*CellAt(59, 49), 2999);
    EXPECT_EQ(currentMap.mapModified, 0);
    EXPECT_EQ(GetPixel(view.mapImage->dc, 0, 0), RGB(0, 255, 0));
    EXPECT_EQ(GetPixel(view.mapImage->dc, 1, 0), 0u);
    EXPECT_TRUE(view.hasScrollBars);
    EXPECT_TRUE(notes.empty());
}

TEST_F(MapFlowsTest, NamesDecideWhetherAMapCanBeOpened)
{
    const std::string rule = "There seems to be an error in the file name of the file containing the terrain data";
    const std::string missing = "Could not find a map art file named: ";
    const struct {
        const char* name;
        std::string message; // what the message begins with, behind the name where it has it
    } cases[] = {
        {"Map099c.dat", "Map099c.dat ?\n" + rule},
        {"Mapxyzc.dat", "Mapxyzc.dat ?\n" + rule},
        {"a.dat", "a.dat ?\n" + rule},
        {"Map102c.dat", missing + "Map102c.bmp"},
        {"Xyz123.dat", missing + "Map123c.bmp"},
        {"Map101c.dat", "Could not open 'DAT' file."},
        {"Map101c.dat.older", missing + "Map101c.bmp"},
    };
    StoreArt("Map101c.bmp", 600, 500);
    for (const auto& test : cases) {
        notes.clear();
        ScriptNoteAndPress("OK");
        Open(test.name);
        ASSERT_EQ(notes.size(), 1u);
        EXPECT_EQ(notes[0].substr(0, test.message.size()), test.message) << test.name;
        EXPECT_EQ(shell.mapShown, 0);
        EXPECT_EQ(currentMap.openDataFile, noFile);
    }
    ScriptFileCancel();
    OpenMapCommand();
    EXPECT_EQ(HeadlessPopup(), nullptr);
}

TEST_F(MapFlowsTest, FileNamesMatchWithoutRegardToCase)
{
    StoreMap("MAP101C.DAT", 101, 600, 500);
    StoreArt("map101c.Bmp", 600, 500);
    Open("MAP101C.DAT");
    EXPECT_EQ(shell.mapShown, 1);
}

TEST_F(MapFlowsTest, AMapOfTheWrongSizeGetsItsMessagesInOrder)
{
    const std::string damaged = "Could not load terrain data from 'DAT' file.";
    const std::string width = "Map width error.";
    const std::string height = "Map height error.";
    const struct {
        int width;
        int height;
        std::vector<std::string> messages;
    } cases[] = {
        {3200, 3300, {width, height, damaged}},
        {3110, 500, {width, damaged}},
        {600, 3101, {height, damaged}},
        {0, 500, {damaged}},
        {600, -20, {damaged}},
    };
    StoreArt("Map101c.bmp", 600, 500);
    for (const auto& test : cases) {
        StoreMap("Map101c.dat", 101, test.width, test.height);
        notes.clear();
        for (size_t i = 0; i < test.messages.size(); i++) {
            ScriptNoteAndPress("OK");
        }
        Open("Map101c.dat");
        ASSERT_EQ(notes.size(), test.messages.size());
        for (size_t i = 0; i < notes.size(); i++) {
            EXPECT_EQ(notes[i].substr(0, test.messages[i].size()), test.messages[i]);
        }
        EXPECT_EQ(shell.mapShown, 0);
        EXPECT_EQ(currentMap.openDataFile, noFile);
    }
}

TEST_F(MapFlowsTest, AFailedOpenLeavesNothingBehindAndTheNextOneWorks)
{
    StoreBothFiles();
    StoreFile("Map102c.bmp", {'B', 'M', 0, 0});
    StoreMap("Map102c.dat", 102, 900, 800);
    const int blocks = GlobalBlocksInUse();
    for (int attempt = 0; attempt < 2; attempt++) {
        Open("Map102c.dat"); // the art cannot be read: no message
        EXPECT_EQ(shell.mapShown, 0);
        EXPECT_EQ(currentMap.openDataFile, noFile);
        EXPECT_EQ(currentMap.allocatedColumns, 0);
        EXPECT_EQ(view.mapImage, nullptr);
        EXPECT_NE(shell.interfaceDC, nullptr) << "loaded again";
        EXPECT_FALSE(view.hasScrollBars);
        EXPECT_EQ(GlobalBlocksInUse(), blocks);
    }
    ScriptNoteAndPress("Continue");
    FailAllocationAfter(10); // a column in the middle
    Open("Map101c.dat");
    FailAllocationAfter(-1);
    EXPECT_EQ(notes, Notes{"Memory Allocation Error!"});
    EXPECT_EQ(currentMap.allocatedColumns, 0);
    EXPECT_EQ(currentMap.openDataFile, noFile);
    EXPECT_EQ(GlobalBlocksInUse(), blocks);

    Open("Map101c.dat");
    EXPECT_EQ(shell.mapShown, 1);
    const HeadlessBar* bar = HeadlessScrollBar(0);
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->highestPosition + bar->page, 600 + 1) << "of this map, not of the failed one";
}

// ---- new map ----

TEST_F(MapFlowsTest, ANewMapTakesItsSizeFromTheArtAndItsNumbersFromTheDialog)
{
    StoreArt("Map345c.bmp", 455, 225);
    currentMap.record.auxWord1 = 7;
    ScriptCall([this] {
        notes.push_back(TextsOf(TopDialog()));
        const Point version = CentreOf(FindItemByID(TopDialog(), 105)->rect);
        ScriptPressAndRelease(TopDialog(), version, version);
        ScriptText("99");
        ScriptKey(VK_RETURN);
        ScriptKey(VK_RETURN); // OK, which is refused
        ScriptNoteAndPress("OK");
        ScriptCall([] {
            ASSERT_EQ(TopDialog()->activeEditItem, FindItemByID(TopDialog(), 105));
            EXPECT_EQ(GetItemValue(TopDialog(), 105, 0), 99);
        });
        ScriptText("250");
        ScriptCall([] {
            const Point easting = CentreOf(FindItemByID(TopDialog(), 106)->rect);
            ScriptPressAndRelease(TopDialog(), easting, easting);
        });
        ScriptText("42");
        ScriptKey(VK_RETURN);
        ScriptButton("OK");
    });
    Create("Map345c.bmp");
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes[0].substr(0, notes[0].find(": Map version")),
              "Map345c.dat and Map345c.bmp\n345\n: Map ID number (100 to 999)\n455\n: Width of map in pixels (450 to "
              "3100)\n225\n: Height of map in pixels (220 to 3100)\n");
    EXPECT_EQ(notes[1], "Map version error. Limits are 100 through 999.");
    EXPECT_EQ(shell.mapShown, 1);
    const MapRecord& record = currentMap.record;
    EXPECT_EQ(record.mapID, 345);
    EXPECT_EQ(currentMap.loadedMapID, 345);
    EXPECT_EQ(record.columnCount, 46);
    EXPECT_EQ(record.rowCount, 23);
    EXPECT_EQ(record.mapRect.right, 455);
    EXPECT_EQ(record.areaFlag1, 1);
    EXPECT_EQ(record.areaRect1.bottom, 225);
    EXPECT_EQ(record.markerWord, 1);
    EXPECT_EQ(record.versionNumber, 250) << "99 with 250 typed anew";
    EXPECT_EQ(record.utmEasting, 42);
    EXPECT_EQ(record.auxWord1, 7);
    EXPECT_EQ(*CellAt(45, 22), 0);
    EXPECT_EQ(currentMap.mapModified, 1);
    EXPECT_EQ(WindowTitle(), "Kestrel Map Tool v105AA - Map345c.dat");
}

TEST_F(MapFlowsTest, ArtNamesAreCheckedWhole)
{
    const std::pair<const char*, bool> names[] = {
        {"map101C.BMP", true},  {"Map999c.bmp", true},  {"Map10c.bmp", false},  {"Map101c.bmpx", false},
        {"Map099c.bmp", false}, {"Mop101c.bmp", false}, {"Map1x1c.bmp", false}, {"Map101d.bmp", false},
    };
    for (const auto& [name, good] : names) {
        strcpy(currentMap.artFileSpec.name, name);
        int16_t id = 0;
        notes.clear();
        if (!good) {
            ScriptNoteAndPress("OK");
        }
        EXPECT_EQ(CheckArtFileName(&id), good ? 0 : 1) << name;
        EXPECT_EQ(id != 0, good);
        if (!good) {
            EXPECT_EQ(notes[0].substr(0, strlen(name) + 2), std::string(name) + " ?");
        }
    }
}

TEST_F(MapFlowsTest, ArtOfAWrongSizeCanOnlyBeCancelled)
{
    const std::pair<int, int> sizes[] = {{449, 300}, {3101, 300}, {500, 219}, {500, 3101}};
    for (const auto& [width, height] : sizes) {
        StoreArt("Map101c.bmp", width, height);
        notes.clear();
        ScriptButton("OK");
        ScriptNoteAndPress("OK");
        ScriptButton("Cancel");
        Create("Map101c.bmp");
        ASSERT_EQ(notes.size(), 1u);
        const bool wrongWidth = width < 450 || width > 3100;
        EXPECT_EQ(notes[0].substr(0, 10), wrongWidth ? "Map width " : "Map height");
        EXPECT_EQ(shell.mapShown, 0);
        EXPECT_EQ(currentMap.mapModified, 0);
    }
    StoreFile("Map101c.bmp", {'B', 'M'});
    Create("Map101c.bmp"); // not a bitmap: no message
    EXPECT_EQ(shell.mapShown, 0);
}

// ---- properties ----

TEST_F(MapFlowsTest, PropertiesChangeOnlyWithOK)
{
    StoreBothFiles();
    Open("Map101c.dat");
    const auto type = [](int32_t id, const char* text) {
        ScriptCall([=] {
            const Point field = CentreOf(FindItemByID(TopDialog(), id)->rect);
            ScriptPressAndRelease(TopDialog(), field, field);
            ScriptText(text);
        });
    };
    type(105, "222");
    ScriptButton("Cancel");
    VersionDialog();
    EXPECT_EQ(currentMap.record.versionNumber, 123);
    EXPECT_EQ(currentMap.mapModified, 0);

    type(105, "222");
    ScriptButton("OK");
    VersionDialog();
    EXPECT_EQ(currentMap.record.versionNumber, 222);
    EXPECT_EQ(currentMap.mapModified, 1);

    type(107, "100");
    ScriptButton("OK");
    ScriptNoteAndPress("OK");
    type(106, "98");
    type(107, "7");
    ScriptButton("OK");
    UTMDialog();
    EXPECT_EQ(notes, Notes{"UTM Northing error. Limits are 0 through 99."});
    EXPECT_EQ(currentMap.record.utmEasting, 98);
    EXPECT_EQ(currentMap.record.utmNorthing, 7);

    type(105, "202");
    ScriptButton("OK");
    MapIDDialog();
    EXPECT_EQ(currentMap.record.mapID, 202);
    EXPECT_EQ(currentMap.loadedMapID, 101);
    EXPECT_EQ(WindowTitle(), "Map202c.dat");
}

// ---- saving and quitting ----

TEST_F(MapFlowsTest, SavingKeepsOneBackup)
{
    StoreBothFiles();
    const Bytes original = FileBytes("Map101c.dat");
    Open("Map101c.dat");
    currentMap.mapModified = 1;
    ScriptNoteAndPress("No");
    EXPECT_EQ(SaveMap(true), 1);
    EXPECT_EQ(currentMap.mapModified, 1);
    EXPECT_FALSE(Exists("Map101c.dat_old"));
    EXPECT_EQ(notes, Notes{"Do you really want to permanently change the map data file?  This will replace the old "
                           "'.dat'. file."});

    *CellAt(0, 0) = 0xABCD;
    ScriptButton("Yes");
    EXPECT_EQ(SaveMap(true), 0);
    EXPECT_EQ(currentMap.mapModified, 0);
    EXPECT_EQ(currentMap.openDataFile, noFile);
    EXPECT_EQ(FileBytes("Map101c.dat_old"), original);
    const Bytes first = FileBytes("Map101c.dat");
    EXPECT_EQ(first.size(), original.size());
    EXPECT_EQ(first[mapHeaderWordBytes + 8], 0xCD);

    *CellAt(0, 0) = 0x1111;
    EXPECT_EQ(SaveMap(false), 0);
    EXPECT_EQ(FileBytes("Map101c.dat_old"), first);
    EXPECT_NE(FileBytes("Map101c.dat"), first);
}

TEST_F(MapFlowsTest, AChangedIdentityIsSavedUnderItsOwnNameWithoutABackup)
{
    StoreBothFiles();
    const Bytes original = FileBytes("Map101c.dat");
    Open("Map101c.dat");
    currentMap.record.mapID = 102;
    EXPECT_EQ(SaveMap(false), 0);
    currentMap.record.versionNumber = 777;
    EXPECT_EQ(SaveMap(false), 0);
    EXPECT_EQ(FileBytes("Map101c.dat"), original);
    EXPECT_FALSE(Exists("Map101c.dat_old"));
    EXPECT_FALSE(Exists("Map102c.dat_old"));
    EXPECT_STREQ(currentMap.dataFileSpec.name, "Map102c.dat");
    EXPECT_EQ(FileBytes("Map102c.dat")[54], 777 & 0xFF);
}

TEST_F(MapFlowsTest, AFolderThatCannotBeWrittenFailsTheSaveAndKeepsTheWork)
{
    StoreBothFiles();
    Open("Map101c.dat");
    currentMap.mapModified = 1;
    currentMap.record.mapID = 102;
    std::filesystem::create_directory(folder + "Map102c.dat"); // a folder stands where the file should
    std::filesystem::create_directory(folder + "Map102c.dat/full");
    EXPECT_EQ(SaveMap(false), 1);
    EXPECT_EQ(currentMap.mapModified, 1);
    EXPECT_EQ(currentMap.openDataFile, noFile);
    EXPECT_TRUE(Exists("Map101c.dat"));
}

TEST_F(MapFlowsTest, QuittingAsksAboutUnsavedWork)
{
    StoreArt("Map101c.bmp", 600, 500);
    ScriptButton("OK");
    Create("Map101c.bmp");
    ASSERT_EQ(currentMap.mapModified, 1);

    ScriptNoteAndPress("Cancel");
    QuitCommand();
    EXPECT_EQ(shell.quitRequested, 0u);
    ScriptButton("No Save");
    QuitCommand();
    EXPECT_EQ(shell.quitRequested, 1u);
    EXPECT_FALSE(Exists("Map101c.dat"));
    EXPECT_EQ(notes, Notes{"Save map work before quitting?"});

    shell.quitRequested = 0;
    ScriptKey(VK_RETURN); // Save
    QuitCommand();
    EXPECT_EQ(shell.quitRequested, 1u);
    EXPECT_TRUE(Exists("Map101c.dat"));
    EXPECT_FALSE(Exists("Map101c.dat_old")) << "there was no file yet";

    shell.quitRequested = 0;
    EXPECT_EQ(AskSaveBeforeQuit(), 2) << "nothing to save";
    ScriptButton("No");
    QuitCommand();
    EXPECT_EQ(shell.quitRequested, 0u);
    ScriptButton("Yes");
    QuitCommand();
    EXPECT_EQ(shell.quitRequested, 1u);
}

} // namespace
