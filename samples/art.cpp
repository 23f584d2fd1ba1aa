// The art: the ground, then lines and symbols, one ink after the other, as a printer would lay them down.
#include "samples/stroke.h"

#include <span>

namespace {

typedef Grid<uint8_t> Mask;

// ---- the ground: height tints, woods, relief shading, contour lines ----

typedef std::array<float, 3> Tone; // red, green, blue

void Tint(Tone& tone, const Tone& ink, float strength)
{
    for (int channel = 0; channel < 3; channel++) {
        tone[channel] = Mix(tone[channel], ink[channel], strength);
    }
}

constexpr Tone heightTints[] = {
    {236, 241, 216}, {245, 243, 220}, {249, 241, 214}, {246, 232, 205}, {240, 223, 200}, {240, 230, 220},
};
constexpr int tintCount = int(std::size(heightTints));
constexpr Tone woodsTint = {193, 220, 166};
constexpr Tone woodsEdge = {112, 154, 92};
constexpr Tone contourInk = {186, 122, 72};
constexpr Tone indexContourInk = {160, 94, 50};
constexpr Tone shadowTint = {92, 84, 108};
constexpr Tone lightTint = {255, 253, 240};

// Coverage of the nearest contour line; width is the part of a pixel that the line takes.
float ContourCoverage(float height, float rise, float interval, float width)
{
    float line = std::floor(height / interval + 0.5f) * interval;
    float distance = std::abs(height - line) / rise;
    // On nearly even ground a line would spread into a stain.
    return std::clamp(width / 2 + 0.5f - distance, 0.0f, 1.0f) * std::min(width, 1.0f) * Ramp(0.008f, 0.03f, rise);
}

// The lightness of the slope in light from the north-west, -1 to 1, 0 for level ground.
float Relief(const SampleMap& map, int x, int y, int reach)
{
    Spot change = Change(map.height, x, y, reach);
    float lit = (change.x + change.y) / (float(reach) * 20) * 1.9f;
    return lit / std::sqrt(1 + lit * lit);
}

Grid<Colour> DrawGround(const SampleMap& map)
{
    float interval = map.plan->art.contourInterval;
    float tintStep = std::max(map.heightSpan, 150.0f) / (tintCount - 1);
    return FillGrid<Colour>(map.height.width, map.height.height, [&](int x, int y) {
        float height = At(map.height, x, y);
        float level = std::clamp((height - map.lowest) / tintStep, 0.0f, float(tintCount) - 1.001f);
        Tone tone = heightTints[int(level)];
        Tint(tone, heightTints[int(level) + 1], level - std::floor(level));
        int woods = At(map.woods, x, y);
        int outside = woods - std::min<int>(woods, LeastAround(map.woods, x, y, 1));
        Tint(tone, woodsTint, float(woods) / 255);
        Tint(tone, woodsEdge, 0.55f * float(outside) / 255);
        float relief = 0.55f * Relief(map, x, y, 2) + 0.45f * Relief(map, x, y, 7);
        Tint(tone, relief < 0 ? shadowTint : lightTint, relief * (relief < 0 ? -0.42f : 0.5f));
        if (At(map.lake, x, y) < 128) {
            float rise = std::max(Length(Change(map.height, x, y, 1)) / 2, 0.001f);
            Tint(tone, contourInk, 0.75f * ContourCoverage(height, rise, interval, 0.8f));
            Tint(tone, indexContourInk, 0.9f * ContourCoverage(height, rise, 5 * interval, 1.45f));
        }
        return Colour{uint8_t(tone[0] + 0.5f), uint8_t(tone[1] + 0.5f), uint8_t(tone[2] + 0.5f)};
    });
}

// ---- vegetation ----

struct Stroke {
    Spot from;
    Spot to;
    float fromWidth;
    float toWidth;
};

constexpr Stroke conifer[] = {{{-1.6f, 1.6f}, {0, -1.8f}, 0.8f, 0.8f}, {{0, -1.8f}, {1.6f, 1.6f}, 0.8f, 0.8f}};
constexpr Stroke broadleaf[] = {{{-1.2f, 0.8f}, {-0.5f, -1.2f}, 0.8f, 0.8f},
                                {{-0.5f, -1.2f}, {1, -1}, 0.8f, 0.8f},
                                {{1, -1}, {1.3f, 1}, 0.9f, 1.1f},
                                {{1.3f, 1}, {-0.2f, 1.4f}, 1.1f, 0.9f}};
constexpr Stroke reeds[] = {{{0, -0.5f}, {0, -2.6f}, 0.8f, 0.8f},
                            {{-0.5f, -0.5f}, {-1.8f, -2}, 0.7f, 0.7f},
                            {{0.5f, -0.5f}, {1.8f, -2}, 0.7f, 0.7f}};

void StrokeSymbol(Mask& mask, Spot place, std::span<const Stroke> symbol)
{
    for (const Stroke& stroke : symbol) {
        StrokeSegment(mask, place + stroke.from, place + stroke.to, stroke.fromWidth, stroke.toWidth);
    }
}

// True when the mask is well covered at a place and round it.
bool WellInside(const Mask& mask, Spot place, int reach)
{
    return Nearest(mask, place) > 200 && LeastAround(mask, int(place.x), int(place.y), reach) > 200;
}

Mask Trees(const SampleMap& map)
{
    constexpr int spacing = 8;
    uint32_t seed = map.plan->seed + 700;
    Mask mask = BlankMask(map);
    for (int row = 0; row * spacing < mask.height; row++) {
        for (int column = 0; column * spacing < mask.width; column++) {
            Spot shift = {HashUnit(column, row, seed), HashUnit(column, row, seed + 1)};
            Spot place = (SpotAt(column, row) + Spot{0.15f, 0.15f} + shift * 0.7f) * spacing;
            if (WellInside(map.woods, place, 3) && HashUnit(column, row, seed + 2) >= 0.25f) {
                bool cold = Noise(place / 160, seed + 3) > 0;
                StrokeSymbol(mask, place, cold ? std::span<const Stroke>(conifer) : broadleaf);
            }
        }
    }
    return mask;
}

Mask MarshLines(const SampleMap& map)
{
    uint32_t seed = map.plan->seed + 710;
    Mask mask = BlankMask(map);
    for (int row = 0; row * 6 < mask.height; row++) {
        for (int column = 0; column * 11 < mask.width; column++) {
            Spot place = {(float(column) + 0.5f * float(row % 2) + 0.3f * HashUnit(column, row, seed)) * 11,
                          float(row) * 6 + 3.5f};
            if (Nearest(map.marsh, place) < 160 || Nearest(map.water, place) > 0) {
                continue;
            }
            Spot half = {2.2f + 1.6f * HashUnit(column, row, seed + 1), 0};
            StrokeSegment(mask, place - half, place + half, 1, 1);
            if (HashAt(column, row, seed + 2) % 3 == 0) {
                StrokeSymbol(mask, place, reeds);
            }
        }
    }
    return mask;
}

// Bushes: rounder and darker spots along the line.
Mask Hedges(const SampleMap& map)
{
    return FillMask(map, [&](int x, int y) {
        return At(map.hedge, x, y) * (HashAt(x / 2, y / 2, 711) % 3 == 0 ? 150 : 255) / 255;
    });
}

// ---- water and rock ----

Mask Rivers(const SampleMap& map, float extra, float narrowest)
{
    Mask mask = BlankMask(map);
    for (const WideLine& river : map.rivers) {
        StrokeWideLine(mask, river, extra, narrowest);
    }
    return mask;
}

constexpr float twoBanks = 2.4f; // a river below this width is a single line

// A shore is a darker rim; rivers lose it where they enter a lake or another river.
Mask Shores(const SampleMap& map)
{
    Mask rivers = Rivers(map, 0.5f, twoBanks);
    return FillMask(
        map, [&](int x, int y) { return std::max<int>(At(rivers, x, y), std::min(255, At(map.lake, x, y) * 2)); });
}

Mask OpenWater(const SampleMap& map)
{
    Mask rivers = Rivers(map, -1, twoBanks);
    return FillMask(map, [&](int x, int y) {
        bool lake = At(map.lake, x, y) > 127;
        return lake ? std::max(At(rivers, x, y), LeastAround(map.lake, x, y, 1)) : At(rivers, x, y);
    });
}

Mask DeepWater(const SampleMap& map)
{
    return FillMask(map, [&](int x, int y) {
        return CoverageByte(At(map.lake, x, y) < 250 ? 0 : Ramp(0.1f, 0.7f, float(At(map.lakeDepth, x, y)) / 255));
    });
}

Mask Cliffs(const SampleMap& map)
{
    Mask mask = BlankMask(map);
    for (const std::vector<Spot>& edge : map.cliffs) {
        StrokeLine(mask, edge, 1.3f);
        for (size_t i = 0; i < edge.size(); i++) {
            float length = 3.2f + 3 * HashUnit(int(i), int(edge[0].x), 720);
            StrokeSegment(mask, edge[i], edge[i] - Unit(Gradient(map, edge[i])) * length, 1.1f, 0.4f);
        }
    }
    return mask;
}

// ---- roads and towns ----

Mask Roads(const SampleMap& map, RoadKind kind, float width)
{
    Mask mask = BlankMask(map);
    for (const Road& road : map.roads) {
        if (road.kind == kind) {
            (kind == track ? StrokeDashes : StrokeLine)(mask, road.points, width);
        }
    }
    return mask;
}

Mask TownGround(const SampleMap& map)
{
    Mask ground = Roads(map, street, 13);
    return FillGrid<uint8_t>(ground.width, ground.height,
                             [&](int x, int y) { return At(map.water, x, y) > 60 ? 0 : At(ground, x, y); });
}

Mask Buildings(const SampleMap& map, const std::vector<Building>& buildings, float extra)
{
    Mask mask = BlankMask(map);
    for (const Building& building : buildings) {
        FillBuilding(mask, building, extra);
    }
    return mask;
}

// Where a road crosses a river that has two banks: rails on both sides.
Mask Bridges(const SampleMap& map)
{
    Mask mask = BlankMask(map);
    for (const Road& road : map.roads) {
        auto dry = [&](size_t at) { return !WellInside(map.water, road.points[at], 1); };
        for (size_t i = 1; i < road.points.size() && road.kind <= minorRoad; i++) {
            if (dry(i)) {
                continue;
            }
            Spot start = road.points[i - 1];
            while (i + 1 < road.points.size() && !dry(i)) {
                i++;
            }
            Spot stop = road.points[i];
            Spot along = Unit(stop - start);
            for (float sign : {-1.0f, 1.0f}) {
                Spot side = Turned(along) * (sign * (drawnWidths[road.kind] / 2 + 0.5f));
                Spot flare = side * 0.8f;
                StrokeSegment(mask, start + side, stop + side, 1.3f, 1.3f);
                StrokeSegment(mask, start + side, start + side + flare - along * 1.5f, 1.1f, 1.1f);
                StrokeSegment(mask, stop + side, stop + side + flare + along * 1.5f, 1.1f, 1.1f);
            }
        }
    }
    return mask;
}

} // namespace

Grid<Colour> DrawArt(const SampleMap& map)
{
    Grid<Colour> art = DrawGround(map);
    auto print = [&](const Mask& mask, Colour ink, float strength) {
        for (size_t i = 0; i < mask.values.size(); i++) {
            int part = mask.values[i] * int(strength * 256) / 255;
            for (int channel = 0; channel < 3; channel++) {
                uint8_t& value = art.values[i][channel];
                value = uint8_t((value * (256 - part) + ink[channel] * part) / 256);
            }
        }
    };
    print(Trees(map), {118, 158, 96}, 0.62f);
    print(map.marsh, {206, 228, 222}, 0.6f);
    print(MarshLines(map), {74, 138, 178}, 0.85f);
    print(Hedges(map), {104, 146, 78}, 0.9f);
    print(Cliffs(map), {92, 78, 70}, 0.85f);
    print(Rivers(map, 0.4f, 0), {72, 134, 196}, 0.95f);
    print(Shores(map), {58, 112, 170}, 0.85f);
    print(OpenWater(map), {176, 213, 238}, 1);
    print(DeepWater(map), {146, 193, 228}, 1);
    print(Roads(map, track, 1.25f), {98, 76, 62}, 0.95f);
    print(TownGround(map), {243, 226, 210}, 0.8f);
    print(Roads(map, street, drawnWidths[street]), {172, 156, 148}, 1);
    print(Roads(map, street, drawnWidths[street] - 1.2f), {254, 252, 246}, 1);
    print(Buildings(map, map.blocks, 0), {120, 72, 66}, 1);
    print(Buildings(map, map.blocks, -0.9f), {206, 148, 134}, 1);
    print(Bridges(map), {50, 44, 44}, 1);
    print(Roads(map, minorRoad, drawnWidths[minorRoad]), {108, 84, 76}, 1);
    print(Roads(map, mainRoad, drawnWidths[mainRoad]), {128, 44, 30}, 1);
    print(Roads(map, minorRoad, drawnWidths[minorRoad] - 1.5f), {255, 236, 138}, 1);
    print(Roads(map, mainRoad, drawnWidths[mainRoad] - 1.7f), {238, 122, 74}, 1);
    print(Buildings(map, map.buildings, 0), {74, 60, 60}, 0.92f);
    return art;
}
