// The lines and symbols of the art, one ink after the other, as a printer would lay them down.
#include "tools/sample_stroke.h"

static constexpr Colour woodsInk = {118, 158, 96};
static constexpr Colour marshTint = {206, 228, 222};
static constexpr Colour marshInk = {74, 138, 178};
static constexpr Colour hedgeInk = {104, 146, 78};
static constexpr Colour shoreInk = {58, 112, 170};
static constexpr Colour streamInk = {72, 134, 196};
static constexpr Colour waterTint = {176, 213, 238};
static constexpr Colour deepTint = {146, 193, 228};
static constexpr Colour rockInk = {92, 78, 70};
static constexpr Colour trackInk = {98, 76, 62};
static constexpr Colour roadCasing = {108, 84, 76};
static constexpr Colour mainCasing = {128, 44, 30};
static constexpr Colour mainFill = {238, 122, 74};
static constexpr Colour minorFill = {255, 236, 138};
static constexpr Colour streetFill = {254, 252, 246};
static constexpr Colour streetCasing = {172, 156, 148};
static constexpr Colour houseInk = {74, 60, 60};
static constexpr Colour blockTint = {206, 148, 134};
static constexpr Colour blockEdge = {120, 72, 66};
static constexpr Colour plotTint = {243, 226, 210};
static constexpr Colour bridgeInk = {50, 44, 44};

static void Print(Grid<Colour>& art, const Grid<uint8_t>& mask, Colour ink, float strength)
{
    int full = int(strength * 256);
    for (size_t i = 0; i < mask.values.size(); i++) {
        int part = mask.values[i] * full / 255;
        if (part != 0) {
            Colour& c = art.values[i];
            c.red = uint8_t((c.red * (256 - part) + ink.red * part) / 256);
            c.green = uint8_t((c.green * (256 - part) + ink.green * part) / 256);
            c.blue = uint8_t((c.blue * (256 - part) + ink.blue * part) / 256);
        }
    }
}

static void Clear(Grid<uint8_t>& mask)
{
    std::fill(mask.values.begin(), mask.values.end(), uint8_t(0));
}

// ---- vegetation ----

// True when the mask is well covered at a place and round it.
static bool WellInside(const Grid<uint8_t>& mask, int x, int y, int reach)
{
    return Nearest(mask, x, y) > 200 && Nearest(mask, x - reach, y) > 200 && Nearest(mask, x + reach, y) > 200 &&
           Nearest(mask, x, y - reach) > 200 && Nearest(mask, x, y + reach) > 200;
}

static void DrawTrees(const SampleMap& map, Grid<uint8_t>& layer, uint32_t seed)
{
    constexpr int spacing = 8;
    for (int row = 0; row * spacing < map.plan->height; row++) {
        for (int column = 0; column * spacing < map.plan->width; column++) {
            float x = (float(column) + 0.15f + 0.7f * HashUnit(column, row, seed)) * spacing;
            float y = (float(row) + 0.15f + 0.7f * HashUnit(column, row, seed + 1)) * spacing;
            if (!WellInside(map.woods, int(x), int(y), 3) || HashUnit(column, row, seed + 2) < 0.25f) {
                continue;
            }
            bool conifer = Noise(x / 160, y / 160, seed + 3) > 0;
            if (conifer) {
                StrokeSegment(layer, {x - 1.6f, y + 1.6f}, {x, y - 1.8f}, 0.8f, 0.8f);
                StrokeSegment(layer, {x, y - 1.8f}, {x + 1.6f, y + 1.6f}, 0.8f, 0.8f);
            } else {
                StrokeSegment(layer, {x - 1.2f, y + 0.8f}, {x - 0.5f, y - 1.2f}, 0.8f, 0.8f);
                StrokeSegment(layer, {x - 0.5f, y - 1.2f}, {x + 1, y - 1}, 0.8f, 0.8f);
                StrokeSegment(layer, {x + 1, y - 1}, {x + 1.3f, y + 1}, 0.9f, 1.1f);
                StrokeSegment(layer, {x + 1.3f, y + 1}, {x - 0.2f, y + 1.4f}, 1.1f, 0.9f);
            }
        }
    }
}

static void DrawMarshSymbols(const SampleMap& map, Grid<uint8_t>& layer, uint32_t seed)
{
    for (int row = 0; row * 6 < map.plan->height; row++) {
        for (int column = 0; column * 11 < map.plan->width; column++) {
            float x = (float(column) + 0.5f * float(row % 2) + 0.3f * HashUnit(column, row, seed)) * 11;
            float y = float(row) * 6 + 3.5f;
            float half = 2.2f + 1.6f * HashUnit(column, row, seed + 1);
            if (Nearest(map.marsh, int(x), int(y)) < 160 || Nearest(map.water, int(x), int(y)) > 0) {
                continue;
            }
            StrokeSegment(layer, {x - half, y}, {x + half, y}, 1, 1);
            if (HashAt(column, row, seed + 2) % 3 == 0) {
                StrokeSegment(layer, {x, y - 0.5f}, {x, y - 2.6f}, 0.8f, 0.8f);
                StrokeSegment(layer, {x - 0.5f, y - 0.5f}, {x - 1.8f, y - 2}, 0.7f, 0.7f);
                StrokeSegment(layer, {x + 0.5f, y - 0.5f}, {x + 1.8f, y - 2}, 0.7f, 0.7f);
            }
        }
    }
}

static void DrawVegetation(const SampleMap& map, Grid<Colour>& art, Grid<uint8_t>& layer)
{
    DrawTrees(map, layer, map.plan->seed + 700);
    Print(art, layer, woodsInk, 0.62f);
    Print(art, map.marsh, marshTint, 0.6f);
    Clear(layer);
    DrawMarshSymbols(map, layer, map.plan->seed + 710);
    Print(art, layer, marshInk, 0.85f);
    Clear(layer);
    for (int y = 0; y < layer.height; y++) {
        for (int x = 0; x < layer.width; x++) {
            // Bushes: rounder and darker spots along the line.
            int strength = HashAt(x / 2, y / 2, 711) % 3 == 0 ? 150 : 255;
            At(layer, x, y) = uint8_t(At(map.hedge, x, y) * strength / 255);
        }
    }
    Print(art, layer, hedgeInk, 0.9f);
    Clear(layer);
}

// ---- water and rock ----

static void DrawWater(const SampleMap& map, Grid<Colour>& art, Grid<uint8_t>& layer)
{
    constexpr float narrow = 2.4f; // a river below this width is a single line
    for (const WideLine& river : map.rivers) {
        StrokeWideLine(layer, river, 0.4f);
    }
    Print(art, layer, streamInk, 0.95f);
    Clear(layer);
    for (const WideLine& river : map.rivers) {
        for (size_t i = 1; i < river.points.size(); i++) {
            if (river.widths[i] > narrow) {
                StrokeSegment(layer, river.points[i - 1], river.points[i], river.widths[i - 1] + 0.5f,
                              river.widths[i] + 0.5f);
            }
        }
    }
    // A shore is a darker rim; rivers lose it where they enter a lake or another river.
    for (size_t i = 0; i < layer.values.size(); i++) {
        layer.values[i] = uint8_t(std::max<int>(layer.values[i], std::min(255, map.lake.values[i] * 2)));
    }
    Print(art, layer, shoreInk, 0.85f);
    Clear(layer);
    for (const WideLine& river : map.rivers) {
        for (size_t i = 1; i < river.points.size(); i++) {
            if (river.widths[i] > narrow) {
                StrokeSegment(layer, river.points[i - 1], river.points[i], river.widths[i - 1] - 1,
                              river.widths[i] - 1);
            }
        }
    }
    for (int y = 0; y < layer.height; y++) {
        for (int x = 0; x < layer.width; x++) {
            int lake = At(map.lake, x, y);
            if (lake > 127) {
                int least = std::min(std::min(Nearest(map.lake, x - 1, y), Nearest(map.lake, x + 1, y)),
                                     std::min(Nearest(map.lake, x, y - 1), Nearest(map.lake, x, y + 1)));
                uint8_t& covered = At(layer, x, y);
                covered = std::max(covered, uint8_t(least));
            }
        }
    }
    Print(art, layer, waterTint, 1);
    for (size_t i = 0; i < layer.values.size(); i++) {
        float depth = float(map.lakeDepth.values[i]) / 255;
        layer.values[i] = CoverageByte(map.lake.values[i] < 250 ? 0 : Ramp(0.1f, 0.7f, depth));
    }
    Print(art, layer, deepTint, 1);
    Clear(layer);
}

static void DrawCliffs(const SampleMap& map, Grid<Colour>& art, Grid<uint8_t>& layer)
{
    for (const Cliff& cliff : map.cliffs) {
        StrokeLine(layer, cliff.points, 1.3f);
        for (size_t i = 0; i < cliff.points.size(); i++) {
            float length = 3.2f + 3 * HashUnit(int(i), int(cliff.points[0].x), 720);
            StrokeSegment(layer, cliff.points[i], cliff.points[i] + cliff.downhill[i] * length, 1.1f, 0.4f);
        }
    }
    Print(art, layer, rockInk, 0.85f);
    Clear(layer);
}

// ---- roads and towns ----

static void StrokeRoads(const SampleMap& map, Grid<uint8_t>& layer, RoadKind kind, float width)
{
    for (const Road& road : map.roads) {
        if (road.kind == kind) {
            StrokeLine(layer, road.points, width);
        }
    }
}

static void PrintRoads(const SampleMap& map, Grid<Colour>& art, Grid<uint8_t>& layer, RoadKind kind, float width,
                       Colour ink)
{
    StrokeRoads(map, layer, kind, width);
    Print(art, layer, ink, 1);
    Clear(layer);
}

// Where a road crosses a river that has two banks: rails on both sides.
static void DrawBridges(const SampleMap& map, Grid<Colour>& art, Grid<uint8_t>& layer)
{
    for (const Road& road : map.roads) {
        if (road.kind > minorRoad) {
            continue;
        }
        float width = DrawnWidth(road.kind);
        for (size_t i = 0; i < road.points.size(); i++) {
            auto wet = [&](size_t at) {
                return WellInside(map.water, int(road.points[at].x), int(road.points[at].y), 1);
            };
            if (!wet(i)) {
                continue;
            }
            size_t end = i;
            while (end + 1 < road.points.size() && wet(end + 1)) {
                end++;
            }
            size_t from = i > 0 ? i - 1 : i;
            size_t to = std::min(end + 1, road.points.size() - 1);
            Spot along = Unit(road.points[to] - road.points[from]);
            Spot side = Spot{-along.y, along.x} * (width / 2 + 0.5f);
            for (float sign : {-1.0f, 1.0f}) {
                Spot start = road.points[from] + side * sign;
                Spot stop = road.points[to] + side * sign;
                StrokeSegment(layer, start, stop, 1.3f, 1.3f);
                StrokeSegment(layer, start, start + side * (sign * 0.8f) - along * 1.5f, 1.1f, 1.1f);
                StrokeSegment(layer, stop, stop + side * (sign * 0.8f) + along * 1.5f, 1.1f, 1.1f);
            }
            i = end;
        }
    }
    Print(art, layer, bridgeInk, 1);
    Clear(layer);
}

static void DrawTowns(const SampleMap& map, Grid<Colour>& art, Grid<uint8_t>& layer)
{
    StrokeRoads(map, layer, street, 13);
    for (size_t i = 0; i < layer.values.size(); i++) {
        layer.values[i] = map.water.values[i] > 60 ? 0 : layer.values[i];
    }
    Print(art, layer, plotTint, 0.8f);
    Clear(layer);
    PrintRoads(map, art, layer, street, streetWidth, streetCasing);
    PrintRoads(map, art, layer, street, streetWidth - 1.2f, streetFill);
    for (const Building& block : map.blocks) {
        FillBuilding(layer, block, 0);
    }
    Print(art, layer, blockEdge, 1);
    Clear(layer);
    for (const Building& block : map.blocks) {
        FillBuilding(layer, block, -0.9f);
    }
    Print(art, layer, blockTint, 1);
    Clear(layer);
}

static void DrawTracks(const SampleMap& map, Grid<Colour>& art, Grid<uint8_t>& layer)
{
    for (const Road& road : map.roads) {
        if (road.kind == track) {
            StrokeDashes(layer, road.points, 1.25f, 6, 2.6f);
        }
    }
    Print(art, layer, trackInk, 0.95f);
    Clear(layer);
}

void DrawSymbols(const SampleMap& map, Grid<Colour>& art)
{
    Grid<uint8_t> layer = MakeGrid<uint8_t>(art.width, art.height, 0);
    DrawVegetation(map, art, layer);
    DrawCliffs(map, art, layer);
    DrawWater(map, art, layer);
    DrawTracks(map, art, layer);
    DrawTowns(map, art, layer);
    DrawBridges(map, art, layer);
    PrintRoads(map, art, layer, minorRoad, minorRoadWidth, roadCasing);
    PrintRoads(map, art, layer, mainRoad, mainRoadWidth, mainCasing);
    PrintRoads(map, art, layer, minorRoad, minorRoadWidth - 1.5f, minorFill);
    PrintRoads(map, art, layer, mainRoad, mainRoadWidth - 1.7f, mainFill);
    for (const Building& house : map.buildings) {
        FillBuilding(layer, house, 0);
    }
    Print(art, layer, houseInk, 0.92f);
}
