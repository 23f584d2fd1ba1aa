// The shape of the land: uplift against erosion by running water, from a coarse grid to a fine one.
#include "samples/model.h"

namespace {

// Fills hollows and sends the water of each node to its lowest neighbour: nodes are visited from the outlet upwards
// in the order in which rising water would reach them.
// Across filled ground the water keeps to loose soil, which lets it wander as it does in nature.
void RouteWater(SampleMap& map, const Grid<float>& soil)
{
    const SamplePlan& plan = *map.plan;
    Land& land = map.land;
    Grid<float>& height = land.height;
    Spot corner = SpotAt(height.width - 1, height.height - 1);
    Grid<uint8_t> seen = MakeGrid<uint8_t>(height.width, height.height);
    WaitingQueue open;
    for (int y = 0; y < height.height; y++) {
        for (int x = 0; x < height.width; x++) {
            bool border = !Inside(height, x - 1, y - 1) || !Inside(height, x + 1, y + 1);
            if (border && Distance({float(x) / corner.x, float(y) / corner.y}, plan.river.outlet) < 0.04f) {
                At(height, x, y) = plan.land.baseHeight;
                At(seen, x, y) = 1;
                open.push({plan.land.baseHeight, y * height.width + x});
            }
        }
    }
    land.order.clear();
    land.downstream = MakeGrid<int>(height.width, height.height, -1);
    while (!open.empty()) {
        int node = open.top().second;
        open.pop();
        land.order.push_back(node);
        float own = height.values[node];
        float steepest = 0;
        for (int k = 0; k < 8; k++) {
            int x = node % height.width + stepX[k];
            int y = node / height.width + stepY[k];
            if (!Inside(height, x, y)) {
                continue;
            }
            int next = y * height.width + x;
            float& other = height.values[next];
            if (!seen.values[next]) {
                seen.values[next] = 1;
                other = std::max(other, own + soil.values[next]);
                open.push({other, next});
            } else if (own > plan.land.baseHeight) {
                // A little chance keeps valleys from following the grid's eight directions.
                float chance = 0.55f + 0.9f * HashUnit(node, k, plan.seed + 3);
                float drop = (own - other) * (k % 2 == 0 ? 1.0f : 0.7071f) * chance;
                if (drop > steepest) {
                    steepest = drop;
                    land.downstream.values[node] = next;
                }
            }
        }
    }
    float nodeSide = float(land.step) * 0.01f; // kilometres
    land.area = MakeGrid<float>(height.width, height.height, nodeSide * nodeSide);
    At(land.area, int(plan.river.inlet.x * corner.x), int(plan.river.inlet.y * corner.y)) += plan.river.areaAtInlet;
    for (size_t i = land.order.size(); i-- > 0;) {
        int next = land.downstream.values[land.order[i]];
        if (next >= 0) {
            land.area.values[next] += land.area.values[land.order[i]];
        }
    }
}

// Soil creep, which rounds the ridges.
void Soften(Grid<float>& height, float strength)
{
    height = FillGrid<float>(height.width, height.height, [&](int x, int y) {
        float own = At(height, x, y);
        float sum = Nearest(height, x - 1, y) + Nearest(height, x + 1, y) + Nearest(height, x, y - 1) +
                    Nearest(height, x, y + 1);
        return own + strength * (0.25f * sum - own);
    });
}

// How strongly the land rises at a place, in metres of slope times root of drained area.
float Uplift(const SamplePlan& plan, Spot place)
{
    float scale = 1 / plan.land.wavelength;
    place.x += 0.25f * plan.land.wavelength * Noise(place * scale * 1.7f, plan.seed + 5);
    float high = Ramp(-0.55f, 0.85f, LayeredNoise(place * scale, 3, plan.seed));
    return Mix(plan.land.lowlands, plan.land.mountains, high * std::sqrt(high));
}

// The least rise in metres from node to node over filled ground, uneven from place to place.
Grid<float> LooseSoil(const SampleMap& map)
{
    uint32_t seed = map.plan->seed + 30;
    return FillGrid<float>(map.land.height.width, map.land.height.height, [&](int x, int y) {
        float firm = LayeredNoise(NodeSpot(map, x, y) / 110, 3, seed);
        return 0.002f * float(map.land.step) * (0.15f + firm * firm * 4 + HashUnit(x, y, seed + 1));
    });
}

void Evolve(SampleMap& map, int rounds, float pace)
{
    Land& land = map.land;
    Grid<float>& height = land.height;
    Grid<float> uplift = FillGrid<float>(height.width, height.height,
                                         [&](int x, int y) { return Uplift(*map.plan, NodeSpot(map, x, y)); });
    Grid<float> hardness = FillGrid<float>(height.width, height.height, [&](int x, int y) {
        return 1 + 0.5f * LayeredNoise(NodeSpot(map, x, y) / 90, 3, map.plan->seed + 40);
    });
    Grid<float> soil = LooseSoil(map);
    for (int round = 0; round < rounds; round++) {
        RouteWater(map, soil);
        for (int node : land.order) {
            int next = land.downstream.values[node];
            if (next < 0) {
                continue;
            }
            bool straight = std::abs(next - node) == 1 || std::abs(next - node) == height.width;
            float run = float(land.step) * 10 * (straight ? 1 : 1.41421f);
            float wear = pace * std::sqrt(land.area.values[node] * 1e6f) / run / hardness.values[node];
            float raised = height.values[node] + pace * uplift.values[node];
            height.values[node] = (raised + wear * height.values[next]) / (1 + wear);
        }
        Soften(height, 0.35f);
    }
}

// Rivers spread gravel: ground little above its river becomes a flat valley floor.
void FlattenValleys(Land& land)
{
    constexpr float floorHeight = 22;
    constexpr float riverArea = 6;
    Grid<float> river = land.height; // height of the river that a node drains to
    for (int node : land.order) {
        int next = land.downstream.values[node];
        if (next >= 0 && land.area.values[node] < riverArea) {
            river.values[node] = river.values[next];
        }
        float above = land.height.values[node] - river.values[node];
        float kept = above < floorHeight ? above * above / (2 * floorHeight) : above - floorHeight / 2;
        land.height.values[node] = river.values[node] + kept;
    }
}

// The land is shaped roughly first.
struct Stage {
    int step; // pixels between nodes
    int rounds;
    float pace;
    float roughness; // metres of the new small hills and hollows that the water has to work on
    uint32_t seed;
};

constexpr Stage stages[] = {
    {4 * landStep, 45, 0.5f, 0, 0}, {2 * landStep, 9, 0.25f, 6, 60}, {landStep, 2, 0.3f, 3, 61}};

// At a pixel between the nodes b and c.
float Spline(float a, float b, float c, float d, int pixel)
{
    float t = float(pixel % landStep) / landStep;
    return (1 - t) * (1 - t) * (1 - t) / 6 * a + (3 * t * t * t - 6 * t * t + 4) / 6 * b +
           (-3 * t * t * t + 3 * t * t + 3 * t + 1) / 6 * c + t * t * t / 6 * d;
}

} // namespace

void ShapeLand(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    Land& land = map.land;
    for (const Stage& stage : stages) {
        land.step = stage.step;
        auto nodes = [&](int length) { return (length + 2 * plan.land.margin + stage.step - 1) / stage.step + 1; };
        land.height = FillGrid<float>(nodes(plan.art.width), nodes(plan.art.height), [&](int x, int y) {
            const Grid<float>& coarse = land.height;
            if (coarse.values.empty()) {
                Spot place = NodeSpot(map, x, y);
                return plan.land.baseHeight + Uplift(plan, place) + 70 * LayeredNoise(place / 420, 5, plan.seed + 20);
            }
            float sum = Nearest(coarse, x / 2, y / 2) + Nearest(coarse, (x + 1) / 2, y / 2) +
                        Nearest(coarse, x / 2, (y + 1) / 2) + Nearest(coarse, (x + 1) / 2, (y + 1) / 2);
            return 0.25f * sum + stage.roughness * Noise(SpotAt(x, y) / 3.1f, plan.seed + stage.seed);
        });
        Evolve(map, stage.rounds, stage.pace);
    }
    RouteWater(map, LooseSoil(map));
    FlattenValleys(land);
    Soften(land.height, 0.8f);
    Soften(land.height, 0.8f);
}

void FillHeights(SampleMap& map)
{
    const Grid<float>& nodes = map.land.height;
    int margin = map.plan->land.margin;
    Grid<float> rows = FillGrid<float>(nodes.width, map.plan->art.height, [&](int x, int y) {
        int node = (y + margin) / landStep;
        return Spline(Nearest(nodes, x, node - 1), Nearest(nodes, x, node), Nearest(nodes, x, node + 1),
                      Nearest(nodes, x, node + 2), y);
    });
    map.height = FillGrid<float>(map.plan->art.width, map.plan->art.height, [&](int x, int y) {
        const float* from = &At(rows, (x + margin) / landStep - 1, y);
        float rise = std::abs(from[3] - from[0]) / (30 * landStep);
        // Small forms belong to slopes; a valley floor stays even.
        float detail = 0.4f + 26 * std::min(rise, 0.35f);
        return Spline(from[0], from[1], from[2], from[3], x) +
               detail * 0.5f * LayeredNoise(SpotAt(x, y) / 34, 2, map.plan->seed + 70);
    });
}

void MeasureHeights(SampleMap& map)
{
    auto [lowest, highest] = std::ranges::minmax(map.height.values);
    map.lowest = lowest;
    map.heightSpan = highest - lowest;
    int width = map.height.width / slopeStep + 1;
    int height = map.height.height / slopeStep + 1;
    map.slope = FillGrid<float>(width, height, [&](int x, int y) {
        return Length(Change(map.height, x * slopeStep + slopeStep / 2, y * slopeStep + slopeStep / 2, 3)) / 60;
    });
}
