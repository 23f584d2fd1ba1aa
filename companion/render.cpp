// kestrel-map render: the editor's picture of a map as a PNG file.
#include "companion/commands.h"
#include "companion/picture.h"
#include "editing/editing.h"

#include <cstdio>
#include <iterator>

namespace {

constexpr const char* viewNames[] = {"art", "features", "costs", "analysis"};
constexpr const char* styleNames[] = {"solid", "dot", "frame"};
constexpr int greatestScale = 16;

template <size_t count>
int PlaceOf(const char* const (&names)[count], const std::string& name)
{
    int place = 0;
    while (place < static_cast<int>(count) && name != names[place]) {
        place++;
    }
    return place; // the parser let no other name through
}

// "2" or "1/4".
bool ReadScale(const std::string& text, int* times)
{
    int number = 0;
    int taken = 0;
    const bool isPart = sscanf(text.c_str(), "1/%d%n", &number, &taken) == 1;
    if (!isPart && sscanf(text.c_str(), "%d%n", &number, &taken) != 1) {
        return false;
    }
    *times = isPart ? -number : number;
    return taken == static_cast<int>(text.size()) && number >= 1 && number <= greatestScale;
}

bool ReadArea(const std::string& text, const Rect& whole, Rect* area)
{
    int left, top, right, bottom;
    int taken = 0;
    if (sscanf(text.c_str(), "%d,%d,%d,%d%n", &left, &top, &right, &bottom, &taken) != 4 ||
        taken != static_cast<int>(text.size())) {
        return false;
    }
    *area = MakeRect(left, top, right, bottom);
    return left >= 0 && top >= 0 && left < right && top < bottom && right <= whole.right && bottom <= whole.bottom;
}

bool ReadTerrain(const RenderOptions& options, PictureOptions* picture, std::string* fault)
{
    if (!options.feature.empty()) {
        picture->feature = TerrainOfKey(featureTerrain, options.feature, fault);
        return picture->feature != nullptr;
    }
    if (!options.noGo.empty()) {
        picture->feature = TerrainOfKey(noGoTerrain, options.noGo, fault);
        return picture->feature != nullptr;
    }
    for (const TerrainRow& cost : TerrainRows(moveCostTerrain)) {
        picture->costShown[&cost - TerrainRows(moveCostTerrain).data()] = options.costs.empty();
    }
    for (const std::string& key : options.costs) {
        const TerrainRow* cost = TerrainOfKey(moveCostTerrain, key, fault);
        if (cost == nullptr) {
            return false;
        }
        picture->costShown[cost - TerrainRows(moveCostTerrain).data()] = true;
    }
    return true;
}

} // namespace

int RunRender(const RenderOptions& options, Report* report)
{
    MapData map;
    PictureOptions wanted;
    Picture picture;
    int times = 1;
    std::string fault;
    wanted.view = static_cast<MapView>(PlaceOf(viewNames, options.view));
    wanted.gridMode = options.numbers ? 2 : options.grid ? 1 : 0;
    wanted.style = PlaceOf(styleNames, options.style);
    if (!ReadTerrain(options, &wanted, &fault)) {
        return Fail(report, "", fault);
    }
    if (wanted.view == featuresView && wanted.style == dotBrush) {
        return Fail(report, "", "--style dot is for --view costs");
    }
    if (!ReadScale(options.scale, &times)) {
        return Fail(report, "", "--scale " + options.scale + " is none of 1 to 16 and 1/2 to 1/16");
    }
    if (!LoadMap(report, options.file, false, &map)) {
        return statusFailed;
    }
    wanted.area = WholeMap(map);
    if (!options.area.empty() && !ReadArea(options.area, WholeMap(map), &wanted.area)) {
        return Fail(report, options.file, "--area " + options.area + " is not left,top,right,bottom inside the map");
    }
    const std::string art = ArtPath(options.file);
    if (art.empty() && wanted.view != analysisView) {
        return Fail(report, options.file, "its art is not beside it");
    }
    std::string bytes;
    if (!DrawMap(report, map, art, wanted, &picture)) {
        return statusFailed;
    }
    if (times != 1) {
        picture = Scaled(picture, times);
    }
    if (!EncodePng(picture, &bytes, &fault)) {
        return Fail(report, options.output, "cannot be made: " + fault);
    }
    return WriteOutput(report, {{options.output, bytes}}) ? statusFine : statusFailed;
}
