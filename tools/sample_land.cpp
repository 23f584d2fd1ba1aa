// The shape of the land: uplift against erosion by running water, from a coarse grid to a fine one.
#include "tools/sample_model.h"

#include <queue>

static constexpr int neighbourX[8] = {1, 1, 0, -1, -1, -1, 0, 1};
static constexpr int neighbourY[8] = {0, 1, 1, 1, 0, -1, -1, -1};

static bool IsOutlet(const SamplePlan& plan, const Grid<float>& height, int x, int y)
{
    if (x != 0 && y != 0 && x != height.width - 1 && y != height.height - 1) {
        return false;
    }
    Spot place = {float(x) / float(height.width - 1), float(y) / float(height.height - 1)};
    return Distance(place, plan.outlet) < 0.04f;
}

// Fills hollows and sends the water of each node to its lowest neighbour: nodes are visited from the outlet upwards
// in the order in which rising water would reach them.
// Across filled ground the water keeps to loose soil, which lets it wander as it does in nature.
static void RouteWater(const SamplePlan& plan, Land& land, const Grid<float>& soil, float nodeKm)
{
    Grid<float>& height = land.height;
    int count = height.width * height.height;
    land.order.clear();
    land.order.reserve(size_t(count));
    land.downstream = MakeGrid<int>(height.width, height.height, -1);
    std::vector<uint8_t> seen(size_t(count), 0);
    typedef std::pair<float, int> Entry; // the index settles ties
    std::priority_queue<Entry, std::vector<Entry>, std::greater<Entry>> open;
    for (int i = 0; i < count; i++) {
        if (IsOutlet(plan, height, i % height.width, i / height.width)) {
            height.values[size_t(i)] = plan.baseHeight;
            seen[size_t(i)] = 1;
            open.push({plan.baseHeight, i});
        }
    }
    while (!open.empty()) {
        int node = open.top().second;
        open.pop();
        land.order.push_back(node);
        int x = node % height.width;
        int y = node / height.width;
        float own = height.values[size_t(node)];
        float steepest = 0;
        for (int k = 0; k < 8; k++) {
            int nx = x + neighbourX[k];
            int ny = y + neighbourY[k];
            if (!Inside(height, nx, ny)) {
                continue;
            }
            int next = ny * height.width + nx;
            float& other = height.values[size_t(next)];
            if (!seen[size_t(next)]) {
                seen[size_t(next)] = 1;
                other = std::max(other, own + soil.values[size_t(next)]);
                open.push({other, next});
            } else if (own > plan.baseHeight) {
                // A little chance keeps valleys from following the grid's eight directions.
                float chance = 0.55f + 0.9f * HashUnit(node, k, plan.seed + 3);
                float drop = (own - other) * (k % 2 == 0 ? 1.0f : 0.7071f) * chance;
                if (drop > steepest) {
                    steepest = drop;
                    land.downstream.values[size_t(node)] = next;
                }
            }
        }
    }
    land.area = MakeGrid<float>(height.width, height.height, nodeKm * nodeKm);
    int inletX = int(plan.inlet.x * float(height.width - 1));
    int inletY = int(plan.inlet.y * float(height.height - 1));
    At(land.area, inletX, inletY) += plan.inletArea;
    for (size_t i = land.order.size(); i-- > 0;) {
        int node = land.order[i];
        int next = land.downstream.values[size_t(node)];
        if (next >= 0) {
            land.area.values[size_t(next)] += land.area.values[size_t(node)];
        }
    }
}

// Soil creep, which rounds the ridges.
static void Soften(Grid<float>& height, float strength)
{
    Grid<float> before = height;
    for (int y = 0; y < height.height; y++) {
        for (int x = 0; x < height.width; x++) {
            float sum = Nearest(before, x - 1, y) + Nearest(before, x + 1, y) + Nearest(before, x, y - 1) +
                        Nearest(before, x, y + 1);
            At(height, x, y) += strength * (0.25f * sum - At(before, x, y));
        }
    }
}

// How strongly the land rises at a place, in metres of slope times root of drained area.
static float Uplift(const SamplePlan& plan, float mapX, float mapY)
{
    float scale = 1 / plan.countryWavelength;
    float bendX =
        mapX + 0.25f * plan.countryWavelength * Noise(mapX * scale * 1.7f, mapY * scale * 1.7f, plan.seed + 5);
    float country = LayeredNoise(bendX * scale, mapY * scale, 3, plan.seed);
    float high = Ramp(-0.55f, 0.85f, country);
    return Mix(plan.lowlandStrength, plan.mountainStrength, high * std::sqrt(high));
}

// The least rise in metres from node to node over filled ground, uneven from place to place.
static Grid<float> LooseSoil(const SamplePlan& plan, int width, int height, int step)
{
    Grid<float> soil = MakeGrid<float>(width, height, 0);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            float mapX = float(x * step - plan.margin);
            float mapY = float(y * step - plan.margin);
            float firm = LayeredNoise(mapX / 110, mapY / 110, 3, plan.seed + 30);
            At(soil, x, y) = 0.002f * float(step) * (0.15f + firm * firm * 4 + HashUnit(x, y, plan.seed + 31));
        }
    }
    return soil;
}

static void Evolve(const SamplePlan& plan, Land& land, int step, int rounds, float pace)
{
    Grid<float>& height = land.height;
    float nodeMetres = float(step) * 10;
    Grid<float> uplift = MakeGrid<float>(height.width, height.height, 0);
    Grid<float> hardness = uplift;
    Grid<float> soil = LooseSoil(plan, height.width, height.height, step);
    for (int y = 0; y < height.height; y++) {
        for (int x = 0; x < height.width; x++) {
            float mapX = float(x * step - plan.margin);
            float mapY = float(y * step - plan.margin);
            At(uplift, x, y) = Uplift(plan, mapX, mapY);
            At(hardness, x, y) = 1 + 0.5f * LayeredNoise(mapX / 90, mapY / 90, 3, plan.seed + 40);
        }
    }
    for (int round = 0; round < rounds; round++) {
        RouteWater(plan, land, soil, nodeMetres / 1000);
        for (int node : land.order) {
            int next = land.downstream.values[size_t(node)];
            if (next < 0) {
                continue;
            }
            bool diagonal = std::abs(next - node) != 1 && std::abs(next - node) != height.width;
            float run = diagonal ? nodeMetres * 1.41421f : nodeMetres;
            float wear =
                pace * std::sqrt(land.area.values[size_t(node)] * 1e6f) / run / hardness.values[size_t(node)];
            float raised = height.values[size_t(node)] + pace * uplift.values[size_t(node)];
            height.values[size_t(node)] = (raised + wear * height.values[size_t(next)]) / (1 + wear);
        }
        Soften(height, 0.35f);
    }
}

// Twice as many nodes, with new small hills and hollows for the water to work on.
static Grid<float> Refine(const Grid<float>& coarse, int width, int height, float roughness, uint32_t seed)
{
    Grid<float> fine = MakeGrid<float>(width, height, 0);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            float sum = Nearest(coarse, x / 2, y / 2) + Nearest(coarse, (x + 1) / 2, y / 2) +
                        Nearest(coarse, x / 2, (y + 1) / 2) + Nearest(coarse, (x + 1) / 2, (y + 1) / 2);
            At(fine, x, y) = 0.25f * sum + roughness * Noise(float(x) / 3.1f, float(y) / 3.1f, seed);
        }
    }
    return fine;
}

// Rivers spread gravel: ground little above its river becomes a flat valley floor.
static void FlattenValleys(Land& land)
{
    constexpr float floorHeight = 22;
    constexpr float riverArea = 6;
    Grid<float> river = land.height; // height of the river that a node drains to
    for (int node : land.order) {
        int next = land.downstream.values[size_t(node)];
        if (next >= 0 && land.area.values[size_t(node)] < riverArea) {
            river.values[size_t(node)] = river.values[size_t(next)];
        }
    }
    for (size_t i = 0; i < river.values.size(); i++) {
        float above = land.height.values[i] - river.values[i];
        float kept = above < floorHeight ? above * above / (2 * floorHeight) : above - floorHeight / 2;
        land.height.values[i] = river.values[i] + kept;
    }
}

Land ShapeLand(const SamplePlan& plan)
{
    constexpr int coarsest = 4 * landStep;
    Land land;
    auto nodes = [&](int length, int step) { return (length + 2 * plan.margin + step - 1) / step + 1; };
    land.height = MakeGrid<float>(nodes(plan.width, coarsest), nodes(plan.height, coarsest), 0);
    for (int y = 0; y < land.height.height; y++) {
        for (int x = 0; x < land.height.width; x++) {
            float mapX = float(x * coarsest - plan.margin);
            float mapY = float(y * coarsest - plan.margin);
            At(land.height, x, y) = plan.baseHeight + Uplift(plan, mapX, mapY) +
                                    70 * LayeredNoise(mapX / 420, mapY / 420, 5, plan.seed + 20);
        }
    }
    Evolve(plan, land, coarsest, 45, 0.5f);
    land.height =
        Refine(land.height, nodes(plan.width, 2 * landStep), nodes(plan.height, 2 * landStep), 6, plan.seed + 60);
    Evolve(plan, land, 2 * landStep, 9, 0.25f);
    land.height = Refine(land.height, nodes(plan.width, landStep), nodes(plan.height, landStep), 3, plan.seed + 61);
    Evolve(plan, land, landStep, 2, 0.3f);
    RouteWater(plan, land, LooseSoil(plan, land.height.width, land.height.height, landStep), landStep * 0.01f);
    FlattenValleys(land);
    Soften(land.height, 0.8f);
    Soften(land.height, 0.8f);
    land.margin = plan.margin / landStep;
    return land;
}

// ---- from nodes to pixels ----

static void SplineWeights(float t, float* weights)
{
    weights[0] = (1 - t) * (1 - t) * (1 - t) / 6;
    weights[1] = (3 * t * t * t - 6 * t * t + 4) / 6;
    weights[2] = (-3 * t * t * t + 3 * t * t + 3 * t + 1) / 6;
    weights[3] = t * t * t / 6;
}

void FillHeights(SampleMap& map, const Land& land)
{
    const SamplePlan& plan = *map.plan;
    map.height = MakeGrid<float>(plan.width, plan.height, 0);
    std::vector<float> row(size_t(land.height.width));
    float weights[4];
    float steps[landStep][4];
    for (int i = 0; i < landStep; i++) {
        SplineWeights(float(i) / landStep, steps[i]);
    }
    for (int y = 0; y < plan.height; y++) {
        int nodeY = y / landStep + land.margin;
        SplineWeights(float(y % landStep) / landStep, weights);
        for (int x = 0; x < land.height.width; x++) {
            float sum = 0;
            for (int k = 0; k < 4; k++) {
                sum += weights[k] * Nearest(land.height, x, nodeY + k - 1);
            }
            row[size_t(x)] = sum;
        }
        for (int x = 0; x < plan.width; x++) {
            const float* w = steps[x % landStep];
            const float* from = &row[size_t(x / landStep + land.margin - 1)];
            float base = w[0] * from[0] + w[1] * from[1] + w[2] * from[2] + w[3] * from[3];
            float rise = std::abs(from[3] - from[0]) / (30 * landStep);
            // Small forms belong to slopes; a valley floor stays even.
            float detail = 0.4f + 26 * std::min(rise, 0.35f);
            At(map.height, x, y) =
                base + detail * 0.5f * LayeredNoise(float(x) / 34, float(y) / 34, 2, plan.seed + 70);
        }
    }
}

void MeasureSlopes(SampleMap& map)
{
    int width = map.height.width / slopeStep + 1;
    int height = map.height.height / slopeStep + 1;
    map.slope = MakeGrid<float>(width, height, 0);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            int h = x * slopeStep + slopeStep / 2;
            int v = y * slopeStep + slopeStep / 2;
            float across = Nearest(map.height, h + 3, v) - Nearest(map.height, h - 3, v);
            float down = Nearest(map.height, h, v + 3) - Nearest(map.height, h, v - 3);
            At(map.slope, x, y) = Length({across, down}) / 60;
        }
    }
}
