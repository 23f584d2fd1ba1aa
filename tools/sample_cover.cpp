// What covers the ground: woods, marshes, hedges, cliffs.
#include "tools/sample_stroke.h"

// Distance in pixels, up to reach, from the nearest covered pixel; one value for every slopeStep pixels.
static Grid<float> DistanceFrom(const SampleMap& map, const Grid<uint8_t>& mask, float reach)
{
    Grid<float> distance = MakeGrid<float>(map.slope.width, map.slope.height, reach);
    for (int y = 0; y < mask.height; y++) {
        for (int x = 0; x < mask.width; x++) {
            if (At(mask, x, y) > 127) {
                At(distance, x / slopeStep, y / slopeStep) = 0;
            }
        }
    }
    auto pass = [&](int x, int y, int fromX, int fromY, float step) {
        if (Inside(distance, fromX, fromY)) {
            float& own = At(distance, x, y);
            own = std::min(own, At(distance, fromX, fromY) + step * slopeStep);
        }
    };
    for (int y = 0; y < distance.height; y++) {
        for (int x = 0; x < distance.width; x++) {
            pass(x, y, x - 1, y, 1);
            pass(x, y, x, y - 1, 1);
            pass(x, y, x - 1, y - 1, 1.414f);
            pass(x, y, x + 1, y - 1, 1.414f);
        }
    }
    for (int y = distance.height - 1; y >= 0; y--) {
        for (int x = distance.width - 1; x >= 0; x--) {
            pass(x, y, x + 1, y, 1);
            pass(x, y, x, y + 1, 1);
            pass(x, y, x + 1, y + 1, 1.414f);
            pass(x, y, x - 1, y + 1, 1.414f);
        }
    }
    return distance;
}

// Between the values of a grid with one value for every slopeStep pixels.
static float Between(const Grid<float>& grid, float x, float y)
{
    float column = x / slopeStep - 0.5f;
    float row = y / slopeStep - 0.5f;
    int left = int(std::floor(column));
    int top = int(std::floor(row));
    float u = column - float(left);
    float v = row - float(top);
    return Mix(Mix(Nearest(grid, left, top), Nearest(grid, left + 1, top), u),
               Mix(Nearest(grid, left, top + 1), Nearest(grid, left + 1, top + 1), u), v);
}

// Land is held in parcels with straight sides; each has a number of its own.
struct Parcel {
    int column;
    int row;
    float toLeft; // pixels from the two sides that the parcel shares with the ones before it
    float toTop;
};

static Parcel ParcelAt(float x, float y, float size, uint32_t seed)
{
    // The turned and gently bent grid differs from district to district.
    float bend = 0.9f * size * Noise(x / (9 * size), y / (9 * size), seed);
    float u = (0.88f * x + 0.475f * y + bend) / (1.5f * size);
    float v = (0.88f * y - 0.475f * x + 0.6f * bend) / size;
    int row = int(std::floor(v));
    u += HashUnit(row, 7, seed); // neighbouring rows are shifted, as brickwork is
    int column = int(std::floor(u));
    return {column, row, (u - float(column)) * 1.5f * size, (v - float(row)) * size};
}

void PlaceWoods(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    Grid<float> fromTown = DistanceFrom(map, map.town, 60);
    Grid<float> fromWater = DistanceFrom(map, map.water, 40);
    auto [lowest, highest] = std::minmax_element(map.height.values.begin(), map.height.values.end());
    float treeLine = *lowest + 0.8f * (*highest - *lowest);
    Grid<float> favour = MakeGrid<float>(map.slope.width, map.slope.height, 0);
    for (int y = 0; y < favour.height; y++) {
        for (int x = 0; x < favour.width; x++) {
            float mapX = float(x * slopeStep);
            float mapY = float(y * slopeStep);
            float slope = At(map.slope, x, y);
            float height = Nearest(map.height, int(mapX), int(mapY));
            float value = -0.36f + 0.85f * LayeredNoise(mapX / 210, mapY / 210, 3, plan.seed + 600);
            value += 0.75f * Ramp(0.06f, 0.3f, slope) - 0.35f * Ramp(0.6f, 1.0f, slope);
            value -= 1.6f * Ramp(treeLine - 60, treeLine + 60, height) * Ramp(250, 400, *highest - *lowest);
            value -= 0.9f * (1 - Ramp(5, 50, At(fromTown, x, y)));
            value -= 0.25f * (1 - Ramp(4, 30, At(fromWater, x, y)));
            At(favour, x, y) = value;
        }
    }
    map.woods = MakeGrid<uint8_t>(plan.width, plan.height, 0);
    for (int y = 0; y < plan.height; y++) {
        for (int x = 0; x < plan.width; x++) {
            if (At(favour, x / slopeStep, y / slopeStep) < -0.8f) {
                continue;
            }
            float value = Between(favour, float(x), float(y));
            if (value < -0.5f || At(map.water, x, y) > 127 || At(map.town, x, y) > 0) {
                continue;
            }
            value += 0.2f * LayeredNoise(float(x) / 26, float(y) / 26, 2, plan.seed + 610);
            // Clearings follow the parcels where the ground is easy to work.
            if (value < 0.5f) {
                Parcel parcel = ParcelAt(float(x), float(y), 24, plan.seed + 620);
                value += 0.34f * (HashUnit(parcel.column, parcel.row, plan.seed + 621) - 0.5f);
            }
            At(map.woods, x, y) = CoverageByte(value * 14 + 0.5f);
        }
    }
}

void PlaceMarshes(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    Grid<float> fromWater = DistanceFrom(map, map.water, 90);
    Grid<float> fromTown = DistanceFrom(map, map.town, 40);
    map.marsh = MakeGrid<uint8_t>(plan.width, plan.height, 0);
    for (int y = 0; y < plan.height; y++) {
        for (int x = 0; x < plan.width; x++) {
            float mapX = float(x);
            float mapY = float(y);
            if (Nearest(fromWater, x / slopeStep, y / slopeStep) > 60 || SlopeAt(map, mapX, mapY) > 0.08f ||
                At(map.water, x, y) > 127) {
                continue;
            }
            float distance = Between(fromWater, mapX, mapY);
            float slope = Between(map.slope, mapX, mapY);
            float value = 0.85f * LayeredNoise(mapX / 130, mapY / 130, 3, plan.seed + 630) - 0.42f;
            value -= distance / 110 + slope * 6 + (1 - Ramp(10, 35, Between(fromTown, mapX, mapY)));
            At(map.marsh, x, y) = CoverageByte(value * 10 + 0.5f);
        }
    }
}

void PlaceHedges(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    map.hedge = MakeGrid<uint8_t>(plan.width, plan.height, 0);
    auto [lowest, highest] = std::minmax_element(map.height.values.begin(), map.height.values.end());
    float highestField = *lowest + 0.35f * (*highest - *lowest);
    for (int y = 0; y < plan.height; y++) {
        for (int x = 0; x < plan.width; x++) {
            if (At(map.woods, x, y) > 40 || At(map.marsh, x, y) > 40 || At(map.water, x, y) > 0 ||
                At(map.road, x, y) > 0 || At(map.town, x, y) > 0 || At(map.height, x, y) > highestField ||
                SlopeAt(map, float(x), float(y)) > 0.1f) {
                continue;
            }
            Parcel parcel = ParcelAt(float(x), float(y), 24, plan.seed + 620);
            if (Noise(float(x) / 300, float(y) / 300, plan.seed + 641) < 0) {
                continue;
            }
            uint32_t seed = plan.seed + 642;
            float left = HashUnit(parcel.column, parcel.row, seed) < 0.3f ? parcel.toLeft : 9;
            float top = HashUnit(parcel.column, parcel.row, seed + 1) < 0.3f ? parcel.toTop : 9;
            At(map.hedge, x, y) = CoverageByte(2.3f - std::min(left, top));
        }
    }
}

// ---- cliffs ----

static Spot Gradient(const SampleMap& map, Spot place)
{
    int x = int(place.x);
    int y = int(place.y);
    return {(Nearest(map.height, x + 2, y) - Nearest(map.height, x - 2, y)) / 40,
            (Nearest(map.height, x, y + 2) - Nearest(map.height, x, y - 2)) / 40};
}

// Walks along the slope at one height as long as it is steep enough.
static void WalkCliff(const SampleMap& map, const Grid<uint8_t>& taken, Spot start, float direction, float steepness,
                      std::vector<Spot>& points)
{
    Spot place = start;
    for (int i = 0; i < 60; i++) {
        Spot gradient = Gradient(map, place);
        if (Length(gradient) < steepness || Nearest(taken, int(place.x), int(place.y)) > 0) {
            return;
        }
        points.push_back(place);
        Spot uphill = Unit(gradient);
        place = place + Spot{-uphill.y * direction, uphill.x * direction} * 2;
        if (!Inside(map.height, int(place.x), int(place.y))) {
            return;
        }
    }
}

void PlaceCliffs(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    map.cliff = MakeGrid<uint8_t>(plan.width, plan.height, 0);
    std::vector<float> slopes = map.slope.values;
    size_t rank = slopes.size() - 1 - slopes.size() / 110;
    std::nth_element(slopes.begin(), slopes.begin() + std::ptrdiff_t(rank), slopes.end());
    float steepness = std::max(0.3f, slopes[rank]);
    Grid<uint8_t> taken = map.cliff;
    for (int y = 0; y < map.slope.height; y++) {
        for (int x = 0; x < map.slope.width; x++) {
            Spot start = {float(x * slopeStep), float(y * slopeStep)};
            if (At(map.slope, x, y) < steepness || Nearest(map.road, int(start.x), int(start.y)) > 0) {
                continue;
            }
            std::vector<Spot> back;
            std::vector<Spot> points;
            WalkCliff(map, taken, start, -1, steepness * 0.92f, back);
            WalkCliff(map, taken, start, 1, steepness * 0.92f, points);
            if (back.size() + points.size() < 10 || points.empty()) {
                continue;
            }
            points.insert(points.begin(), back.rbegin(), back.rend() - (back.empty() ? 0 : 1));
            RelaxLine(points, 2);
            Cliff cliff;
            for (Spot place : points) {
                cliff.points.push_back(place);
                cliff.downhill.push_back(Unit(Gradient(map, place)) * -1);
                // Cliffs stand well apart, one above the other.
                StrokeSegment(taken, place, place, 30, 30);
                StrokeSegment(map.cliff, place, place + cliff.downhill.back() * 4, 5, 5);
            }
            map.cliffs.push_back(cliff);
        }
    }
}
