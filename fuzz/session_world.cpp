#include "fuzz/session_world.h"

#include "app/application.h"
#include "dialogs/dialog.h"
#include "mapdata/map_bytes.h"
#include "mapdata/terrain.h"
#include "platform/host/headless/headless.h"
#include "platform/user/platform_reset.h"
#include "toolbox/resources.h"

#include <cstring>

namespace {

constexpr int mostPixels = 4096; // a side of any window
constexpr std::pair<int, int> mapSizes[] = {{280, 140}, {285, 145}, {440, 330}, {190, 100}};

// Few bytes: run-length encoded, a stripe in the first row, the rest as it is.
std::string ArtFile(int width, int height)
{
    std::string bytes = BitmapHead(width, height, 8, {0x204060, 0xC0E0A0});
    bytes[30] = BI_RLE8;                               // the header's compression
    return bytes + std::string("\x20\x01\x00\x01", 4); // 32 pixels of colour 1, and the end
}

// Only values that the editor knows, with the carried bits strewn in.
uint16_t FirstCell(uint32_t number, uint8_t terrain)
{
    static const auto noGo = TerrainRows(noGoTerrain);
    static const auto moveCosts = TerrainRows(moveCostTerrain);
    const uint32_t mixed = (number + terrain) * 2654435761u >> 7;
    const auto pick = [](std::span<const TerrainRow> rows, size_t place) {
        return place < rows.size() ? rows[place].value : TerrainCell{0};
    };
    const uint32_t features = terrain == 0 ? 0 : mixed & 0xFF;
    const uint32_t level = terrain < 64 ? 0 : pick(noGo, (mixed >> 8 & 3) - 1);
    const uint32_t cost = terrain < 128 ? 0 : pick(moveCosts, mixed >> 10 & 7);
    return static_cast<uint16_t>(features | level | cost);
}

std::string DataFile(uint8_t shape, uint8_t terrain)
{
    const auto& [width, height] = mapSizes[shape >> 2 & 3];
    MapFile map(shape & 0x40 ? 202 : 101, width, height);
    int16_t& columns = map.words[columnsWord];
    int16_t& rows = map.words[rowsWord];
    // Counts that do not agree with the sizes are taken as stored.
    const int counts[][2] = {{columns, rows}, {columns / 2, rows}, {columns, rows + 30}, {columns + 9, 1}};
    columns = static_cast<int16_t>(counts[shape >> 4 & 3][0]);
    rows = static_cast<int16_t>(counts[shape >> 4 & 3][1]);
    map.SizeCells();
    for (size_t number = 0; number < map.cells.size(); number++) {
        map.cells[number] = FirstCell(static_cast<uint32_t>(number), terrain);
    }
    return map.Bytes();
}

// What the terrain table says of every possible cell word, asked once: the table is read too slowly for a look at all
// cells of every session.
struct WordRules {
    TerrainCell carriedBits = 0xFFFF; // those without a meaning here
    std::vector<bool> isSetByTools = std::vector<bool>(0x10000);
};

WordRules MakeWordRules()
{
    WordRules rules;
    for (const TerrainRow& row : TerrainRows()) {
        rules.carriedBits &= static_cast<TerrainCell>(~row.field);
    }
    for (size_t word = 0; word < rules.isSetByTools.size(); word++) {
        const auto cell = static_cast<TerrainCell>(word);
        rules.isSetByTools[word] = (NoGoLevelOf(cell) == 0 || NoGoOf(cell) != nullptr) && MoveCostOf(cell) != nullptr;
    }
    return rules;
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

void CheckCell(SessionWorld* world, int x, int y, TerrainCell now)
{
    static const WordRules rules = MakeWordRules();
    const uint16_t first = world->firstCells[static_cast<size_t>(x * world->rowCount + y)];
    if (!rules.isSetByTools[now]) {
        NoteFault(world, "a cell holds a value that no tool sets");
    }
    // Only Remove All Features takes the carried bits.
    if (!IsOneOf(now & rules.carriedBits, {first & rules.carriedBits, 0})) {
        NoteFault(world, "a cell's carried bits changed");
    }
    const bool inMap = x < CellCountOf(MapWidth()) && y < CellCountOf(MapHeight());
    const bool slows = (first & (cellWoods | cellTown)) != 0;
    const bool wholeMapOnly = IsOneOf(now & cellFeaturesMask, {first & cellFeaturesMask, 0}) &&
                              IsOneOf(MoveCostCodeOf(now), {first >> cellMoveCostShift, 0, slows ? 2 : 0});
    if (!inMap && !wholeMapOnly) {
        NoteFault(world, "a cell outside the map was painted");
    }
}

// Every cell when the map is first seen, then those that changed: what holds of a cell depends on nothing else.
void CheckCells(SessionWorld* world, bool all)
{
    const auto rows = static_cast<size_t>(world->rowCount);
    for (int x = 0; x < world->columnCount; x++) {
        const TerrainCell* column = currentMap.cellColumns[x];
        TerrainCell* checked = world->checkedCells.data() + static_cast<size_t>(x) * rows;
        if (!all && std::equal(column, column + rows, checked)) {
            continue;
        }
        for (size_t y = 0; y < rows; y++) {
            if (all || column[y] != checked[y]) {
                CheckCell(world, x, static_cast<int>(y), column[y]);
                checked[y] = column[y];
            }
        }
    }
}

void NoteFirstGrid(SessionWorld* world)
{
    const MapRecord& record = currentMap.record;
    world->gridSeen = true;
    world->columnCount = record.columnCount;
    world->rowCount = record.rowCount;
    world->mapRect = record.mapRect;
    for (int x = 0; x < record.columnCount; x++) {
        const TerrainCell* column = currentMap.cellColumns[x];
        world->columns.push_back(column);
        world->firstCells.insert(world->firstCells.end(), column, column + record.rowCount);
    }
    world->checkedCells = world->firstCells;
}

void CheckGrid(SessionWorld* world)
{
    const MapRecord& record = currentMap.record;
    const bool isFirst = !world->gridSeen;
    if (isFirst) {
        NoteFirstGrid(world);
    }
    if (record.columnCount != world->columnCount || record.rowCount != world->rowCount ||
        std::memcmp(&record.mapRect, &world->mapRect, sizeof record.mapRect) != 0 ||
        !std::equal(world->columns.begin(), world->columns.end(), currentMap.cellColumns)) {
        return NoteFault(world, "the grid is another one");
    }
    CheckCells(world, isFirst);
}

} // namespace

void BeginSession(SessionWorld* world, uint8_t shape, uint8_t terrain)
{
    *world = {};
    world->folder = std::make_unique<TemporaryFolder>();
    const auto& [width, height] = mapSizes[shape >> 2 & 3];
    world->folder->Write("Map101c.dat", DataFile(shape, terrain));
    world->folder->Write("Map101c.bmp", ArtFile(width, height));
    world->folder->Write("Map102c.dat", "no map");
    world->folder->Write("Map102c.bmp", "no art");
    HeadlessReset(400, 320);
    headless.keepsPictures = 0;
    host = &headlessHost;
    host->start();
}

std::string EndSessionWorld(SessionWorld* world)
{
    PlatformReset();
    SetPort(nullptr);
    host->stop();
    HeadlessReset();
    std::string fault = world->fault;
    *world = {};
    return fault;
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
    return world.folder->Path(names[static_cast<size_t>(number) % std::size(names)]);
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
    if (world->folder->Read(currentMap.dataFileSpec.name) != expected) {
        NoteFault(world, "the saved file is not what is in memory");
    }
    if (currentMap.mapModified || currentMap.openDataFile != noFile) {
        NoteFault(world, "a saved map counts as modified or its file as open");
    }
}
