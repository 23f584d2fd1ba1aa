// What is built: blocks between the streets of the towns, houses along the roads, farms.
#include "samples/stroke.h"

namespace {

Spot Beside(Spot place, Spot axis, float along, float across)
{
    return place + axis * along + Turned(axis) * across;
}

// False when the building would not stand clear of roads, water and other buildings.
bool AddBuilding(SampleMap& map, std::vector<Building>& list, const Building& building, float clearance = 0.3f)
{
    for (int i = 0; i < 25; i++) {
        float along = float(i % 5 - 2) * 0.5f * (building.halfLength + clearance);
        float across = float(i / 5 - 2) * 0.5f * (building.halfWidth + clearance);
        Spot at = Beside(building.centre, building.axis, along, across);
        if (Nearest(map.road, at) > 60 || Nearest(map.water, at) > 40 || Nearest(map.town, at) > 60) {
            return false;
        }
    }
    FillBuilding(map.town, building, 0);
    list.push_back(building);
    return true;
}

// How much a place belongs to a town: 1 in its middle, below 0 outside.
float Density(const SampleMap& map, const Town& town, Spot place)
{
    return 1 - Distance(place, town.centre) / town.radius +
           0.45f * LayeredNoise(place / town.radius, 3, map.plan->seed + 500) -
           2.5f * std::max(0.0f, SlopeAt(map, place) - 0.06f);
}

struct RoadPoint {
    Spot place;
    Spot along; // measured over reach points to both sides
};

RoadPoint NearestRoadPoint(const SampleMap& map, Spot place, size_t reach)
{
    RoadPoint nearest = {{1e9f, 1e9f}, {}};
    for (const Road& road : map.roads) {
        for (size_t i = reach; i + reach < road.points.size() && road.kind != street; i++) {
            if (Distance(road.points[i], place) < Distance(nearest.place, place)) {
                nearest = {road.points[i], Unit(road.points[i + reach] - road.points[i - reach])};
            }
        }
    }
    return nearest;
}

// ---- towns ----

void BuildBlock(SampleMap& map, const Building& block, float density, Dice& dice)
{
    if (density > 0.34f && RollBetween(dice, 0, 1) < 0.4f + density && AddBuilding(map, map.blocks, block)) {
        return;
    }
    // Two rows of houses, one at each street, of uneven length.
    for (float row : {-1.0f, 1.0f}) {
        float at = -block.halfLength;
        while (at < block.halfLength - 1.5f) {
            float length = std::min(RollBetween(dice, 2.2f, 6.5f), block.halfLength - at);
            float depth = RollBetween(dice, 0.42f, 0.85f) * (block.halfWidth - 0.4f);
            Spot centre = Beside(block.centre, block.axis, at + length / 2, row * (block.halfWidth - depth / 2));
            if (RollBetween(dice, 0, 1) < 0.5f + density) {
                AddBuilding(map, map.buildings, {centre, block.axis, length / 2, depth / 2});
            }
            at += length + RollBetween(dice, 0.9f, 2.6f);
        }
    }
}

// Streets cross at the corners of a grid that is not quite regular.
void BuildTown(SampleMap& map, const Town& town, Dice& dice)
{
    float length = RollBetween(dice, 14, 17);
    float width = RollBetween(dice, 10.5f, 12.5f);
    uint32_t seed = Roll(dice);
    auto corner = [&](int column, int row) {
        float u = float(column) * length + 3.2f * (HashUnit(column, row, seed) - 0.5f);
        float v = float(row) * width + 2.6f * (HashUnit(column, row, seed + 1) - 0.5f);
        // Older towns are not straight.
        float bend = 3.5f * Noise(Spot{u, v} / 40, seed + 2);
        return Beside(town.centre, town.axis, u + bend, v - bend);
    };
    int reach = int(1.5f * town.radius / width) + 1;
    for (int row = -reach; row < reach; row++) {
        for (int column = -reach; column < reach; column++) {
            Spot a = corner(column, row);
            Spot b = corner(column + 1, row);
            Spot c = corner(column + 1, row + 1);
            Spot d = corner(column, row + 1);
            Spot centre = (a + b + c + d) * 0.25f;
            float density = Density(map, town, centre);
            if (density >= 0.06f) {
                Spot along = (b - a) + (c - d);
                Spot across = (d - a) + (c - b);
                map.roads.push_back({street, {a, b, c}});
                map.roads.push_back({street, {a, d, c}});
                BuildBlock(map, {centre, Unit(along), Length(along) / 4 - 1.9f, Length(across) / 4 - 1.9f}, density,
                           dice);
            }
        }
    }
}

// ---- villages and farms ----

// A village has a few lanes that lead off its road.
void AddLanes(SampleMap& map, const Town& village, Dice& dice)
{
    int count = 2 + int(village.radius / 8);
    for (int i = 0; i < count; i++) {
        // One roll to a statement: the order within an expression is the compiler's choice.
        float from = village.radius * RollBetween(dice, -0.6f, 0.6f);
        float length = village.radius * RollBetween(dice, 0.6f, 1.0f);
        float drift = village.radius * RollBetween(dice, -0.5f, 0.5f);
        float bend = RollBetween(dice, -4, 4);
        Spot start = NearestRoadPoint(map, village.centre + village.axis * from, 0).place;
        Spot end = Beside(start, Turned(village.axis), i % 2 == 0 ? length : -length, -drift);
        Spot middle = (start + end) * 0.5f + village.axis * bend;
        if (Nearest(map.water, end) <= 20 && Nearest(map.water, middle) <= 20 &&
            Nearest(map.water, (end + middle) * 0.5f) <= 20) {
            map.roads.push_back({street, SmoothCurve({start, middle, end})});
        }
    }
}

// Houses on both sides of a road, close in the towns and far between outside.
void LineRoad(SampleMap& map, const Road& road, Dice& dice)
{
    float untilNext = RollBetween(dice, 2, 6);
    for (size_t i = 2; i + 2 < road.points.size(); i++) {
        untilNext -= Distance(road.points[i], road.points[i - 1]);
        if (untilNext > 0) {
            continue;
        }
        untilNext = RollBetween(dice, 4.5f, 7);
        float density = -1;
        for (const Town& town : map.towns) {
            density = std::max(density, Density(map, town, road.points[i]));
        }
        float chance = density > 0 ? 0.95f : density > -0.5f ? 0.55f + density : 0.012f;
        Spot along = Unit(road.points[i + 2] - road.points[i - 2]);
        for (float side : {-1.0f, 1.0f}) {
            if (RollBetween(dice, 0, 1) > chance) {
                continue;
            }
            Building house = {{}, along, RollBetween(dice, 1.3f, 2.7f), RollBetween(dice, 1.1f, 1.7f)};
            float away = drawnWidths[road.kind] / 2 + 1.5f + house.halfWidth;
            house.centre = Beside(road.points[i], along, 0, side * away);
            if (AddBuilding(map, map.buildings, house) && density < -0.5f) {
                // A farm has its barn behind the house.
                Spot across = Turned(along);
                Spot yard =
                    Beside(house.centre, across, side * (house.halfWidth + 2.6f), -RollBetween(dice, -2.5f, 2.5f));
                AddBuilding(map, map.buildings, {yard, across, 1.6f, 1.2f}, 0.5f);
            }
        }
    }
}

// Small places have no streets but their road and its lanes.
bool HasBlocks(const Town& town)
{
    return town.radius > 25;
}

} // namespace

void PlaceBuildings(SampleMap& map)
{
    map.town = BlankMask(map);
    Dice dice = {map.plan->seed + 510};
    for (Town& town : map.towns) {
        town.axis = NearestRoadPoint(map, town.centre, 4).along;
        if (!HasBlocks(town)) {
            AddLanes(map, town, dice);
        }
    }
    size_t roadCount = map.roads.size();
    for (const Town& town : map.towns) {
        if (HasBlocks(town)) {
            BuildTown(map, town, dice);
        }
    }
    for (size_t i = 0; i < roadCount; i++) {
        LineRoad(map, map.roads[i], dice);
    }
}
