// The map data file and the file layer under it, with real files in a folder of their own.
#include "mapdata/data_file.h"
#include "mapdata/map_bytes.h"
#include "platform/kernel/test_hooks.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

class MapDataTest : public testing::Test {
  protected:
    void SetUp() override
    {
        std::string pattern = std::filesystem::temp_directory_path() / "kestrel-map-data-XXXXXX";
        folder = std::string(mkdtemp(pattern.data())) + "/";
        MakeFileSpec(folder.c_str(), "Map101c.dat", &spec);
        ReleaseCellColumns();
        currentMap = {};
    }

    void TearDown() override
    {
        ReleaseCellColumns();
        currentMap = {};
        std::filesystem::remove_all(folder);
    }

    Bytes FileBytes(const char* name) const
    {
        std::ifstream file(folder + name, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), {});
    }

    void StoreFile(const Bytes& bytes) const
    {
        std::ofstream file(folder + "Map101c.dat", std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    int16_t WriteFile()
    {
        HFILE file = noFile;
        EXPECT_EQ(CreateFileSpec(&spec, &file), 0);
        const int16_t status = WriteMapData(file);
        CloseFile(file);
        return status;
    }

    // 0, or the number of the step that failed.
    int ReadFile()
    {
        HFILE file = noFile;
        EXPECT_EQ(OpenFileSpecRead(&spec, &file), 0);
        int failed = 0;
        if (ReadMapHeader(file) != 0) {
            failed = 1;
        } else if (AllocateCellColumns() != 0) {
            failed = 2;
        } else if (ReadMapCells(file) != 0) {
            failed = 3;
        }
        CloseFile(file);
        return failed;
    }

    std::string folder;
    FileSpec spec;
};

int16_t WordAt(const Bytes& bytes, size_t index)
{
    return static_cast<int16_t>(bytes[2 * index] | bytes[2 * index + 1] << 8);
}

void SetWordAt(Bytes& bytes, size_t index, int value)
{
    bytes[2 * index] = static_cast<uint8_t>(value & 0xFF);
    bytes[2 * index + 1] = static_cast<uint8_t>((value >> 8) & 0xFF);
}

// Words 10, 20, 30 and so on, but for a size of 21 by 11 pixels, a text and the cells 0x1101, 0x1102 and so on.
Bytes SmallMap(const std::string& text)
{
    Bytes bytes(mapHeaderWordBytes);
    for (size_t i = 0; i < mapHeaderWordCount; i++) {
        SetWordAt(bytes, i, static_cast<int>(10 * (i + 1)));
    }
    SetWordAt(bytes, 3, 3); // columns
    SetWordAt(bytes, 4, 2); // rows
    SetWordAt(bytes, 5, 0);
    SetWordAt(bytes, 6, 0);
    SetWordAt(bytes, 7, 21); // right
    SetWordAt(bytes, 8, 11); // bottom
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
    for (int cell = 1; cell <= 6; cell++) {
        bytes.push_back(static_cast<uint8_t>(cell));
        bytes.push_back(0x11);
    }
    return bytes;
}

TEST_F(MapDataTest, EveryByteOfAFileLandsInItsField)
{
    StoreFile(SmallMap("Kestrel"));
    ASSERT_EQ(ReadFile(), 0);
    const MapRecord& record = currentMap.record;
    EXPECT_EQ(record.mapID, 10);
    EXPECT_EQ(currentMap.loadedMapID, 10);
    EXPECT_EQ(record.auxWord1, 20);
    EXPECT_EQ(record.auxWord2, 30);
    EXPECT_EQ(record.columnCount, 3);
    EXPECT_EQ(record.rowCount, 2);
    EXPECT_EQ(record.mapRect.right, 21);
    EXPECT_EQ(record.mapRect.bottom, 11);
    EXPECT_EQ(record.areaFlag1, 100);
    EXPECT_EQ(record.areaRect1.left, 110);
    EXPECT_EQ(record.areaRect1.top, 120);
    EXPECT_EQ(record.areaRect1.right, 130);
    EXPECT_EQ(record.areaRect1.bottom, 140);
    EXPECT_EQ(record.areaFlag2, 150);
    EXPECT_EQ(record.areaRect2.left, 160);
    EXPECT_EQ(record.areaRect2.bottom, 190);
    EXPECT_EQ(record.areaFlag3, 200);
    EXPECT_EQ(record.areaRect3.top, 220);
    EXPECT_EQ(record.areaRect3.right, 230);
    EXPECT_EQ(record.markerWord, 1) << "whatever the file holds";
    EXPECT_EQ(record.utmEasting, 260);
    EXPECT_EQ(record.utmNorthing, 270);
    EXPECT_EQ(record.versionNumber, 280);
    EXPECT_STREQ(record.mapText, "Kestrel");
    EXPECT_EQ(currentMap.cellColumns[2][0], 0x1103) << "rows come one after the other";
    EXPECT_EQ(currentMap.cellColumns[0][1], 0x1104);
    EXPECT_EQ(currentMap.editableRect.left, 10);
    EXPECT_EQ(currentMap.editableRect.bottom, 1);
}

TEST_F(MapDataTest, WritingGivesTheBytesThatWereReadWithTheMarkerSet)
{
    for (const char* text : {"", "K", "carried, never shown"}) {
        Bytes bytes = SmallMap(text);
        StoreFile(bytes);
        ASSERT_EQ(ReadFile(), 0);
        ASSERT_EQ(WriteFile(), 0);
        SetWordAt(bytes, 24, 1);
        EXPECT_EQ(FileBytes("Map101c.dat"), bytes) << text;
    }
}

TEST_F(MapDataTest, ALargeMapKeepsEveryBitOfEveryCell)
{
    for (const auto& [columns, rows] :
         {std::pair{46, 23}, std::pair{310, 310}, std::pair{1, 310}, std::pair{310, 1}}) {
        currentMap.record.columnCount = static_cast<int16_t>(columns);
        currentMap.record.rowCount = static_cast<int16_t>(rows);
        currentMap.record.mapRect = {0, 0, static_cast<int16_t>(10 * rows), static_cast<int16_t>(10 * columns)};
        ASSERT_EQ(AllocateCellColumns(), 0);
        std::mt19937 random(columns);
        std::vector<TerrainCell> cells;
        for (int y = 0; y < rows; y++) {
            for (int x = 0; x < columns; x++) {
                cells.push_back(currentMap.cellColumns[x][y] = static_cast<TerrainCell>(random()));
            }
        }
        ASSERT_EQ(WriteFile(), 0);
        EXPECT_EQ(FileBytes("Map101c.dat").size(), 57u + 2u * cells.size());
        ASSERT_EQ(ReadFile(), 0);
        for (size_t i = 0; i < cells.size(); i++) {
            ASSERT_EQ(currentMap.cellColumns[i % columns][i / columns], cells[i])
                << columns << " columns, cell " << i;
        }
    }
}

TEST_F(MapDataTest, AFileThatEndsEarlyLeavesWhatItLacks)
{
    const Bytes whole = SmallMap("abc");
    const size_t textEnd = mapHeaderWordBytes + 4;
    for (size_t length = 0; length <= whole.size(); length++) {
        SCOPED_TRACE(length);
        Bytes old = SmallMap("old");
        for (size_t i = 0; i < mapHeaderWordCount; i++) {
            if (i < 3 || i > 8) {
                SetWordAt(old, i, 0x7777);
            }
        }
        StoreFile(old);
        ASSERT_EQ(ReadFile(), 0);
        StoreFile(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)));
        ASSERT_EQ(ReadFile(), 0);

        uint8_t encoded[maxMapHeaderBytes];
        const size_t headerBytes = EncodeMapHeader(&currentMap.record, encoded);
        const Bytes now(encoded, encoded + headerBytes);
        for (size_t i = 0; i < mapHeaderWordCount; i++) {
            if (i != 24 && 2 * i + 1 != length) { // of a word cut in two the low byte is new
                EXPECT_EQ(WordAt(now, i), WordAt(2 * i + 1 < length ? whole : old, i)) << "word " << i;
            }
        }
        const size_t textRead = length <= mapHeaderWordBytes ? 0 : std::min<size_t>(length - mapHeaderWordBytes, 3);
        EXPECT_EQ(std::string(currentMap.record.mapText),
                  length <= mapHeaderWordBytes ? "old" : std::string("abc").substr(0, textRead));
        for (size_t cell = 0; cell < 6; cell++) {
            const size_t end = textEnd + 2 * cell + 2;
            const TerrainCell value = currentMap.cellColumns[cell % 3][cell / 3];
            if (end <= length) {
                EXPECT_EQ(value, 0x1101 + cell);
            } else if (end - 1 != length) {
                EXPECT_EQ(value, 0) << "cell " << cell;
            }
        }
    }
}

TEST_F(MapDataTest, AnEmptyFileIsNoMapForAProgramThatHasNone)
{
    StoreFile({});
    EXPECT_EQ(ReadFile(), 1);
}

TEST_F(MapDataTest, HeaderWordsOfAnyValueAreTakenOrRefusedByTheSizeRulesOnly)
{
    const Bytes valid = SmallMap("");
    for (size_t word = 0; word < mapHeaderWordCount; word++) {
        for (int value : {-32768, -1, 0, 1, 21, 22, 310, 311, 3100, 3101, 3121, 3122, 32767}) {
            SCOPED_TRACE(testing::Message() << "word " << word << " = " << value);
            Bytes bytes = valid;
            SetWordAt(bytes, word, value);
            int expected = 0;
            const int width = WordAt(bytes, 7) - WordAt(bytes, 5);
            const int height = WordAt(bytes, 8) - WordAt(bytes, 6);
            if (width > 3100) {
                expected |= mapTooWide;
            }
            if (height > 3100) {
                expected |= mapTooHigh;
            }
            if (((word == 3 || word == 4) && (value < 1 || value > 310)) || width < 1 || height < 1) {
                expected |= mapHeaderDamaged;
            }
            MapRecord record;
            size_t taken = 0;
            EXPECT_EQ(DecodeMapHeader(bytes.data(), bytes.size(), &record, &taken), expected);
            if (expected == 0) {
                uint8_t encoded[maxMapHeaderBytes];
                SetWordAt(bytes, 24, 1);
                ASSERT_EQ(EncodeMapHeader(&record, encoded), taken);
                EXPECT_EQ(Bytes(encoded, encoded + taken), Bytes(bytes.begin(), bytes.begin() + 57));
            }
        }
    }
}

TEST_F(MapDataTest, ATextOfUpTo255CharactersIsKeptAndALongerOneIsDamage)
{
    for (size_t length : {254u, 255u, 256u, 300u}) {
        StoreFile(SmallMap(std::string(length, 't')));
        currentMap.record.mapText[0] = 0;
        ASSERT_EQ(ReadFile(), length <= 255 ? 0 : 1) << length;
        if (length <= 255) {
            EXPECT_EQ(strlen(currentMap.record.mapText), length);
            EXPECT_EQ(currentMap.cellColumns[2][1], 0x1106) << "the cells begin behind the zero byte";
        }
    }
}

TEST_F(MapDataTest, AWriteThatTheSystemRefusesFails)
{
    StoreFile(SmallMap("x"));
    ASSERT_EQ(ReadFile(), 0);
    HFILE file = noFile;
    ASSERT_EQ(OpenFileSpecRead(&spec, &file), 0);
    EXPECT_EQ(WriteMapData(file), 1) << "the handle is for reading only";
    CloseFile(file);

    // A disk that takes the header and no more.
    const auto oldHandler = signal(SIGXFSZ, SIG_IGN);
    rlimit oldLimit = {};
    getrlimit(RLIMIT_FSIZE, &oldLimit);
    const rlimit fullDisk = {60, oldLimit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &fullDisk);
    const int16_t status = WriteFile();
    setrlimit(RLIMIT_FSIZE, &oldLimit);
    signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(WriteFile(), 0) << "and room again";
}

TEST_F(MapDataTest, ColumnsAreAllocatedInPlaceOfTheOldOnesAndReleasedWhole)
{
    const int before = GlobalBlocksInUse();
    currentMap.record.columnCount = 46;
    currentMap.record.rowCount = 23;
    ASSERT_EQ(AllocateCellColumns(), 0);
    currentMap.cellColumns[45][22] = 0xFFFF;
    currentMap.record.columnCount = 45;
    ASSERT_EQ(AllocateCellColumns(), 0);
    EXPECT_EQ(GlobalBlocksInUse(), before + 45);
    EXPECT_EQ(currentMap.cellColumns[45], nullptr);
    currentMap.cellColumns[44][22] = 0xFFFF;
    ClearAllCells();
    EXPECT_EQ(currentMap.cellColumns[44][22], 0);
    currentMap.record.columnCount = 1; // the record of a failed open may say anything
    ReleaseCellColumns();
    EXPECT_EQ(GlobalBlocksInUse(), before);
    for (int impossible : {0, -5, 311, 32767}) {
        currentMap.record.columnCount = static_cast<int16_t>(impossible);
        EXPECT_EQ(AllocateCellColumns(), 1);
    }
    EXPECT_EQ(GlobalBlocksInUse(), before);
}

TEST_F(MapDataTest, CellCountsCoverTheLastPartOfACell)
{
    EXPECT_EQ(CellCountOf(455), 46);
    EXPECT_EQ(CellCountOf(220), 22);
    EXPECT_EQ(CellCountOf(3100), 310);
    EXPECT_EQ(CellCountOf(3091), 310);
}

// ---- the file layer ----

TEST_F(MapDataTest, FieldsMoveTheBytesOfTheirType)
{
    const std::pair<int, size_t> sizes[] = {{1, 1}, {2, 2}, {28, 2}, {37, 2}, {3, 4},  {4, 4},
                                            {5, 4}, {9, 4}, {8, 8},  {10, 8}, {99, 4}, {22, 5}};
    for (const auto& [type, size] : sizes) {
        char field[] = "ABCDEFGHI";
        HFILE file = noFile;
        ASSERT_EQ(CreateFileSpec(&spec, &file), 0);
        EXPECT_EQ(TransferField(writeField, type, file, field, 5), 0);
        SetFilePosition(file, 1, 0);
        char back[] = "---------";
        EXPECT_EQ(TransferField(readField, type, file, back, 5), 0);
        EXPECT_EQ(TransferField(readField, type, file, back, 5), 0) << "the end of the file is no error";
        EXPECT_EQ(std::string(back), std::string(field, size) + std::string(9 - size, '-')) << "type " << type;
        CloseFile(file);
        EXPECT_EQ(FileBytes("Map101c.dat").size(), size) << "type " << type;
    }
}

TEST_F(MapDataTest, TextsMoveWithTheirEnds)
{
    HFILE file = noFile;
    ASSERT_EQ(CreateFileSpec(&spec, &file), 0);
    char empty[256] = "";
    char text[256] = "map";
    char pascal[256] = "\003xyz";
    EXPECT_EQ(TransferField(writeField, textField, file, empty, 0), 0);
    EXPECT_EQ(TransferField(writeField, textField, file, text, 0), 0);
    EXPECT_EQ(TransferField(writeField, pascalField, file, pascal, 0), 0);
    SetFilePosition(file, 1, 0);
    char back[256] = "previous";
    EXPECT_EQ(TransferField(readField, textField, file, back, 0), 0);
    EXPECT_STREQ(back, "");
    EXPECT_EQ(TransferField(readField, textField, file, back, 0), 0);
    EXPECT_STREQ(back, "map");
    EXPECT_EQ(TransferField(readField, pascalField, file, back, 0), 0);
    EXPECT_EQ(std::string(back, 4), "\003xyz");
    CloseFile(file);

    StoreFile(Bytes(300, 'u'));
    ASSERT_EQ(OpenFileSpecRead(&spec, &file), 0);
    EXPECT_EQ(TransferField(readField, textField, file, back, 0), -1) << "no end within the buffer";
    CloseFile(file);
}

TEST_F(MapDataTest, PositionsAreFromTheStartOnly)
{
    StoreFile({1, 2, 3, 4});
    HFILE file = noFile;
    ASSERT_EQ(OpenFileSpecRead(&spec, &file), 0);
    uint8_t byte = 0;
    SetFilePosition(file, 1, 2);
    SetFilePosition(file, 2, 0);
    SetFilePosition(file, 0, 0);
    EXPECT_EQ(TransferField(readField, byteField, file, &byte, 0), 0);
    EXPECT_EQ(byte, 3);
    CloseFile(file);
}

TEST_F(MapDataTest, FilesAreRenamedWithinTheirFolderAndNeverOverAnother)
{
    StoreFile({1});
    ASSERT_EQ(RenameFileSpec(&spec, "Map101c.dat_old"), 0);
    EXPECT_EQ(FileBytes("Map101c.dat_old"), Bytes{1});
    StoreFile({2});
    EXPECT_EQ(RenameFileSpec(&spec, "Map101c.dat_old"), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(FileBytes("Map101c.dat"), Bytes{2});
    EXPECT_EQ(FileBytes("Map101c.dat_old"), Bytes{1});
    EXPECT_EQ(DeleteFileSpec(&spec), 0);
    EXPECT_EQ(DeleteFileSpec(&spec), ERROR_FILE_NOT_FOUND);
    HFILE file = noFile;
    EXPECT_EQ(OpenFileSpec(&spec, &file), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(file, noFile);
}

TEST_F(MapDataTest, PathsThatDoNotFitAreRefusedAndNeverCut)
{
    const std::string deep = folder + std::string(253 - folder.size(), 'd');
    HFILE file = noFile;
    for (const char* name : {"/abc", "/a"}) {
        FileSpec tooLong;
        ASSERT_EQ(MakeFileSpec(deep.c_str(), name, &tooLong), 0);
        EXPECT_EQ(CreateFileSpec(&tooLong, &file), ERROR_FILENAME_EXCED_RANGE);
        EXPECT_EQ(OpenFileSpecRead(&tooLong, &file), ERROR_FILENAME_EXCED_RANGE);
        EXPECT_EQ(DeleteFileSpec(&tooLong), ERROR_FILENAME_EXCED_RANGE);
        EXPECT_EQ(RenameFileSpec(&tooLong, "a"), ERROR_FILENAME_EXCED_RANGE);
    }
    char path[256];
    FileSpec longest;
    ASSERT_EQ(MakeFileSpec(deep.c_str(), "/", &longest), 0);
    EXPECT_TRUE(FullPath(&longest, path)) << "254 characters";
    EXPECT_EQ(strlen(path), 254u);
    StoreFile({7});
    EXPECT_EQ(RenameFileSpec(&spec, std::string(250, 'n').c_str()), ERROR_FILENAME_EXCED_RANGE);
    EXPECT_EQ(FileBytes("Map101c.dat"), Bytes{7});
}

} // namespace
