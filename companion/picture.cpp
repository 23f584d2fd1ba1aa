#include "companion/picture.h"

#include "app/application.h"
#include "editing/overlay.h"
#include "platform/gdi/surface.h"
#include "toolbox/drawing.h"
#include "toolbox/offscreen.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>

namespace {

// The editor draws its one map; for a while that is the given one, whose cells stay its own.
void LendMap(MapData* map, const std::string& artPath)
{
    currentMap = {};
    currentMap.record = map->record;
    for (int x = 0; x < map->record.columnCount; x++) {
        currentMap.cellColumns[x] = &CellOf(map, x, 0);
    }
    currentMap.allocatedColumns = map->record.columnCount;
    SetEditableRect();
    const size_t nameStart = artPath.rfind('/') + 1;
    MakeFileSpec(artPath.substr(0, nameStart).c_str(), artPath.c_str() + nameStart, &currentMap.artFileSpec);
}

void TakeMapBack()
{
    currentMap.allocatedColumns = 0;
    ReleaseMapResources();
    DeleteDC(shell.mapWindowDC);
    shell.mapWindowDC = nullptr;
    currentMap = {};
    view = {};
    editing = {};
}

void SetEditing(const PictureOptions& options)
{
    editing = {};
    editing.solidGrid = options.style == solidBrush ? 1 : 0;
    editing.brushStyle = static_cast<int16_t>(options.style);
    editing.featureTool = options.feature != nullptr ? options.feature->tool : int32_t{noGo1Tool};
    const TerrainRow* feature = FeatureOfTool(editing.featureTool);
    editing.noGoLevel = static_cast<int16_t>(feature->group == noGoTerrain ? NoGoLevelOf(feature->value) : 0);
    editing.showAllNoGo = options.feature == nullptr ? 1 : 0;
    for (const TerrainRow& cost : TerrainRows(moveCostTerrain)) {
        *ShowFlagOf(cost) = options.costShown[&cost - TerrainRows(moveCostTerrain).data()] ? 1 : 0;
    }
}

void FrameCells(const std::vector<Point>& cells)
{
    const HBRUSH red = CreateSolidBrush(PALETTERGB(255, 0, 0));
    for (const Point& cell : cells) {
        Rect frame = MakeRect(cell.h * cellSize, cell.v * cellSize, (cell.h + 1) * cellSize, (cell.v + 1) * cellSize);
        FrameRectBrush(&frame, red);
        OutsetRect(&frame, -1, -1);
        FrameRectBrush(&frame, red);
    }
    DeleteObject(red);
}

std::string ComposeImage(const PictureOptions& options, const std::string& artPath)
{
    const Rect image = MakeRect(0, 0, MapWidth(), MapHeight());
    if (LoadInterfaceBitmap() != 0 || NewGWorld(&view.mapImage, 32, &image, nullptr, nullptr, 0) != 0) {
        return "there is not enough memory for its picture";
    }
    const SavedPort saved = UsePort(view.mapImage);
    view.viewRect = options.area;
    view.utmGridMode = static_cast<int8_t>(options.gridMode);
    const bool hasArt = !artPath.empty() && LoadMapArt() == 0;
    if (!hasArt) {
        FillRectColor(&image, shell.windowBackground);
    }
    if (options.view == analysisView) {
        RenderTerrainAnalysis();
    } else {
        RedrawUTMGridIfShown();
    }
    if (options.view == featuresView) {
        MarkVisibleFeatures();
    } else if (options.view == costsView) {
        MarkVisibleMoveCosts();
    }
    if (options.framed != nullptr) {
        FrameCells(*options.framed);
    }
    RestorePort(saved);
    return hasArt || options.view == analysisView ? "" : "its art cannot be loaded";
}

// Copies the area out of the map image.
bool TakePicture(const Rect& area, Picture* picture)
{
    SizePicture(picture, area.right - area.left, area.bottom - area.top);
    Surface surface = {picture->pixels.get(), picture->width, picture->height, picture->width, {}};
    const HDC dc = CreateSurfaceDC(&surface);
    const bool copied =
        BitBlt(dc, 0, 0, picture->width, picture->height, view.mapImage->dc, area.left, area.top, SRCCOPY) != FALSE;
    DeleteSurfaceDC(dc);
    return copied;
}

} // namespace

void SizePicture(Picture* picture, int width, int height)
{
    picture->width = width;
    picture->height = height;
    picture->pixels.reset(new uint32_t[static_cast<size_t>(width) * static_cast<size_t>(height)]);
}

Rect WholeMap(const MapData& map)
{
    const Rect& rect = map.record.mapRect;
    return MakeRect(0, 0, rect.right - rect.left, rect.bottom - rect.top);
}

std::string ArtPath(const std::string& dataPath)
{
    std::error_code error;
    std::filesystem::path path = std::filesystem::absolute(dataPath, error);
    std::string name = path.filename().string();
    if (error || name.size() < 4 || dataPath == standardStream) {
        return {};
    }
    // As the editor finds it: the exact name or one that differs in the case of letters.
    path.replace_filename(name.replace(name.size() - 3, 3, "bmp"));
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(path.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return {};
    }
    FindClose(search);
    return path.string();
}

bool DrawMap(Report* report, const MapData& map, const std::string& artPath, const PictureOptions& options,
             Picture* picture)
{
    MapData lent = map;
    SetNamedColours();
    SetEditing(options);
    view = {};
    shell.mapWindowDC = CreateCompatibleDC(nullptr);
    LendMap(&lent, artPath);
    std::string fault = ComposeImage(options, artPath);
    if (fault.empty() && !TakePicture(options.area, picture)) {
        fault = "its picture cannot be drawn";
    }
    TakeMapBack();
    if (!fault.empty()) {
        Fail(report, artPath, fault);
    }
    return fault.empty();
}

// ---- scale ----

namespace {

uint32_t AverageOf(const Picture& picture, int left, int top, int side)
{
    uint32_t sums[3] = {};
    uint32_t count = 0;
    for (int y = top; y < std::min(top + side, picture.height); y++) {
        for (int x = left; x < std::min(left + side, picture.width); x++) {
            const uint32_t pixel =
                picture.pixels[static_cast<size_t>(y) * static_cast<size_t>(picture.width) + static_cast<size_t>(x)];
            for (int i = 0; i < 3; i++) {
                sums[i] += pixel >> 8 * i & 0xFF;
            }
            count++;
        }
    }
    uint32_t average = 0;
    for (int i = 0; i < 3; i++) {
        average |= (sums[i] + count / 2) / count << 8 * i;
    }
    return average;
}

} // namespace

Picture Scaled(const Picture& picture, int times)
{
    Picture scaled;
    const int part = std::max(1, -times);
    const int whole = std::max(1, times);
    SizePicture(&scaled, (picture.width * whole + part - 1) / part, (picture.height * whole + part - 1) / part);
    uint32_t* next = scaled.pixels.get();
    for (int y = 0; y < scaled.height; y++) {
        for (int x = 0; x < scaled.width; x++) {
            *next++ = AverageOf(picture, x * part / whole, y * part / whole, part);
        }
    }
    return scaled;
}
