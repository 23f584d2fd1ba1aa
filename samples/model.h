// The model of one sample map. Art and cells are both made from it, so that they agree. All positions are map pixels
// of 10 metres, heights are metres.
#pragma once

#include "mapdata/map_record.h"
#include "samples/grid.h"

#include <array>
#include <string>

// What tells one sample from another.
struct SamplePlan {
    MapRecord record; // of the data file; sizes and counts follow from the art
    uint32_t seed;
    struct {
        int width;
        int height;
        int bitsPerPixel; // 8 or 24
        float contourInterval;
    } art;
    struct {
        int margin; // modelled beyond each side of the map, so that valleys do not begin at its edge
        float baseHeight;
        float mountains; // steepness of high and of low country
        float lowlands;
        float wavelength; // pixels from one upland to the next
    } land;
    struct {
        Spot inlet; // where the main river enters and leaves: fractions of the modelled land on its border
        Spot outlet;
        float areaAtInlet; // square kilometres that it drained before
    } river;
    struct {
        int lakes;
        int tarns; // small lakes
        int towns;
        int villages;
        int tracks;
        int exits; // roads that leave the map
    } counts;
};

// A line whose width changes along it.
struct WideLine {
    std::vector<Spot> points;
    std::vector<float> widths;
};

enum RoadKind { mainRoad, minorRoad, track, street };

struct Road {
    RoadKind kind;
    std::vector<Spot> points;
};

struct Town {
    Spot centre;
    float radius;
    Spot axis; // direction of its streets
};

// A small building, or a block of buildings: a rectangle of any direction.
struct Building {
    Spot centre;
    Spot axis;
    float halfLength;
    float halfWidth;
};

// The land on a coarse grid that reaches beyond the map, and where its water goes.
struct Land {
    int step = 0; // pixels between nodes
    Grid<float> height;
    Grid<int> downstream;   // index of the next node, -1 where the water leaves
    Grid<float> area;       // square kilometres drained
    std::vector<int> order; // every node after the one that it drains into
};

struct SampleMap {
    const SamplePlan* plan = nullptr;
    Land land;
    Grid<float> height;
    float lowest = 0;
    float heightSpan = 0; // from the lowest to the highest
    Grid<float> slope;    // rise over run, at every slopeStep pixels
    std::vector<WideLine> rivers;
    std::vector<Road> roads;
    std::vector<Town> towns;
    std::vector<std::vector<Spot>> cliffs; // the upper edges
    std::vector<Building> buildings;
    std::vector<Building> blocks; // of closed building, in the middle of towns
    // Coverage per pixel, 0 to 255.
    Grid<uint8_t> lake;
    Grid<uint8_t> lakeDepth; // 0 at the shore; in deep water above deepWater
    Grid<uint8_t> water;     // lakes and rivers
    Grid<uint8_t> woods;
    Grid<uint8_t> marsh;
    Grid<uint8_t> road; // with the casing; tracks count, streets do not
    Grid<uint8_t> town; // buildings and blocks
    Grid<uint8_t> cliff;
    Grid<uint8_t> hedge;
};

constexpr float drawnWidths[] = {4.6f, 3.6f, 1.2f, 3.1f}; // of each kind with its casing, in pixels

constexpr int slopeStep = 5;
constexpr int deepWater = 110;

// Rise over run at a map pixel.
inline float SlopeAt(const SampleMap& map, Spot place)
{
    return Nearest(map.slope, int(place.x) / slopeStep, int(place.y) / slopeStep);
}

// Points uphill, as long as the ground is steep.
inline Spot Gradient(const SampleMap& map, Spot place)
{
    return Change(map.height, int(place.x), int(place.y), 2) / 40;
}

inline Grid<uint8_t> BlankMask(const SampleMap& map)
{
    return MakeGrid<uint8_t>(map.plan->art.width, map.plan->art.height);
}

// A mask with coverageAt(x, y) at every pixel.
Grid<uint8_t> FillMask(const SampleMap& map, auto coverageAt)
{
    return FillGrid<uint8_t>(map.plan->art.width, map.plan->art.height, coverageAt);
}

constexpr int landStep = 4; // of the finest land

// The place of a node of the land on the map.
inline Spot NodeSpot(const SampleMap& map, int x, int y)
{
    return SpotAt(x * map.land.step, y * map.land.step) - SpotAt(map.plan->land.margin, map.plan->land.margin);
}

// ---- the steps, in the order in which they run ----

void ShapeLand(SampleMap& map);
void FillHeights(SampleMap& map);
void MeasureHeights(SampleMap& map); // again after the lakes
void PlaceRivers(SampleMap& map);
void PlaceLakes(SampleMap& map); // levels the ground under them
void PlaceTowns(SampleMap& map);
void PlaceRoads(SampleMap& map);
void PlaceBuildings(SampleMap& map);
void PlaceWoods(SampleMap& map);
void PlaceMarshes(SampleMap& map);
void PlaceHedges(SampleMap& map);
void PlaceCliffs(SampleMap& map);

// ---- results ----

typedef std::array<uint8_t, 3> Colour; // red, green, blue

Grid<Colour> DrawArt(const SampleMap& map);
Grid<TerrainCell> DeriveCells(const SampleMap& map);

// False when the file could not be written whole.
bool WriteArt(const std::string& path, const SamplePlan& plan, const Grid<Colour>& art);
bool WriteMapData(const std::string& path, const SamplePlan& plan, const Grid<TerrainCell>& cells);
