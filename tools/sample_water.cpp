// Rivers and lakes.
#include "tools/sample_stroke.h"

static constexpr float streamArea = 1.0f; // square kilometres that feed a drawn stream

static float RiverWidth(float area)
{
    return 0.85f + 0.3f * std::sqrt(area);
}

// Bends a line to either side, the more so the bigger the river and the flatter its valley; its ends stay.
static void AddMeanders(const SampleMap& map, WideLine& river, uint32_t seed)
{
    const std::vector<Spot> straight = river.points;
    std::vector<Spot> reach(straight.size()); // pixels to either side, in x
    for (size_t i = 0; i < straight.size(); i++) {
        float flatness = 1 - Ramp(0.02f, 0.14f, SlopeAt(map, straight[i].x, straight[i].y));
        size_t toEnd = std::min(i, straight.size() - 1 - i);
        reach[i].x = (2.5f + 2.4f * river.widths[i]) * flatness * std::min(1.0f, float(toEnd) / 10);
    }
    RelaxLine(reach, 30);
    float way = 0;
    for (size_t i = 1; i + 1 < straight.size(); i++) {
        // The direction over some distance, lest neighbouring points be moved across each other.
        Spot along = straight[std::min(i + 5, straight.size() - 1)] - straight[i > 5 ? i - 5 : 0];
        Spot side = Unit({-along.y, along.x});
        way += Distance(straight[i], straight[i - 1]) / (16 + 7 * river.widths[i]);
        float bend = Noise(way, 0.5f, seed) + 2.2f * Noise(way * 0.33f, 0.5f, seed + 1);
        river.points[i] = straight[i] + side * (reach[i].x * bend);
    }
    RelaxLine(river.points, 3);
}

// The line of a river from its mouth up to its source, always following the bigger branch.
static WideLine TraceRiver(const Land& land, int mouth, const std::vector<int>& biggestBranch,
                           const std::vector<Spot>& places)
{
    WideLine river;
    int below = land.downstream.values[size_t(mouth)];
    if (below >= 0) {
        river.points.push_back(places[size_t(below)]);
        river.widths.push_back(RiverWidth(land.area.values[size_t(mouth)]));
    }
    for (int node = mouth; node >= 0; node = biggestBranch[size_t(node)]) {
        float area = land.area.values[size_t(node)];
        if (area < streamArea) {
            break;
        }
        river.points.push_back(places[size_t(node)]);
        river.widths.push_back(RiverWidth(area));
    }
    return river;
}

void PlaceRivers(SampleMap& map, const Land& land)
{
    size_t count = land.height.values.size();
    std::vector<int> biggestBranch(count, -1);
    std::vector<Spot> places(count);
    for (size_t i = 0; i < count; i++) {
        int x = int(i) % land.height.width;
        int y = int(i) / land.height.width;
        places[i] = {float((x - land.margin) * landStep), float((y - land.margin) * landStep)};
        int next = land.downstream.values[i];
        if (next >= 0) {
            int& branch = biggestBranch[size_t(next)];
            if (branch < 0 || land.area.values[i] > land.area.values[size_t(branch)]) {
                branch = int(i);
            }
        }
    }
    // A river comes before its tributaries in the order, so that these can end on its final course.
    for (int node : land.order) {
        int next = land.downstream.values[size_t(node)];
        bool continues = next >= 0 && biggestBranch[size_t(next)] == node;
        if (continues || land.area.values[size_t(node)] < streamArea) {
            continue;
        }
        WideLine river = TraceRiver(land, node, biggestBranch, places);
        if (river.points.size() < 6) {
            continue;
        }
        RelaxLine(river.points, 6);
        AddMeanders(map, river, map.plan->seed + uint32_t(node));
        size_t first = next >= 0 ? 1 : 0;
        int at = node;
        for (size_t i = first; i < river.points.size(); i++) {
            places[size_t(at)] = river.points[i];
            at = biggestBranch[size_t(at)];
        }
        map.rivers.push_back(std::move(river));
    }
}

// ---- lakes ----

struct LakeSite {
    Spot centre;
    Spot axis; // along the valley
    float radius;
};

static void FloodLake(SampleMap& map, const LakeSite& site, uint32_t seed)
{
    int left = std::max(0, int(site.centre.x - 2.5f * site.radius));
    int top = std::max(0, int(site.centre.y - 2.5f * site.radius));
    int right = std::min(map.plan->width - 1, int(site.centre.x + 2.5f * site.radius));
    int bottom = std::min(map.plan->height - 1, int(site.centre.y + 2.5f * site.radius));
    float level = At(map.height, int(site.centre.x), int(site.centre.y)) + 2;
    int octaves = site.radius < 30 ? 2 : 3;
    // Positive inside the lake; ground above its level pushes the shore away.
    Grid<float> field = MakeGrid<float>(right - left + 1, bottom - top + 1, 0);
    for (int y = top; y <= bottom; y++) {
        for (int x = left; x <= right; x++) {
            Spot offset = Spot{float(x), float(y)} - site.centre;
            float along = (offset.x * site.axis.x + offset.y * site.axis.y) / 1.5f;
            float across = offset.y * site.axis.x - offset.x * site.axis.y;
            float rise = std::max(0.0f, At(map.height, x, y) - level) / (4 + site.radius / 8);
            float wave = 1 / (0.9f * site.radius);
            At(field, x - left, y - top) = 1 - Length({along, across}) / site.radius - rise +
                                           0.42f * LayeredNoise(float(x) * wave, float(y) * wave, octaves, seed);
        }
    }
    for (int y = top; y <= bottom; y++) {
        for (int x = left; x <= right; x++) {
            int h = x - left;
            int v = y - top;
            float value = At(field, h, v);
            Spot change = {Nearest(field, h + 1, v) - Nearest(field, h - 1, v),
                           Nearest(field, h, v + 1) - Nearest(field, h, v - 1)};
            float inside = value / std::max(Length(change) / 2, 0.001f);
            uint8_t& lake = At(map.lake, x, y);
            lake = std::max(lake, CoverageByte(inside + 0.5f));
            uint8_t& depth = At(map.lakeDepth, x, y);
            depth = std::max(depth, CoverageByte(value * 1.3f));
            float& height = At(map.height, x, y);
            height = Mix(height, level, Ramp(-0.15f, 0, value));
        }
    }
}

static bool FarFromAll(const std::vector<LakeSite>& sites, Spot place, float distance)
{
    for (const LakeSite& site : sites) {
        if (Distance(site.centre, place) < distance) {
            return false;
        }
    }
    return true;
}

void PlaceLakes(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    map.lake = MakeGrid<uint8_t>(plan.width, plan.height, 0);
    map.lakeDepth = map.lake;
    Dice dice = {plan.seed + 200};
    std::vector<LakeSite> sites;
    float side = float(std::min(plan.width, plan.height));
    float usualRadius = std::clamp(side * 0.085f, 22.0f, 95.0f);
    int wanted = plan.lakeCount + plan.tarnCount;
    for (int attempt = 0; attempt < 4000 && int(sites.size()) < wanted && !map.rivers.empty(); attempt++) {
        bool tarn = int(sites.size()) >= plan.lakeCount;
        const WideLine& river = map.rivers[Roll(dice) % map.rivers.size()];
        size_t i = Roll(dice) % river.points.size();
        float size = RollBetween(dice, 0.6f, 1.15f);
        LakeSite site = {river.points[i], {1, 0}, tarn ? 7 + 11 * size : usualRadius * size};
        float border = std::min(1.2f * site.radius, side / 5);
        if (site.centre.x < border || site.centre.y < border || site.centre.x > float(plan.width) - border ||
            site.centre.y > float(plan.height) - border || i < 4 || i + 4 >= river.points.size()) {
            continue;
        }
        bool big = river.widths[i] > 2.2f;
        float slope = SlopeAt(map, site.centre.x, site.centre.y);
        if (big == tarn || slope > (tarn ? 0.2f : 0.06f) || !FarFromAll(sites, site.centre, 3.2f * site.radius)) {
            continue;
        }
        site.axis = Unit(river.points[i + 4] - river.points[i - 4]);
        sites.push_back(site);
        FloodLake(map, site, plan.seed + 210 + uint32_t(attempt));
    }
}

void DrawWaterMask(SampleMap& map)
{
    map.water = map.lake;
    for (const WideLine& river : map.rivers) {
        StrokeWideLine(map.water, river, 0);
    }
}
