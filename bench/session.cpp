#include "app/application.h"
#include "bench/bench.h"
#include "mapdata/data_file.h"
#include "mapdata/map_commands.h"
#include "platform/host/headless/headless.h"
#include "toolbox/shell_door.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <vector>

namespace {

void Check(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "The benchmark could not %s.\n", what);
        std::exit(1);
    }
}

void Put16(std::vector<unsigned char>& bytes, int value)
{
    bytes.push_back(static_cast<unsigned char>(value & 0xFF));
    bytes.push_back(static_cast<unsigned char>(value >> 8 & 0xFF));
}

void Put32(std::vector<unsigned char>& bytes, int value)
{
    Put16(bytes, value & 0xFFFF);
    Put16(bytes, value >> 16 & 0xFFFF);
}

void WriteArt(const char* name)
{
    constexpr int stride = (largestSide * 3 + 3) / 4 * 4;
    constexpr int pixelBytes = stride * largestSide;
    std::vector<unsigned char> bytes = {'B', 'M'};
    bytes.reserve(54 + pixelBytes);
    Put32(bytes, 54 + pixelBytes);
    Put32(bytes, 0);
    Put32(bytes, 54);
    Put32(bytes, 40);
    Put32(bytes, largestSide);
    Put32(bytes, largestSide);
    Put16(bytes, 1);
    Put16(bytes, 24);
    Put32(bytes, 0);
    Put32(bytes, pixelBytes);
    for (int i = 0; i < 4; i++) {
        Put32(bytes, 0);
    }
    for (int i = 0; i < pixelBytes; i++) {
        bytes.push_back(static_cast<unsigned char>(i * 7 + i / stride));
    }
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void FillRecord()
{
    MapRecord& record = currentMap.record;
    record.mapID = 900;
    currentMap.loadedMapID = 900;
    record.columnCount = maxCellCount;
    record.rowCount = maxCellCount;
    record.mapRect = {0, 0, largestSide, largestSide};
    record.markerWord = 1;
    record.versionNumber = 100;
    SetEditableRect();
    for (int y = 0; y < maxCellCount; y++) {
        for (int x = 0; x < maxCellCount; x++) {
            constexpr int codes[] = {0, 1, 2, 3, 4, 6};
            const int word = codes[(x * 5 + y * 3) / 4 % 6] << cellMoveCostShift |
                             ((x + y) % 9 == 0 ? cellWoods : 0) | ((x + 2 * y) % 17 == 0 ? cellHiLow : 0) |
                             (x % 23 == 0 ? cellRoad : 0);
            currentMap.cellColumns[x][y] = static_cast<TerrainCell>(word);
        }
    }
}

} // namespace

void OpenLargestMap()
{
    static bool isOpen = false;
    if (isOpen) {
        return;
    }
    isOpen = true;
    const auto folder = std::filesystem::temp_directory_path() / ("kestrel-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
    setenv("XDG_STATE_HOME", folder.c_str(), 1);
    static std::string created;
    created = folder.string();
    std::atexit([] { std::filesystem::remove_all(created); });

    HeadlessReset(benchScreenWidth, benchScreenHeight);
    host = &headlessHost;
    Check(host->start() == 0, "start the headless host");
    Check(RegisterWindowClasses() != 0, "register the window classes");
    InitApplication();
    Check(shell.startUpFailed == 0, "start the program");

    WriteArt("Map900c.bmp");
    const std::string path = folder.string() + "/";
    MapFiles files;
    MakeFileSpec(path.c_str(), "Map900c.dat", &files.data);
    MakeFileSpec(path.c_str(), "Map900c.bmp", &files.art);
    TakeMapFiles(files);
    currentMap.record.columnCount = maxCellCount;
    currentMap.record.rowCount = maxCellCount;
    Check(AllocateCellColumns() == 0, "allocate the grid");
    FillRecord();
    Check(FinishMapLoad() == 0, "load the map's art");
    Check(SaveMap(false) == 0, "save the map");
}

void MarkCells(int count)
{
    const Rect& shown = view.viewRect;
    const int columns = (shown.right - shown.left) / cellSize;
    const int rows = (shown.bottom - shown.top) / cellSize;
    const int cells = columns * rows;
    for (int i = 0; i < cells; i++) {
        TerrainCell* cell = CellAt(shown.left / cellSize + i % columns, shown.top / cellSize + i / columns);
        const bool marked = static_cast<long>(i) * count / cells != static_cast<long>(i + 1) * count / cells;
        *cell = static_cast<TerrainCell>(marked ? *cell | cellWoods : *cell & ~cellWoods);
    }
}

const unsigned* LargePixels()
{
    static const std::vector<unsigned> pixels(static_cast<size_t>(largestSide) * largestSide, 0x00405060u);
    return pixels.data();
}
