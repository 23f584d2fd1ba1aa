// The model of one sample map. Art and cells are both made from it, so that they agree. All positions are map pixels
// of 10 metres, heights are metres.
#pragma once

#include "tools/sample_grid.h"

// What tells one sample from another.
struct SamplePlan {
    int mapID;
    int width;
    int height;
    int bitsPerPixel; // of the art file: 8 or 24
    uint32_t seed;
    int margin;             // land modelled beyond each side, so that valleys do not begin at the edge of the map
    Spot outlet;            // where the main river leaves and enters: fractions of the modelled land
    Spot inlet;             // on its border
    float inletArea;        // square kilometres drained by the river that enters there
    float mountainStrength; // steepness of high and of low country
    float lowlandStrength;
    float countryWavelength; // pixels from one upland to the next
    float baseHeight;
    float contourInterval;
    int lakeCount;
    int tarnCount; // small lakes
    int townCount;
    int villageCount;
    int trackCount;
    int exitCount; // roads that leave the map
    int utmEasting;
    int utmNorthing;
    const char* text;
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

// A row of hachures: the upper edge and the direction downhill at each of its points.
struct Cliff {
    std::vector<Spot> points;
    std::vector<Spot> downhill;
};

// A small building, or a block of buildings: a rectangle of any direction.
struct Building {
    Spot centre;
    Spot axis;
    float halfLength;
    float halfWidth;
};

struct SampleMap {
    const SamplePlan* plan = nullptr;
    Grid<float> height;
    Grid<float> slope; // rise over run, at every slopeStep pixels
    std::vector<WideLine> rivers;
    std::vector<Road> roads;
    std::vector<Town> towns;
    std::vector<Cliff> cliffs;
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

// Widths of the drawn roads with their casing, in pixels.
constexpr float mainRoadWidth = 4.6f;
constexpr float minorRoadWidth = 3.6f;
constexpr float trackWidth = 1.2f;
constexpr float streetWidth = 3.1f;

inline float DrawnWidth(RoadKind kind)
{
    return kind == mainRoad    ? mainRoadWidth
           : kind == minorRoad ? minorRoadWidth
           : kind == track     ? trackWidth
                               : streetWidth;
}

constexpr int slopeStep = 5;
constexpr int deepWater = 110;

// Rise over run at a map pixel.
inline float SlopeAt(const SampleMap& map, float x, float y)
{
    return Nearest(map.slope, int(x) / slopeStep, int(y) / slopeStep);
}

// The land on a coarse grid that reaches beyond the map, and where its water goes.
struct Land {
    int margin = 0; // nodes outside the map on each side
    Grid<float> height;
    Grid<int> downstream;   // index of the next node, -1 where the water leaves
    Grid<float> area;       // square kilometres drained
    std::vector<int> order; // every node after the one that it drains into
};

constexpr int landStep = 4; // pixels between nodes

// ---- the steps, in the order in which they run ----

Land ShapeLand(const SamplePlan& plan);
void FillHeights(SampleMap& map, const Land& land);
void PlaceRivers(SampleMap& map, const Land& land);
void PlaceLakes(SampleMap& map); // levels the ground under them
void MeasureSlopes(SampleMap& map);
void DrawWaterMask(SampleMap& map);
void PlaceTowns(SampleMap& map);
void PlaceRoads(SampleMap& map);
void PlaceBuildings(SampleMap& map);
void PlaceMarshes(SampleMap& map);
void PlaceWoods(SampleMap& map);
void PlaceHedges(SampleMap& map);
void PlaceCliffs(SampleMap& map);

// ---- results ----

struct Colour {
    uint8_t red, green, blue;
};

void DrawGround(const SampleMap& map, Grid<Colour>& art);  // relief, woods, contours
void DrawSymbols(const SampleMap& map, Grid<Colour>& art); // everything above the ground, in printing order
Grid<uint16_t> DeriveCells(const SampleMap& map);

// False when the file could not be written whole.
bool WriteBitmap(const char* path, const Grid<Colour>& art, int bitsPerPixel);
bool WriteMapData(const char* path, const SamplePlan& plan, const Grid<uint16_t>& cells);
