// What covers the ground: woods, marshes, hedges, cliffs.
#include "samples/stroke.h"

namespace {

// Distance in pixels, up to reach, from the nearest covered pixel; one value for every slopeStep pixels.
Grid<float> DistanceFrom(const SampleMap& map, const Grid<uint8_t>& mask, float reach)
{
    Grid<float> distance = MakeGrid<float>(map.slope.width, map.slope.height, reach);
    for (int y = 0; y < mask.height; y++) {
        for (int x = 0; x < mask.width; x++) {
            if (At(mask, x, y) > 127) {
                At(distance, x / slopeStep, y / slopeStep) = 0;
            }
        }
    }
    // Forwards it grows to the right and down, backwards to the left and up.
    int last = int(distance.values.size()) - 1;
    for (int way : {1, -1}) {
        for (int i = 0; i <= last; i++) {
            int node = way > 0 ? i : last - i;
            for (int k = 4; k < 8; k++) {
                float from =
                    Nearest(distance, node % distance.width + way * stepX[k], node / distance.width + way * stepY[k]);
                distance.values[node] = std::min(distance.values[node], from + slopeStep * (k % 2 == 0 ? 1 : 1.414f));
            }
        }
    }
    return distance;
}

// Between the values of a grid with one value for every slopeStep pixels.
float Between(const Grid<float>& grid, Spot place)
{
    float column = place.x / slopeStep - 0.5f;
    float row = place.y / slopeStep - 0.5f;
    int left = int(std::floor(column));
    int top = int(std::floor(row));
    auto across = [&](int y) {
        return Mix(Nearest(grid, left, y), Nearest(grid, left + 1, y), column - float(left));
    };
    return Mix(across(top), across(top + 1), row - float(top));
}

// Land is held in parcels with straight sides; each has a number of its own.
struct Parcel {
    int column;
    int row;
    float toLeft; // pixels from the two sides that the parcel shares with the ones before it
    float toTop;
};

Parcel ParcelAt(Spot place, uint32_t seed)
{
    constexpr float size = 24;
    // The turned and gently bent grid differs from district to district.
    float bend = 0.9f * size * Noise(place / (9 * size), seed);
    float u = (0.88f * place.x + 0.475f * place.y + bend) / (1.5f * size);
    float v = (0.88f * place.y - 0.475f * place.x + 0.6f * bend) / size;
    int row = int(std::floor(v));
    u += HashUnit(row, 7, seed); // neighbouring rows are shifted, as brickwork is
    int column = int(std::floor(u));
    return {column, row, (u - float(column)) * 1.5f * size, (v - float(row)) * size};
}

} // namespace

void PlaceWoods(SampleMap& map)
{
    uint32_t seed = map.plan->seed;
    Grid<float> fromTown = DistanceFrom(map, map.town, 60);
    Grid<float> fromWater = DistanceFrom(map, map.water, 40);
    float treeLine = map.lowest + 0.8f * map.heightSpan;
    Grid<float> favour = FillGrid<float>(map.slope.width, map.slope.height, [&](int x, int y) {
        Spot place = SpotAt(x, y) * slopeStep;
        float slope = At(map.slope, x, y);
        float value = -0.36f + 0.85f * LayeredNoise(place / 210, 3, seed + 600);
        value += 0.75f * Ramp(0.06f, 0.3f, slope) - 0.35f * Ramp(0.6f, 1.0f, slope);
        value -=
            1.6f * Ramp(treeLine - 60, treeLine + 60, Nearest(map.height, place)) * Ramp(250, 400, map.heightSpan);
        value -= 0.9f * (1 - Ramp(5, 50, At(fromTown, x, y)));
        return value - 0.25f * (1 - Ramp(4, 30, At(fromWater, x, y)));
    });
    map.woods = FillMask(map, [&](int x, int y) {
        Spot place = SpotAt(x, y);
        float value = Between(favour, place);
        if (At(favour, x / slopeStep, y / slopeStep) < -0.8f || value < -0.5f || At(map.water, x, y) > 127 ||
            At(map.town, x, y) > 0) {
            return uint8_t(0);
        }
        value += 0.2f * LayeredNoise(place / 26, 2, seed + 610);
        // Clearings follow the parcels where the ground is easy to work.
        if (value < 0.5f) {
            Parcel parcel = ParcelAt(place, seed + 620);
            value += 0.34f * (HashUnit(parcel.column, parcel.row, seed + 621) - 0.5f);
        }
        return CoverageByte(value * 14 + 0.5f);
    });
}

void PlaceMarshes(SampleMap& map)
{
    Grid<float> fromWater = DistanceFrom(map, map.water, 90);
    Grid<float> fromTown = DistanceFrom(map, map.town, 40);
    map.marsh = FillMask(map, [&](int x, int y) {
        Spot place = SpotAt(x, y);
        if (Nearest(fromWater, x / slopeStep, y / slopeStep) > 60 || SlopeAt(map, place) > 0.08f ||
            At(map.water, x, y) > 127) {
            return uint8_t(0);
        }
        float value = 0.85f * LayeredNoise(place / 130, 3, map.plan->seed + 630) - 0.42f;
        value -= Between(fromWater, place) / 110 + Between(map.slope, place) * 6 +
                 (1 - Ramp(10, 35, Between(fromTown, place)));
        return CoverageByte(value * 10 + 0.5f);
    });
}

void PlaceHedges(SampleMap& map)
{
    uint32_t seed = map.plan->seed;
    map.hedge = FillMask(map, [&](int x, int y) {
        Spot place = SpotAt(x, y);
        if (At(map.woods, x, y) > 40 || At(map.marsh, x, y) > 40 || At(map.water, x, y) > 0 ||
            At(map.road, x, y) > 0 || At(map.town, x, y) > 0 || SlopeAt(map, place) > 0.1f ||
            At(map.height, x, y) > map.lowest + 0.35f * map.heightSpan || Noise(place / 300, seed + 641) < 0) {
            return uint8_t(0);
        }
        Parcel parcel = ParcelAt(place, seed + 620);
        float left = HashUnit(parcel.column, parcel.row, seed + 642) < 0.3f ? parcel.toLeft : 9;
        float top = HashUnit(parcel.column, parcel.row, seed + 643) < 0.3f ? parcel.toTop : 9;
        return CoverageByte(2.3f - std::min(left, top));
    });
}

// ---- cliffs ----

namespace {

// The places along the slope at one height, from start, as long as it is steep enough.
std::vector<Spot> WalkCliff(const SampleMap& map, const Grid<uint8_t>& taken, Spot start, float direction,
                            float steepness)
{
    std::vector<Spot> points;
    for (Spot place = start; points.size() < 60 && Inside(map.height, int(place.x), int(place.y));) {
        Spot gradient = Gradient(map, place);
        if (Length(gradient) < steepness || Nearest(taken, place) > 0) {
            break;
        }
        points.push_back(place);
        place = place + Turned(Unit(gradient)) * (2 * direction);
    }
    return points;
}

} // namespace

void PlaceCliffs(SampleMap& map)
{
    map.cliff = BlankMask(map);
    size_t places = map.slope.values.size();
    float steepness = std::max(0.3f, ValueAtRank(map.slope.values, places - 1 - places / 110));
    Grid<uint8_t> taken = map.cliff;
    for (int y = 0; y < map.slope.height; y++) {
        for (int x = 0; x < map.slope.width; x++) {
            Spot start = SpotAt(x, y) * slopeStep;
            if (At(map.slope, x, y) < steepness || Nearest(map.road, start) > 0) {
                continue;
            }
            std::vector<Spot> back = WalkCliff(map, taken, start, -1, steepness * 0.92f);
            std::vector<Spot> points = WalkCliff(map, taken, start, 1, steepness * 0.92f);
            if (back.size() + points.size() < 10) {
                continue;
            }
            points.insert(points.begin(), back.rbegin(), back.rend() - 1);
            RelaxLine(points, 2);
            for (Spot place : points) {
                // Cliffs stand well apart, one above the other.
                StrokeSegment(taken, place, place, 30, 30);
                StrokeSegment(map.cliff, place, place - Unit(Gradient(map, place)) * 4, 5, 5);
            }
            map.cliffs.push_back(points);
        }
    }
}
