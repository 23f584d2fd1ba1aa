// What is built: blocks between the streets of the towns, houses along the roads, farms.
#include "tools/sample_stroke.h"

// Whether a building would stand clear of roads, water and other buildings.
static bool IsFree(const SampleMap& map, const Building& building, float clearance)
{
    Spot side = {-building.axis.y, building.axis.x};
    for (int i = -2; i <= 2; i++) {
        for (int k = -2; k <= 2; k++) {
            Spot at = building.centre + building.axis * (float(i) * 0.5f * (building.halfLength + clearance)) +
                      side * (float(k) * 0.5f * (building.halfWidth + clearance));
            int x = int(std::floor(at.x));
            int y = int(std::floor(at.y));
            if (!Inside(map.town, x, y) || At(map.road, x, y) > 60 || At(map.water, x, y) > 40 ||
                At(map.town, x, y) > 60) {
                return false;
            }
        }
    }
    return true;
}

static bool AddBuilding(SampleMap& map, std::vector<Building>& list, const Building& building, float clearance)
{
    if (!IsFree(map, building, clearance)) {
        return false;
    }
    FillBuilding(map.town, building, 0);
    list.push_back(building);
    return true;
}

// Small places have no streets but their road and its lanes.
static bool HasBlocks(const Town& town)
{
    return town.radius > 25;
}

// How much a place belongs to a town: 1 in its middle, below 0 outside.
static float Density(const SampleMap& map, const Town& town, Spot place)
{
    return 1 - Distance(place, town.centre) / town.radius +
           0.45f * LayeredNoise(place.x / town.radius, place.y / town.radius, 3, map.plan->seed + 500) -
           2.5f * std::max(0.0f, SlopeAt(map, place.x, place.y) - 0.06f);
}

// The direction of the road that passes nearest to the town's centre.
static Spot StreetAxis(const SampleMap& map, const Town& town)
{
    float nearest = 1e30f;
    Spot axis = {1, 0};
    for (const Road& road : map.roads) {
        for (size_t i = 4; i + 4 < road.points.size(); i++) {
            float distance = Distance(road.points[i], town.centre);
            if (distance < nearest) {
                nearest = distance;
                axis = Unit(road.points[i + 4] - road.points[i - 4]);
            }
        }
    }
    return axis;
}

// Streets cross at the corners of a grid that is not quite regular.
static Spot StreetCorner(const Town& town, int column, int row, float length, float width, uint32_t seed)
{
    Spot side = {-town.axis.y, town.axis.x};
    float u = float(column) * length + 3.2f * (HashUnit(column, row, seed) - 0.5f);
    float v = float(row) * width + 2.6f * (HashUnit(column, row, seed + 1) - 0.5f);
    // Older towns are not straight.
    float bend = 3.5f * Noise(u / 40, v / 40, seed + 2);
    return town.centre + town.axis * (u + bend) + side * (v - bend);
}

static void AddStreet(SampleMap& map, Spot from, Spot to)
{
    for (Spot end : {from, to, (from + to) * 0.5f}) {
        if (Nearest(map.lake, int(end.x), int(end.y)) > 20) {
            return;
        }
    }
    map.roads.push_back({street, {from, to}});
}

static void BuildBlock(SampleMap& map, const Building& block, float density, Dice& dice)
{
    Spot side = {-block.axis.y, block.axis.x};
    if (density > 0.34f && RollUnit(dice) < 0.4f + density && AddBuilding(map, map.blocks, block, 0.3f)) {
        return;
    }
    // Two rows of houses, one at each street, of uneven length.
    for (float row : {-1.0f, 1.0f}) {
        float at = -block.halfLength;
        while (at < block.halfLength - 1.5f) {
            float length = std::min(RollBetween(dice, 2.2f, 6.5f), block.halfLength - at);
            float depth = RollBetween(dice, 0.42f, 0.85f) * (block.halfWidth - 0.4f);
            Building house = {block.centre + block.axis * (at + length / 2) +
                                  side * (row * (block.halfWidth - depth / 2)),
                              block.axis, length / 2, depth / 2};
            if (RollUnit(dice) < 0.5f + density) {
                AddBuilding(map, map.buildings, house, 0.3f);
            }
            at += length + RollBetween(dice, 0.9f, 2.6f);
        }
    }
}

static void BuildTown(SampleMap& map, const Town& town, Dice& dice)
{
    float length = RollBetween(dice, 14, 17);
    float width = RollBetween(dice, 10.5f, 12.5f);
    uint32_t seed = Roll(dice);
    int reach = int(1.5f * town.radius / width) + 1;
    std::vector<std::pair<Building, float>> plots;
    for (int row = -reach; row < reach; row++) {
        for (int column = -reach; column < reach; column++) {
            Spot a = StreetCorner(town, column, row, length, width, seed);
            Spot b = StreetCorner(town, column + 1, row, length, width, seed);
            Spot c = StreetCorner(town, column + 1, row + 1, length, width, seed);
            Spot d = StreetCorner(town, column, row + 1, length, width, seed);
            Spot centre = (a + b + c + d) * 0.25f;
            float density = Density(map, town, centre);
            if (density < 0.06f || !Inside(map.town, int(centre.x), int(centre.y))) {
                continue;
            }
            Spot along = (b - a) + (c - d);
            Spot across = (d - a) + (c - b);
            plots.push_back({{centre, Unit(along), Length(along) / 4 - 1.9f, Length(across) / 4 - 1.9f}, density});
            AddStreet(map, a, b);
            AddStreet(map, a, d);
            AddStreet(map, b, c);
            AddStreet(map, d, c);
        }
    }
    for (const auto& [plot, density] : plots) {
        BuildBlock(map, plot, density, dice);
    }
}

static Spot NearestRoadPoint(const SampleMap& map, Spot place)
{
    Spot nearest = place;
    float least = 1e30f;
    for (const Road& road : map.roads) {
        for (Spot point : road.points) {
            float distance = Distance(point, place);
            if (road.kind != street && distance < least) {
                least = distance;
                nearest = point;
            }
        }
    }
    return nearest;
}

// A village has a few lanes that lead off its road.
static void AddLanes(SampleMap& map, const Town& village, Dice& dice)
{
    Spot side = {-village.axis.y, village.axis.x};
    int count = 2 + int(village.radius / 8);
    for (int i = 0; i < count; i++) {
        // One roll to a statement: the order within an expression is the compiler's choice.
        float from = village.radius * RollBetween(dice, -0.6f, 0.6f);
        float length = village.radius * RollBetween(dice, 0.6f, 1.0f);
        float drift = village.radius * RollBetween(dice, -0.5f, 0.5f);
        float bend = RollBetween(dice, -4, 4);
        Spot start = NearestRoadPoint(map, village.centre + village.axis * from);
        Spot end = start + side * (i % 2 == 0 ? length : -length) + village.axis * drift;
        Spot middle = (start + end) * 0.5f + village.axis * bend;
        bool wet = false;
        for (Spot place : {end, middle, (end + middle) * 0.5f}) {
            wet = wet || Nearest(map.water, int(place.x), int(place.y)) > 20;
        }
        if (!wet) {
            map.roads.push_back({street, SmoothCurve({start, middle, end})});
        }
    }
}

// Houses on both sides of a road, close in the towns and far between outside.
static void LineRoad(SampleMap& map, const Road& road, Dice& dice)
{
    float half = DrawnWidth(road.kind) / 2;
    float untilNext = RollBetween(dice, 2, 6);
    for (size_t i = 2; i + 2 < road.points.size(); i++) {
        untilNext -= Distance(road.points[i], road.points[i - 1]);
        if (untilNext > 0) {
            continue;
        }
        untilNext = RollBetween(dice, 4.5f, 7);
        float density = -1;
        for (const Town& town : map.towns) {
            if (Distance(town.centre, road.points[i]) < 1.8f * town.radius) {
                density = std::max(density, Density(map, town, road.points[i]));
            }
        }
        float chance = density > 0 ? 0.95f : density > -0.5f ? 0.55f + density : 0.012f;
        Spot along = Unit(road.points[i + 2] - road.points[i - 2]);
        Spot side = {-along.y, along.x};
        for (float direction : {-1.0f, 1.0f}) {
            if (RollUnit(dice) > chance) {
                continue;
            }
            Building house = {{}, along, RollBetween(dice, 1.3f, 2.7f), RollBetween(dice, 1.1f, 1.7f)};
            house.centre = road.points[i] + side * (direction * (half + 1.5f + house.halfWidth));
            bool built = AddBuilding(map, map.buildings, house, 0.3f);
            if (built && density < -0.5f) {
                // A farm has its barn behind the house.
                Building barn = {house.centre + side * (direction * (house.halfWidth + 2.6f)) +
                                     along * RollBetween(dice, -2.5f, 2.5f),
                                 side, 1.6f, 1.2f};
                AddBuilding(map, map.buildings, barn, 0.5f);
            }
        }
    }
}

void PlaceBuildings(SampleMap& map)
{
    map.town = MakeGrid<uint8_t>(map.plan->width, map.plan->height, 0);
    Dice dice = {map.plan->seed + 510};
    for (Town& town : map.towns) {
        town.axis = StreetAxis(map, town);
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
        Road road = map.roads[i];
        LineRoad(map, road, dice);
    }
}
