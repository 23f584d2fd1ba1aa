#include "fuzz/session_world.h"

#include "app/application.h"
#include "dialogs/dialog.h"
#include "mapdata/map_bytes.h"
#include "platform/host/headless/headless.h"
#include "platform/user/platform_reset.h"
#include "toolbox/resources.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

constexpr uint16_t carriedBits = 0x0015; // without a meaning here
constexpr int mostPixels = 4096;         // a side of any window
constexpr struct {
    int16_t width;
    int16_t height;
} mapSizes[] = {{450, 220}, {455, 225}, {700, 500}, {300, 150}};

void Put(std::string* bytes, uint32_t value, int width)
{
    for (int i = 0; i < width; i++) {
        bytes->push_back(static_cast<char>(value >> 8 * i & 0xFF));
    }
}

void WriteFile(const std::string& name, const std::string& bytes)
{
    std::ofstream(name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// Two colours, one bit a pixel.
std::string ArtFile(int width, int height)
{
    const int stride = (width + 31) / 32 * 4;
    std::string bytes = "BM";
    for (const int value : {62 + stride * height, 0, 62, 40, width, height}) {
        Put(&bytes, static_cast<uint32_t>(value), 4);
    }
    Put(&bytes, 0x00010001, 4); // planes and bits
    for (const uint32_t value : {0u, 0u, 0u, 0u, 2u, 2u, 0x204060u, 0xC0E0A0u}) {
        Put(&bytes, value, 4);
    }
    bytes.append(static_cast<size_t>(stride * height), '\x5A');
    return bytes;
}

// Only values that the editor knows, with the carried bits strewn in.
uint16_t FirstCell(uint32_t number, uint8_t terrain)
{
    const uint32_t mixed = (number + terrain) * 2654435761u >> 7;
    constexpr uint16_t noGoLevels[] = {0, 1, 2, 4};
    constexpr uint16_t costCodes[] = {0, 1, 2, 3, 4, 6, 0, 0};
    const uint32_t features = terrain == 0 ? 0 : mixed & 0xFF;
    const uint32_t level = terrain < 64 ? 0 : noGoLevels[mixed >> 8 & 3];
    const uint32_t code = terrain < 128 ? 0 : costCodes[mixed >> 10 & 7];
    return static_cast<uint16_t>(features | level << cellNoGoShift | code << cellMoveCostShift);
}

std::string DataFile(uint8_t shape, uint8_t terrain)
{
    MapRecord record;
    const auto& size = mapSizes[shape >> 2 & 3];
    record.mapID = shape & 0x40 ? 202 : 101;
    record.mapRect = {0, 0, size.height, size.width};
    record.columnCount = static_cast<int16_t>(CellCountOf(size.width));
    record.rowCount = static_cast<int16_t>(CellCountOf(size.height));
    // Counts that do not agree with the sizes are taken as stored.
    switch (shape >> 4 & 3) {
    case 1:
        record.columnCount = static_cast<int16_t>(record.columnCount / 2);
        break;
    case 2:
        record.rowCount = static_cast<int16_t>(record.rowCount + 30);
        break;
    case 3:
        record.columnCount = static_cast<int16_t>(record.columnCount + 9);
        record.rowCount = 1;
        break;
    default:
        break;
    }
    record.versionNumber = 100;
    std::string bytes(maxMapHeaderBytes, '\0');
    bytes.resize(EncodeMapHeader(&record, reinterpret_cast<uint8_t*>(bytes.data())));
    const uint32_t cellCount = static_cast<uint32_t>(record.columnCount * record.rowCount);
    for (uint32_t number = 0; number < cellCount; number++) {
        Put(&bytes, FirstCell(number, terrain), 2);
    }
    return bytes;
}

// Palettes alone have a title bar of the program's.
bool IsPalette(WindowPtr record)
{
    const DialogItem* item = record != nullptr && record != shell.mapWindow ? record->firstItem : nullptr;
    while (item != nullptr && item->kind != titleBarItem) {
        item = item->next;
    }
    return item != nullptr;
}

bool IsOneOf(int value, std::initializer_list<int> values)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

void CheckCell(SessionWorld* world, int x, int y)
{
    const uint16_t now = currentMap.cellColumns[x][y];
    const uint16_t first = world->firstCells[static_cast<size_t>(x * world->rowCount + y)];
    const int code = now >> cellMoveCostShift;
    if (!IsOneOf((now & cellNoGoMask) >> cellNoGoShift, {0, 1, 2, 4}) || !IsOneOf(code, {0, 1, 2, 3, 4, 6})) {
        NoteFault(world, "a cell holds a value that no tool sets");
    }
    // Only Remove All Features takes the carried bits.
    if (!IsOneOf(now & carriedBits, {first & carriedBits, 0})) {
        NoteFault(world, "a cell's carried bits changed");
    }
    const bool inMap = x < CellCountOf(MapWidth()) && y < CellCountOf(MapHeight());
    const bool slows = (first & (cellWoods | cellTown)) != 0;
    const bool wholeMapOnly = IsOneOf(now & cellFeaturesMask, {first & cellFeaturesMask, 0}) &&
                              IsOneOf(code, {first >> cellMoveCostShift, 0, slows ? 2 : 0});
    if (!inMap && !wholeMapOnly) {
        NoteFault(world, "a cell outside the map was painted");
    }
}

void CheckGrid(SessionWorld* world)
{
    const MapRecord& record = currentMap.record;
    if (!world->gridSeen) {
        world->gridSeen = true;
        world->columnCount = record.columnCount;
        world->rowCount = record.rowCount;
        for (int x = 0; x < record.columnCount; x++) {
            const TerrainCell* column = currentMap.cellColumns[x];
            world->columns.push_back(column);
            world->firstCells.insert(world->firstCells.end(), column, column + record.rowCount);
        }
    }
    if (record.columnCount != world->columnCount || record.rowCount != world->rowCount ||
        !std::equal(world->columns.begin(), world->columns.end(), currentMap.cellColumns)) {
        return NoteFault(world, "the grid is another one");
    }
    for (int x = 0; x < record.columnCount; x++) {
        for (int y = 0; y < record.rowCount; y++) {
            CheckCell(world, x, y);
        }
    }
}

} // namespace

void BeginSession(SessionWorld* world, uint8_t shape, uint8_t terrain)
{
    *world = {};
    world->startFolder = std::filesystem::current_path();
    world->folder = std::filesystem::temp_directory_path() / "kestrel-fuzz-XXXXXX";
    if (mkdtemp(world->folder.data()) == nullptr) {
        std::perror("a folder for the session");
        std::abort();
    }
    std::filesystem::current_path(world->folder);
    const auto& size = mapSizes[shape >> 2 & 3];
    WriteFile("Map101c.dat", DataFile(shape, terrain));
    WriteFile("Map101c.bmp", ArtFile(size.width, size.height));
    WriteFile("Map102c.dat", "no map");
    WriteFile("Map102c.bmp", "no art");
    HeadlessReset(640, 480);
    host = &headlessHost;
    host->start();
}

std::string EndSessionWorld(SessionWorld* world)
{
    PlatformReset();
    SetPort(nullptr);
    host->stop();
    std::filesystem::current_path(world->startFolder);
    std::filesystem::remove_all(world->folder);
    return world->fault;
}

void NoteFault(SessionWorld* world, const char* fault)
{
    if (world->fault.empty()) {
        world->fault = fault;
    }
}

std::string SessionFileName(const SessionWorld& world, int number)
{
    constexpr const char* names[] = {"Map101c.dat", "Map101c.bmp", "Map102c.dat", "Map102c.bmp",
                                     "Map103c.dat", "Map099c.dat", "a",           ""};
    return world.folder + "/" + names[static_cast<size_t>(number) % std::size(names)];
}

WindowPtr TopSessionDialog()
{
    const HWND top = GetTopWindow(nullptr);
    const WindowPtr record = top != nullptr ? WindowRecord(top) : nullptr;
    return record != shell.mapWindow ? record : nullptr;
}

void CheckSession(SessionWorld* world)
{
    if (shell.mapShown) {
        CheckGrid(world);
    }
    int palettes = 0;
    for (const HeadlessWindow* window : headless.windows) {
        const HostRect& client = window->client;
        if (client.right <= client.left || client.bottom <= client.top || client.right - client.left > mostPixels ||
            client.bottom - client.top > mostPixels) {
            NoteFault(world, "a window has an impossible size");
        }
        palettes += window->visible && IsPalette(WindowRecord(static_cast<HWND>(window->token))) ? 1 : 0;
    }
    if (palettes > 1 || (shell.featuresPaletteOpen != 0 && shell.moveCostPaletteOpen != 0)) {
        NoteFault(world, "two palettes are open");
    }
}

void CheckSessionAtRest(SessionWorld* world)
{
    const HeadlessWindow* frame = HeadlessFrame();
    if (frame == nullptr || shell.mapWindow == nullptr) {
        return;
    }
    const Rect& port = shell.mapWindow->portRect;
    if (port.right - port.left != frame->client.right - frame->client.left ||
        port.bottom - port.top != frame->client.bottom - frame->client.top) {
        NoteFault(world, "the map window's port is not its client area");
    }
    if (shell.featuresPaletteOpen != 0 || shell.moveCostPaletteOpen != 0) {
        NoteFault(world, "a palette counts as open without a window");
    }
    if (!shell.mapShown) {
        return;
    }
    const Rect& shown = view.viewRect;
    const Rect& map = currentMap.record.mapRect;
    if (shown.left < 0 || shown.top < 0 || shown.right <= shown.left || shown.bottom <= shown.top ||
        (shown.left > 0 && shown.right > map.right) || (shown.top > 0 && shown.bottom > map.bottom)) {
        NoteFault(world, "the view lies beside the map");
    }
}

void CompareSavedFile(SessionWorld* world)
{
    std::string expected(maxMapHeaderBytes, '\0');
    expected.resize(EncodeMapHeader(&currentMap.record, reinterpret_cast<uint8_t*>(expected.data())));
    for (int y = 0; y < currentMap.record.rowCount; y++) {
        for (int x = 0; x < currentMap.record.columnCount; x++) {
            Put(&expected, *CellAt(x, y), 2);
        }
    }
    char path[256];
    if (!FullPath(&currentMap.dataFileSpec, path)) {
        return NoteFault(world, "the data file has no path");
    }
    std::ifstream file(path, std::ios::binary);
    const std::string stored{std::istreambuf_iterator<char>(file), {}};
    if (stored != expected) {
        NoteFault(world, "the saved file is not what is in memory");
    }
    if (currentMap.mapModified || currentMap.openDataFile != noFile) {
        NoteFault(world, "a saved map counts as modified or its file as open");
    }
}
