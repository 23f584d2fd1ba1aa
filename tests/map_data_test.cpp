// The map data file and the file layer under it, with real files in a folder of their own.
#include "mapdata/data_file.h"
#include "mapdata/map_bytes.h"
#include "platform/kernel/test_hooks.h"
#include "tests/map_files.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace {

class MapDataTest : public testing::Test, public TemporaryFolder {
  protected:
    void SetUp() override
    {
        MakeFileSpec((folder + "/").c_str(), "Map101c.dat", &spec);
        ReleaseCellColumns();
        currentMap = {};
    }

    void TearDown() override
    {
        ReleaseCellColumns();
        currentMap = {};
    }

    HFILE Open()
    {
        HFILE file = noFile;
        EXPECT_EQ(OpenFileSpecRead(&spec, &file), 0);
        return file;
    }

    HFILE Create()
    {
        HFILE file = noFile;
        EXPECT_EQ(CreateFileSpec(&spec, &file), 0);
        return file;
    }

    int16_t WriteFile()
    {
        const HFILE file = Create();
        const int16_t status = WriteMapData(file);
        CloseFile(file);
        return status;
    }

    // 0, or the number of the step that failed.
    int ReadFile(const std::string& bytes)
    {
        Write("Map101c.dat", bytes);
        const HFILE file = Open();
        const int failed = ReadMapHeader(file) != 0 ? 1 : AllocateCellColumns() != 0 ? 2 : ReadMapCells(file) != 0;
        CloseFile(file);
        return failed;
    }

    FileSpec spec;
};

// Words 10, 20, 30 and so on, but for a size of 21 by 11 pixels, a text and the cells 0x1101, 0x1102 and so on.
MapFile SmallMap(const std::string& text = "")
{
    MapFile map(10, 21, 11);
    for (int i = 0; i < 28; i++) {
        if (i < columnsWord || i > bottomWord) {
            map.words[i] = static_cast<int16_t>(10 * (i + 1));
        }
    }
    map.text = text;
    for (size_t i = 0; i < 6; i++) {
        map.cells[i] = static_cast<uint16_t>(0x1101 + i);
    }
    return map;
}

// The words that the record holds now, and its text.
MapFile NowInMemory()
{
    uint8_t bytes[maxMapHeaderBytes];
    EncodeMapHeader(&currentMap.record, bytes);
    MapFile map(0, 10, 10);
    memcpy(map.words, bytes, sizeof map.words);
    map.text = currentMap.record.mapText;
    return map;
}

TEST_F(MapDataTest, EveryByteOfAFileLandsInItsFieldAndComesBackWithTheMarkerSet)
{
    ASSERT_EQ(ReadFile(SmallMap("Kestrel").Bytes()), 0);
    const MapRecord& record = currentMap.record;
    const auto isRect = [](const Rect& rect, int left, int top, int right, int bottom) {
        return rect.left == left && rect.top == top && rect.right == right && rect.bottom == bottom;
    };
    EXPECT_TRUE(record.mapID == 10 && currentMap.loadedMapID == 10);
    EXPECT_TRUE(record.auxWord1 == 20 && record.auxWord2 == 30);
    EXPECT_TRUE(record.columnCount == 3 && record.rowCount == 2);
    EXPECT_TRUE(isRect(record.mapRect, 0, 0, 21, 11));
    EXPECT_TRUE(record.areaFlag1 == 100 && isRect(record.areaRect1, 110, 120, 130, 140));
    EXPECT_TRUE(record.areaFlag2 == 150 && isRect(record.areaRect2, 160, 170, 180, 190));
    EXPECT_TRUE(record.areaFlag3 == 200 && isRect(record.areaRect3, 210, 220, 230, 240));
    EXPECT_EQ(record.markerWord, 1) << "whatever the file holds";
    EXPECT_TRUE(record.utmEasting == 260 && record.utmNorthing == 270 && record.versionNumber == 280);
    EXPECT_STREQ(record.mapText, "Kestrel");
    EXPECT_EQ(currentMap.cellColumns[2][0], 0x1103) << "rows come one after the other";
    EXPECT_EQ(currentMap.cellColumns[0][1], 0x1104);
    EXPECT_TRUE(isRect(currentMap.editableRect, 10, 10, 11, 1));

    for (const char* text : {"", "K", "carried, never shown"}) {
        MapFile map = SmallMap(text);
        ASSERT_EQ(ReadFile(map.Bytes()), 0);
        ASSERT_EQ(WriteFile(), 0);
        map.words[markerFieldWord] = 1;
        EXPECT_EQ(Read("Map101c.dat"), map.Bytes()) << text;
    }
}

TEST_F(MapDataTest, ALargeMapKeepsEveryBitOfEveryCell)
{
    for (const auto& [columns, rows] :
         {std::pair{46, 23}, std::pair{310, 310}, std::pair{1, 310}, std::pair{310, 1}}) {
        MapFile map(101, 10 * columns, 10 * rows);
        std::mt19937 random(columns);
        for (uint16_t& cell : map.cells) {
            cell = static_cast<uint16_t>(random());
        }
        ASSERT_EQ(ReadFile(map.Bytes()), 0);
        for (size_t i = 0; i < map.cells.size(); i++) {
            ASSERT_EQ(currentMap.cellColumns[i % columns][i / columns], map.cells[i]) << columns << " columns, " << i;
        }
        ASSERT_EQ(WriteFile(), 0);
        EXPECT_TRUE(Read("Map101c.dat") == map.Bytes());
    }
}

TEST_F(MapDataTest, AFileThatEndsEarlyLeavesWhatItLacks)
{
    const MapFile whole = SmallMap("abc");
    MapFile old = SmallMap("old");
    for (int i = 0; i < 28; i++) {
        if (i < columnsWord || i > bottomWord) {
            old.words[i] = 0x7777;
        }
    }
    for (size_t length = 0; length <= whole.Bytes().size(); length++) {
        SCOPED_TRACE(length);
        ASSERT_EQ(ReadFile(old.Bytes()), 0);
        ASSERT_EQ(ReadFile(whole.Bytes().substr(0, length)), 0);
        const MapFile now = NowInMemory();
        for (size_t i = 0; i < 28; i++) {
            if (i != markerFieldWord && 2 * i + 1 != length) { // of a word cut in two the low byte is new
                EXPECT_EQ(now.words[i], (2 * i + 1 < length ? whole : old).words[i]) << "word " << i;
            }
        }
        EXPECT_EQ(now.text, length <= 56 ? "old" : whole.text.substr(0, std::min<size_t>(length - 56, 3)));
        for (size_t cell = 0; cell < 6; cell++) {
            const size_t end = 60 + 2 * cell + 2;
            if (end - 1 != length) {
                EXPECT_EQ(currentMap.cellColumns[cell % 3][cell / 3], end <= length ? 0x1101 + cell : 0) << cell;
            }
        }
    }
    currentMap.record = {};
    EXPECT_EQ(ReadFile(""), 1) << "no map for a program that has none";
}

TEST_F(MapDataTest, HeaderWordsOfAnyValueAreTakenOrRefusedByTheSizeRulesOnly)
{
    for (int word = 0; word < 28; word++) {
        for (int value : {-32768, -1, 0, 1, 21, 22, 310, 311, 3100, 3101, 3121, 3122, 32767}) {
            SCOPED_TRACE(testing::Message() << "word " << word << " = " << value);
            MapFile map = SmallMap();
            map.words[word] = static_cast<int16_t>(value);
            const int width = map.words[rightWord] - map.words[leftWord];
            const int height = map.words[bottomWord] - map.words[topWord];
            const bool isCount = word == columnsWord || word == rowsWord;
            const bool isDamaged = (isCount && (value < 1 || value > 310)) || width < 1 || height < 1;
            const int expected = (width > 3100 ? mapTooWide : 0) | (height > 3100 ? mapTooHigh : 0) |
                                 (isDamaged ? mapHeaderDamaged : 0);
            size_t taken = 0;
            const std::string bytes = map.Bytes();
            EXPECT_EQ(DecodeMapHeader(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(),
                                      &currentMap.record, &taken),
                      expected);
            if (expected == 0) {
                map.words[markerFieldWord] = 1;
                EXPECT_EQ(taken, 57u);
                EXPECT_EQ(memcmp(NowInMemory().words, map.words, sizeof map.words), 0);
            }
        }
    }
}

TEST_F(MapDataTest, ATextOfUpTo255CharactersIsKeptAndALongerOneIsDamage)
{
    for (size_t length : {254u, 255u, 256u, 300u}) {
        ASSERT_EQ(ReadFile(SmallMap(std::string(length, 't')).Bytes()), length <= 255 ? 0 : 1) << length;
        if (length <= 255) {
            EXPECT_EQ(strlen(currentMap.record.mapText), length);
            EXPECT_EQ(currentMap.cellColumns[2][1], 0x1106) << "the cells begin behind the zero byte";
        }
    }
}

TEST_F(MapDataTest, AFieldOfEveryTypeComesBackAsItWasWritten)
{
    const struct {
        int type;
        size_t size;
    } rows[] = {{byteField, 1}, {wordField, 2}, {28, 2}, {cellField, 2},   {8, 8},
                {10, 8},        {4, 4},         {6, 7},  {pascalField, 6}, {countedField, 5}};
    char value[] = "\5field\0x"; // five characters behind their number, a text of six
    std::string expected;
    HFILE file = Create();
    for (const auto& row : rows) {
        EXPECT_EQ(TransferField(writeField, row.type, file, value, 5), 0) << row.type;
        expected.append(value, row.size);
    }
    CloseFile(file);
    EXPECT_TRUE(Read("Map101c.dat") == expected);
    file = Open();
    for (const auto& row : rows) {
        char back[16] = "";
        EXPECT_EQ(TransferField(readField, row.type, file, back, 5), 0) << row.type;
        EXPECT_TRUE(std::string(back, 16) == std::string(value, row.size).append(16 - row.size, 0)) << row.type;
    }
    for (const int type : {wordField, textField}) { // at the end of the file
        EXPECT_EQ(TransferField(readField, type, file, value, 0), 0);
        EXPECT_STREQ(value, "\5field");
    }
    CloseFile(file);
    char text[256] = "";
    for (const int type : {textField, pascalField, wordField}) {
        EXPECT_EQ(TransferField(readField, type, HFILE_ERROR, text, 0), -1) << type;
    }
    EXPECT_EQ(TransferField(writeField, countedField, HFILE_ERROR, text, -1), -1);
    currentMap.record.columnCount = 1; // cells without their columns, then columns without a file
    currentMap.record.rowCount = 1;
    EXPECT_TRUE(ReadMapCells(HFILE_ERROR) != 0 && WriteMapData(HFILE_ERROR) != 0);
    EXPECT_TRUE(AllocateCellColumns() == 0 && WriteMapData(HFILE_ERROR) != 0);
    for (const size_t length : {3, 256}) { // a text without its zero byte: the last of the file, or too long
        Write("Map101c.dat", std::string(length, 'a'));
        file = Open();
        EXPECT_EQ(TransferField(readField, textField, file, text, 0), length == 3 ? 0 : -1);
        CloseFile(file);
    }
}

TEST_F(MapDataTest, ColumnsAreAllocatedInPlaceOfTheOldOnesAndReleasedWhole)
{
    const int before = GlobalBlocksInUse();
    currentMap.record.rowCount = 23;
    for (const int count : {46, 45}) {
        currentMap.record.columnCount = static_cast<int16_t>(count);
        ASSERT_EQ(AllocateCellColumns(), 0);
        EXPECT_EQ(GlobalBlocksInUse(), before + count);
        currentMap.cellColumns[count - 1][22] = 0xFFFF;
    }
    EXPECT_EQ(currentMap.cellColumns[45], nullptr);
    ClearAllCells();
    EXPECT_EQ(currentMap.cellColumns[44][22], 0);
    currentMap.record.columnCount = 1; // the record of a failed open may say anything
    ReleaseCellColumns();
    for (int impossible : {0, -5, 311, 32767}) {
        currentMap.record.columnCount = static_cast<int16_t>(impossible);
        EXPECT_EQ(AllocateCellColumns(), 1);
    }
    EXPECT_EQ(GlobalBlocksInUse(), before);
}

// ---- the file layer ----

TEST_F(MapDataTest, PathsThatDoNotFitAreRefusedAndNeverCut)
{
    const std::string deep = folder + "/" + std::string(252 - folder.size(), 'd');
    HFILE file = noFile;
    for (const char* name : {"/abc", "/a"}) {
        FileSpec tooLong;
        ASSERT_EQ(MakeFileSpec(deep.c_str(), name, &tooLong), 0);
        EXPECT_EQ(CreateFileSpec(&tooLong, &file), ERROR_FILENAME_EXCED_RANGE);
        EXPECT_EQ(OpenFileSpecRead(&tooLong, &file), ERROR_FILENAME_EXCED_RANGE);
        EXPECT_EQ(RenameFileSpec(&tooLong, "a"), ERROR_FILENAME_EXCED_RANGE);
    }
    char path[256];
    FileSpec longest;
    ASSERT_EQ(MakeFileSpec(deep.c_str(), "/", &longest), 0);
    EXPECT_TRUE(FullPath(&longest, path)) << "254 characters";
    EXPECT_EQ(strlen(path), 254u);
    ASSERT_EQ(MakeFileSpec(deep.c_str(), "12345678", &longest), 0);
    EXPECT_EQ(DeleteFileSpec(&longest), ERROR_FILENAME_EXCED_RANGE);
    Write("Map101c.dat", "7");
    EXPECT_EQ(RenameFileSpec(&spec, std::string(260, 'n').c_str()), ERROR_FILENAME_EXCED_RANGE);
    EXPECT_EQ(Read("Map101c.dat"), "7");
}

} // namespace
