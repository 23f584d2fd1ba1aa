// Towns where people would settle, and roads between them along the easiest ways.
#include "samples/stroke.h"

#include <map>
#include <set>

namespace {

bool NearWater(const SampleMap& map, Spot place, int reach)
{
    for (int dy = -reach; dy <= reach; dy += 2) {
        for (int dx = -reach; dx <= reach; dx += 2) {
            if (Nearest(map.water, int(place.x) + dx, int(place.y) + dy) > 100) {
                return true;
            }
        }
    }
    return false;
}

// How well a town of the given radius would lie here; below 0 not at all.
float SiteValue(const SampleMap& map, Spot place, float radius)
{
    if (NearWater(map, place, 3)) {
        return -1;
    }
    float steepest = 0;
    float wet = 0;
    for (int k = 0; k < 16; k++) {
        Spot at = place + (SpotAt(k % 4, k / 4) - Spot{1.5f, 1.5f}) * (radius * 0.5f);
        steepest = std::max(steepest, SlopeAt(map, at));
        wet += float(Nearest(map.lake, at) > 100);
    }
    float value = 1 - steepest * 6 - wet * 0.15f;
    return NearWater(map, place, int(radius * 0.8f)) ? value + 0.5f : value;
}

} // namespace

void PlaceTowns(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    Dice dice = {plan.seed + 300};
    float area = float(plan.art.width) * float(plan.art.height);
    int wanted = plan.counts.towns + plan.counts.villages;
    for (int number = 0; number < wanted; number++) {
        bool isTown = number < plan.counts.towns;
        // A town is big when it has the whole country to itself.
        float spread = std::sqrt(area / float(isTown ? plan.counts.towns : wanted));
        float radius = isTown ? RollBetween(dice, 0.055f, 0.085f) * std::clamp(spread, 420.0f, 1000.0f)
                              : RollBetween(dice, 10, 24);
        float border = radius * 0.9f + 8;
        Town best = {{}, radius, {1, 0}};
        float bestValue = 0;
        for (int attempt = 0; attempt < 250; attempt++) {
            Spot place = {RollBetween(dice, border, float(plan.art.width) - border),
                          RollBetween(dice, border, float(plan.art.height) - border)};
            float value = SiteValue(map, place, radius);
            for (const Town& other : map.towns) {
                value -= Distance(other.centre, place) < 0.5f * spread ? 2 : 0;
            }
            if (value > bestValue) {
                bestValue = value;
                best.centre = place;
            }
        }
        map.towns.push_back(best);
    }
}

// ---- ways ----

namespace {

constexpr int wayStep = 8; // pixels between the nodes that roads may use

struct WayNode {
    Spot place;
    float wetness;                 // part of the node's square under water
    std::map<int, RoadKind> links; // the nodes that roads lead on to
    bool traced;
};

typedef Grid<WayNode> WayNet;

WayNet MakeNet(const SampleMap& map)
{
    return FillGrid<WayNode>(
        (map.plan->art.width - 1) / wayStep + 1, (map.plan->art.height - 1) / wayStep + 1, [&](int x, int y) {
            WayNode node = {SpotAt(x, y) * wayStep, 0, {}, false};
            for (int k = 0; k < 16; k++) {
                int wet = Nearest(map.water, x * wayStep + k % 4 * 2 - 4, y * wayStep + k / 4 * 2 - 4);
                node.wetness += float(wet) / (16 * 255);
            }
            return node;
        });
}

float StepCost(const SampleMap& map, const WayNet& net, int from, int to, RoadKind kind)
{
    constexpr float patience[] = {1.0f, 0.6f, 0.35f};
    const WayNode& a = net.values[from];
    const WayNode& b = net.values[to];
    float length = Distance(a.place, b.place);
    float rise = std::abs(Nearest(map.height, a.place) - Nearest(map.height, b.place)) / (length * 10);
    float side = SlopeAt(map, b.place);
    float cost = length * (1 + patience[kind] * (500 * rise * rise + 60 * side * side + 4 * side));
    cost += length * b.wetness * 22;
    // A road leaves the map rather than run along its border.
    int column = to % net.width;
    int row = to / net.width;
    bool border = !Inside(net, column - 1, row - 1) || !Inside(net, column + 1, row + 1);
    cost += border ? length * 10 : 0;
    return cost * (a.links.count(to) != 0 ? 0.3f : b.links.empty() ? 1 : 0.8f);
}

// Lays a road the cheapest way, searched in the land between and around the two places.
void Connect(const SampleMap& map, WayNet& net, Spot start, Spot goal, RoadKind kind)
{
    auto nodeAt = [&](Spot place) {
        int x = std::clamp(int(place.x / wayStep + 0.5f), 0, net.width - 1);
        int y = std::clamp(int(place.y / wayStep + 0.5f), 0, net.height - 1);
        return y * net.width + x;
    };
    int from = nodeAt(start);
    int to = nodeAt(goal);
    std::vector<float> cost(net.values.size(), 1e30f);
    std::vector<int> before(net.values.size());
    WaitingQueue open;
    cost[from] = 0;
    open.push({0, from});
    while (open.top().second != to) {
        int node = open.top().second;
        open.pop();
        for (int k = 0; k < 16; k++) {
            int x = node % net.width + stepX[k];
            int y = node / net.width + stepY[k];
            if (!Inside(net, x, y)) {
                continue;
            }
            int next = y * net.width + x;
            float total = cost[node] + StepCost(map, net, node, next, kind);
            if (total < cost[next]) {
                cost[next] = total;
                before[next] = node;
                open.push({total, next});
            }
        }
    }
    for (int node = to; node != from; node = before[node]) {
        RoadKind& link = net.values[node].links.insert({before[node], kind}).first->second;
        link = std::min(link, kind);
        net.values[before[node]].links[node] = link;
    }
}

// ---- from links to lines ----

// Joins the links of one kind into lines that run on through junctions with lesser roads. Better roads come first; a
// lesser one ends where the better one's line finally runs.
void TraceRoads(SampleMap& map, WayNet& net, RoadKind kind)
{
    std::vector<std::set<int>> onward(net.values.size()); // by links that no line has yet
    for (size_t node = 0; node < onward.size(); node++) {
        for (auto [other, linkKind] : net.values[node].links) {
            if (linkKind == kind) {
                onward[node].insert(other);
            }
        }
    }
    for (int start = 0; start < int(onward.size()); start++) {
        bool passed = onward[start].size() == 2 && !net.values[start].traced;
        while (!passed && !onward[start].empty()) {
            std::vector<int> nodes = {start};
            do {
                int node = nodes.back();
                nodes.push_back(*onward[node].begin());
                onward[node].erase(nodes.back());
                onward[nodes.back()].erase(node);
            } while (onward[nodes.back()].size() == 1 && !net.values[nodes.back()].traced);
            std::vector<Spot> points;
            points.reserve(nodes.size());
            for (int node : nodes) {
                points.push_back(net.values[node].place);
            }
            RelaxLine(points, kind == mainRoad ? 7 : kind == minorRoad ? 4 : 2);
            for (size_t i = 0; i < nodes.size(); i++) {
                net.values[nodes[i]].place = points[i];
                net.values[nodes[i]].traced = true;
            }
            map.roads.push_back({kind, SmoothCurve(points)});
        }
    }
}

// The centre of one of the first so many towns.
Spot NearestTown(const SampleMap& map, Spot place, size_t count)
{
    auto distance = [&](const Town& town) { return Distance(town.centre, place); };
    return std::ranges::min_element(map.towns.begin(), map.towns.begin() + count, {}, distance)->centre;
}

// The lowest dry place on the border of the map near a random one.
Spot ExitPlace(const SampleMap& map, Dice& dice, int side)
{
    float right = float((map.plan->art.width - 1) / wayStep * wayStep);
    float bottom = float((map.plan->art.height - 1) / wayStep * wayStep);
    Spot best;
    float lowest = 1e30f;
    for (int attempt = 0; attempt < 12; attempt++) {
        float t = RollBetween(dice, 0.06f, 0.94f);
        Spot place =
            side % 2 == 0 ? Spot{t * right, side == 0 ? 0 : bottom} : Spot{side == 1 ? right : 0, t * bottom};
        float height = Nearest(map.height, place) + (NearWater(map, place, 6) ? 500.0f : 0.0f);
        if (height < lowest) {
            lowest = height;
            best = place;
        }
    }
    return best;
}

// A line that ends at the last node before the border runs on to leave the map.
void RunOffMap(const SampleMap& map, Road& road)
{
    auto beyond = [](float at, int length) {
        return at < 4 ? -12.0f : at > float(length - wayStep - 4) ? 12.0f : 0.0f;
    };
    for (bool front : {true, false}) {
        Spot place = front ? road.points.front() : road.points.back();
        Spot outward = {beyond(place.x, map.plan->art.width), beyond(place.y, map.plan->art.height)};
        if (Length(outward) > 1) {
            road.points.insert(front ? road.points.begin() : road.points.end(), place + outward);
        }
    }
}

} // namespace

void PlaceRoads(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    WayNet net = MakeNet(map);
    Dice dice = {plan.seed + 400};
    size_t townCount = size_t(plan.counts.towns);
    for (int i = 0; i < plan.counts.exits; i++) {
        Spot exit = ExitPlace(map, dice, i % 4);
        Connect(map, net, exit, NearestTown(map, exit, townCount), i < 4 ? mainRoad : minorRoad);
    }
    for (size_t i = 1; i < map.towns.size(); i++) {
        // To the nearest place that was connected before; many a village has a second way, to the nearest town.
        Spot place = map.towns[i].centre;
        Connect(map, net, place, NearestTown(map, place, i), i < townCount ? mainRoad : minorRoad);
        if (i % 3 != 0) {
            Connect(map, net, place, NearestTown(map, place, townCount), minorRoad);
        }
    }
    for (int i = 0; i < plan.counts.tracks; i++) {
        Spot place = {RollBetween(dice, 10, float(plan.art.width - 20)),
                      RollBetween(dice, 10, float(plan.art.height - 20))};
        if (!NearWater(map, place, 8) && SlopeAt(map, place) < 0.35f) {
            Connect(map, net, place, NearestTown(map, place, map.towns.size()), track);
        }
    }
    map.road = BlankMask(map);
    for (RoadKind kind : {mainRoad, minorRoad, track}) {
        TraceRoads(map, net, kind);
    }
    for (Road& road : map.roads) {
        RunOffMap(map, road);
        StrokeLine(map.road, road.points, drawnWidths[road.kind]);
    }
}
