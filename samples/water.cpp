// Rivers and lakes.
#include "samples/stroke.h"

namespace {

constexpr float streamArea = 1.0f; // square kilometres that feed a drawn stream

// Bends a line to either side, the more so the bigger the river and the flatter its valley; its ends stay.
void AddMeanders(const SampleMap& map, WideLine& river, uint32_t seed)
{
    const std::vector<Spot> straight = river.points;
    size_t last = straight.size() - 1;
    std::vector<Spot> reach(straight.size()); // pixels to either side, in x
    for (size_t i = 0; i <= last; i++) {
        float flatness = 1 - Ramp(0.02f, 0.14f, SlopeAt(map, straight[i]));
        reach[i].x = (2.5f + 2.4f * river.widths[i]) * flatness * std::min(1.0f, float(std::min(i, last - i)) / 10);
    }
    RelaxLine(reach, 30);
    float way = 0;
    for (size_t i = 1; i < last; i++) {
        // The direction over some distance, lest neighbouring points be moved across each other.
        Spot along = straight[std::min(i + 5, last)] - straight[i > 5 ? i - 5 : 0];
        way += Distance(straight[i], straight[i - 1]) / (16 + 7 * river.widths[i]);
        float bend = Noise({way, 0.5f}, seed) + 2.2f * Noise({way * 0.33f, 0.5f}, seed + 1);
        river.points[i] = straight[i] + Unit(Turned(along)) * (reach[i].x * bend);
    }
    RelaxLine(river.points, 3);
}

} // namespace

void PlaceRivers(SampleMap& map)
{
    const Land& land = map.land;
    const std::vector<float>& area = land.area.values;
    std::vector<int> biggestBranch(area.size(), -1);
    std::vector<Spot> places(area.size());
    for (int node = 0; node < int(area.size()); node++) {
        places[node] = NodeSpot(map, node % land.area.width, node / land.area.width);
        int next = land.downstream.values[node];
        if (next >= 0 && (biggestBranch[next] < 0 || area[node] > area[biggestBranch[next]])) {
            biggestBranch[next] = node;
        }
    }
    // A river comes before its tributaries in the order, so that these can end on its final course.
    for (int mouth : land.order) {
        int next = land.downstream.values[mouth];
        if (next >= 0 && biggestBranch[next] == mouth) {
            continue;
        }
        std::vector<int> nodes;
        if (next >= 0) {
            nodes.push_back(next);
        }
        for (int node = mouth; area[node] >= streamArea; node = biggestBranch[node]) {
            nodes.push_back(node);
        }
        if (nodes.size() < 6) {
            continue;
        }
        WideLine river;
        for (int node : nodes) {
            river.points.push_back(places[node]);
            river.widths.push_back(0.85f + 0.3f * std::sqrt(std::min(area[node], area[mouth])));
        }
        RelaxLine(river.points, 6);
        AddMeanders(map, river, map.plan->seed + uint32_t(mouth));
        for (size_t i = 0; i < nodes.size(); i++) {
            places[nodes[i]] = river.points[i];
        }
        map.rivers.push_back(river);
    }
}

// ---- lakes ----

namespace {

struct LakeSite {
    Spot centre;
    Spot axis; // along the valley
    float radius;
};

void FloodLake(SampleMap& map, const LakeSite& site, uint32_t seed)
{
    int left = std::max(0, int(site.centre.x - 2.5f * site.radius));
    int top = std::max(0, int(site.centre.y - 2.5f * site.radius));
    int right = std::min(map.plan->art.width, int(site.centre.x + 2.5f * site.radius) + 1);
    int bottom = std::min(map.plan->art.height, int(site.centre.y + 2.5f * site.radius) + 1);
    float level = Nearest(map.height, site.centre) + 2;
    float wave = 1 / (0.9f * site.radius);
    // Positive inside the lake; ground above its level pushes the shore away.
    Grid<float> field = FillGrid<float>(right - left, bottom - top, [&](int h, int v) {
        Spot place = SpotAt(left + h, top + v);
        Spot offset = place - site.centre;
        Spot span = {Dot(offset, site.axis) / 1.5f, Dot(offset, Turned(site.axis))};
        float rise = std::max(0.0f, Nearest(map.height, place) - level) / (4 + site.radius / 8);
        return 1 - Length(span) / site.radius - rise +
               0.42f * LayeredNoise(place * wave, site.radius < 30 ? 2 : 3, seed);
    });
    for (int v = 0; v < field.height; v++) {
        for (int h = 0; h < field.width; h++) {
            float value = At(field, h, v);
            Raise(At(map.lake, left + h, top + v),
                  value / std::max(Length(Change(field, h, v, 1)) / 2, 0.001f) + 0.5f);
            Raise(At(map.lakeDepth, left + h, top + v), value * 1.3f);
            float& height = At(map.height, left + h, top + v);
            height = Mix(height, level, Ramp(-0.15f, 0, value));
        }
    }
}

} // namespace

void PlaceLakes(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    map.lake = BlankMask(map);
    map.lakeDepth = map.lake;
    Dice dice = {plan.seed + 200};
    std::vector<LakeSite> sites;
    float side = float(std::min(plan.art.width, plan.art.height));
    int wanted = plan.counts.lakes + plan.counts.tarns;
    for (int attempt = 0; attempt < 4000 && int(sites.size()) < wanted; attempt++) {
        bool tarn = int(sites.size()) >= plan.counts.lakes;
        const WideLine& river = map.rivers[Roll(dice) % map.rivers.size()];
        size_t i = Roll(dice) % river.points.size();
        Spot centre = river.points[i];
        float size = RollBetween(dice, 0.6f, 1.15f);
        float radius = tarn ? 7 + 11 * size : size * std::clamp(side * 0.085f, 22.0f, 95.0f);
        Spot toEnd = SpotAt(plan.art.width, plan.art.height) - centre;
        bool close = std::min({centre.x, centre.y, toEnd.x, toEnd.y}) < 1.2f * radius;
        bool steep = SlopeAt(map, centre) > (tarn ? 0.2f : 0.06f);
        bool big = river.widths[i] > 2.2f;
        for (const LakeSite& other : sites) {
            close = close || Distance(other.centre, centre) < 3.2f * radius;
        }
        if (i >= 4 && i + 4 < river.points.size() && !close && !steep && big != tarn) {
            sites.push_back({centre, Unit(river.points[i + 4] - river.points[i - 4]), radius});
            FloodLake(map, sites.back(), plan.seed + 210 + uint32_t(attempt));
        }
    }
    map.water = map.lake;
    for (const WideLine& river : map.rivers) {
        StrokeWideLine(map.water, river, 0, 0);
    }
}
