// Towns where people would settle, and roads between them along the easiest ways.
#include "tools/sample_stroke.h"

#include <map>
#include <queue>

// ---- towns ----

static bool NearWater(const SampleMap& map, Spot place, int reach)
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
static float SiteValue(const SampleMap& map, Spot place, float radius)
{
    if (NearWater(map, place, 3)) {
        return -1;
    }
    float steepest = 0;
    float wet = 0;
    for (int k = 0; k < 16; k++) {
        float dx = float(k % 4) - 1.5f;
        float dy = float(k / 4) - 1.5f;
        Spot at = place + Spot{dx, dy} * (radius * 0.5f);
        steepest = std::max(steepest, SlopeAt(map, at.x, at.y));
        wet += float(Nearest(map.lake, int(at.x), int(at.y)) > 100);
    }
    float value = 1 - steepest * 6 - wet * 0.15f;
    return NearWater(map, place, int(radius * 0.8f)) ? value + 0.5f : value;
}

void PlaceTowns(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    Dice dice = {plan.seed + 300};
    float area = float(plan.width) * float(plan.height);
    int wanted = plan.townCount + plan.villageCount;
    for (int number = 0; number < wanted; number++) {
        bool isTown = number < plan.townCount;
        // A town is big when it has the whole country to itself.
        float spread = std::sqrt(area / float(isTown ? plan.townCount : wanted));
        float radius = isTown ? RollBetween(dice, 0.055f, 0.085f) * std::clamp(spread, 420.0f, 1000.0f)
                              : RollBetween(dice, 10, 24);
        Town best = {{}, radius, {1, 0}};
        float bestValue = 0;
        for (int attempt = 0; attempt < 250; attempt++) {
            float border = radius * 0.9f + 8;
            Spot place = {RollBetween(dice, border, float(plan.width) - border),
                          RollBetween(dice, border, float(plan.height) - border)};
            float value = SiteValue(map, place, radius);
            for (const Town& other : map.towns) {
                float apart = Distance(other.centre, place);
                if (apart < 0.5f * spread || apart < 1.6f * (radius + other.radius)) {
                    value -= 2;
                }
            }
            if (value > bestValue) {
                bestValue = value;
                best.centre = place;
            }
        }
        if (bestValue > 0) {
            map.towns.push_back(best);
        }
    }
}

// ---- ways ----

static constexpr int wayStep = 8; // pixels between the nodes that roads may use

struct WayNet {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> used;                // by a road, per node
    std::vector<float> wetness;               // part of the node's square under water
    std::map<std::pair<int, int>, int> links; // road kind by the pair of nodes, the lower first
};

static Spot WaySpot(const WayNet& net, int node)
{
    return {float(node % net.width * wayStep), float(node / net.width * wayStep)};
}

static int WayNode(const WayNet& net, Spot place)
{
    int x = std::clamp(int(place.x / wayStep + 0.5f), 0, net.width - 1);
    int y = std::clamp(int(place.y / wayStep + 0.5f), 0, net.height - 1);
    return y * net.width + x;
}

static std::pair<int, int> LinkOf(int a, int b)
{
    return {std::min(a, b), std::max(a, b)};
}

// The eight neighbours and the eight knight's moves, so that a road is not bound to eight directions.
static constexpr int wayX[16] = {1, 1, 0, -1, -1, -1, 0, 1, 2, 1, -1, -2, -2, -1, 1, 2};
static constexpr int wayY[16] = {0, 1, 1, 1, 0, -1, -1, -1, 1, 2, 2, 1, -1, -2, -2, -1};

static float StepCost(const SampleMap& map, const WayNet& net, int from, int to, RoadKind kind)
{
    Spot a = WaySpot(net, from);
    Spot b = WaySpot(net, to);
    float length = Distance(a, b);
    float rise =
        std::abs(Nearest(map.height, int(a.x), int(a.y)) - Nearest(map.height, int(b.x), int(b.y))) / (length * 10);
    float sideSlope = SlopeAt(map, b.x, b.y);
    float patience = kind == mainRoad ? 1.0f : kind == minorRoad ? 0.6f : 0.35f;
    float wet = net.wetness[size_t(to)];
    float cost = length * (1 + patience * (500 * rise * rise + 60 * sideSlope * sideSlope + 4 * sideSlope));
    if (Nearest(map.lake, int(b.x), int(b.y)) > 60) {
        cost += length * 60;
    }
    cost += length * wet * 22;
    // A road leaves the map rather than run along its border.
    int column = to % net.width;
    int row = to / net.width;
    if (column == 0 || row == 0 || column == net.width - 1 || row == net.height - 1) {
        cost += length * 10;
    }
    if (!net.used[size_t(to)]) {
        return cost;
    }
    bool linked = net.used[size_t(from)] && net.links.count(LinkOf(from, to)) != 0;
    return (linked ? 0.3f : 0.8f) * cost;
}

// The cheapest way, searched in the land between and around the two nodes; empty when there is none.
static std::vector<int> FindWay(const SampleMap& map, const WayNet& net, int from, int to, RoadKind kind)
{
    constexpr int detour = 45;
    int left = std::min(from % net.width, to % net.width) - detour;
    int right = std::max(from % net.width, to % net.width) + detour;
    int top = std::min(from / net.width, to / net.width) - detour;
    int bottom = std::max(from / net.width, to / net.width) + detour;
    size_t count = size_t(net.width) * size_t(net.height);
    std::vector<float> cost(count, 1e30f);
    std::vector<int> before(count, -1);
    typedef std::pair<float, int> Entry;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<Entry>> open;
    Spot goal = WaySpot(net, to);
    cost[size_t(from)] = 0;
    open.push({0, from});
    while (!open.empty()) {
        auto [estimate, node] = open.top();
        open.pop();
        if (node == to) {
            break;
        }
        int x = node % net.width;
        int y = node / net.width;
        float guess = 0.3f * Distance(WaySpot(net, node), goal);
        if (estimate > cost[size_t(node)] + guess + 0.01f) {
            continue; // a better way to it was found since
        }
        for (int k = 0; k < 16; k++) {
            int nx = x + wayX[k];
            int ny = y + wayY[k];
            if (nx < std::max(0, left) || ny < std::max(0, top) || nx > std::min(net.width - 1, right) ||
                ny > std::min(net.height - 1, bottom)) {
                continue;
            }
            int next = ny * net.width + nx;
            float total = cost[size_t(node)] + StepCost(map, net, node, next, kind);
            if (total < cost[size_t(next)]) {
                cost[size_t(next)] = total;
                before[size_t(next)] = node;
                open.push({total + 0.3f * Distance(WaySpot(net, next), goal), next});
            }
        }
    }
    std::vector<int> way;
    for (int node = to; node >= 0 && (node == from || before[size_t(node)] >= 0); node = before[size_t(node)]) {
        way.push_back(node);
    }
    return way.size() > 1 && way.back() == from ? way : std::vector<int>();
}

static void Connect(const SampleMap& map, WayNet& net, Spot from, Spot to, RoadKind kind)
{
    std::vector<int> way = FindWay(map, net, WayNode(net, from), WayNode(net, to), kind);
    for (size_t i = 1; i < way.size(); i++) {
        auto [link, isNew] = net.links.insert({LinkOf(way[i - 1], way[i]), int(kind)});
        link->second = std::min(link->second, int(kind));
        net.used[size_t(way[i - 1])] = 1;
        net.used[size_t(way[i])] = 1;
    }
}

// ---- from links to lines ----

// Joins the links of one kind into lines that run on through junctions with lesser roads. Better roads come first; a
// lesser one ends where the better one's line finally runs.
static void TraceRoads(SampleMap& map, const WayNet& net, RoadKind kind, std::map<int, Spot>& places)
{
    std::map<int, std::vector<int>> branches;
    for (const auto& [link, linkKind] : net.links) {
        if (linkKind == kind) {
            branches[link.first].push_back(link.second);
            branches[link.second].push_back(link.first);
        }
    }
    std::map<std::pair<int, int>, bool> drawn;
    auto follow = [&](int start, int second) {
        std::vector<int> nodes = {start};
        int previous = start;
        int node = second;
        while (true) {
            drawn[LinkOf(previous, node)] = true;
            nodes.push_back(node);
            const std::vector<int>& onward = branches[node];
            if (onward.size() != 2 || places.count(node) != 0 || node == start) {
                break;
            }
            int next = onward[0] == previous ? onward[1] : onward[0];
            if (drawn.count(LinkOf(node, next)) != 0) {
                break;
            }
            previous = node;
            node = next;
        }
        std::vector<Spot> points;
        for (int at : nodes) {
            auto known = places.find(at);
            points.push_back(known != places.end() ? known->second : WaySpot(net, at));
        }
        RelaxLine(points, kind == mainRoad ? 7 : kind == minorRoad ? 4 : 2);
        for (size_t i = 0; i < nodes.size(); i++) {
            places.insert({nodes[i], points[i]});
        }
        map.roads.push_back({kind, SmoothCurve(points)});
    };
    for (const auto& [node, others] : branches) {
        if (others.size() == 2 && places.count(node) == 0) {
            continue;
        }
        for (int other : others) {
            if (drawn.count(LinkOf(node, other)) == 0) {
                follow(node, other);
            }
        }
    }
    // What is left are rings.
    for (const auto& [node, others] : branches) {
        for (int other : others) {
            if (drawn.count(LinkOf(node, other)) == 0) {
                follow(node, other);
            }
        }
    }
}

static void MeasureWetness(const SampleMap& map, WayNet& net)
{
    for (int y = 0; y < net.height; y++) {
        for (int x = 0; x < net.width; x++) {
            int sum = 0;
            for (int dy = -4; dy < 4; dy += 2) {
                for (int dx = -4; dx < 4; dx += 2) {
                    sum += Nearest(map.water, x * wayStep + dx, y * wayStep + dy);
                }
            }
            net.wetness[size_t(y * net.width + x)] = float(sum) / (16 * 255);
        }
    }
}

// The town nearest to a place that is not the place itself; -1 when there is none.
static int NearestTown(const SampleMap& map, Spot place, size_t count)
{
    int nearest = -1;
    for (size_t i = 0; i < count; i++) {
        float distance = Distance(map.towns[i].centre, place);
        if (nearest < 0 || distance < Distance(map.towns[size_t(nearest)].centre, place)) {
            nearest = int(i);
        }
    }
    return nearest;
}

// The lowest dry place on the border of the map near a random one.
static Spot ExitPlace(const SampleMap& map, Dice& dice, int side)
{
    const SamplePlan& plan = *map.plan;
    Spot best = {};
    float lowest = 1e30f;
    for (int attempt = 0; attempt < 12; attempt++) {
        float t = RollBetween(dice, 0.06f, 0.94f);
        float right = float((plan.width - 1) / wayStep * wayStep);
        float bottom = float((plan.height - 1) / wayStep * wayStep);
        Spot place = side == 0   ? Spot{t * right, 0}
                     : side == 1 ? Spot{right, t * bottom}
                     : side == 2 ? Spot{t * right, bottom}
                                 : Spot{0, t * bottom};
        float height = Nearest(map.height, int(place.x), int(place.y)) + (NearWater(map, place, 6) ? 500.0f : 0.0f);
        if (height < lowest) {
            lowest = height;
            best = place;
        }
    }
    return best;
}

// A line that ends at the last node before the border runs on to leave the map.
static void RunOffMap(SampleMap& map)
{
    for (Road& road : map.roads) {
        for (int end = 0; end < 2; end++) {
            Spot place = end == 0 ? road.points.front() : road.points.back();
            Spot outward = {place.x < 4                                      ? -12.0f
                            : place.x > float(map.plan->width - wayStep - 4) ? 12.0f
                                                                             : 0.0f,
                            place.y < 4                                       ? -12.0f
                            : place.y > float(map.plan->height - wayStep - 4) ? 12.0f
                                                                              : 0.0f};
            if (Length(outward) > 1) {
                road.points.insert(end == 0 ? road.points.begin() : road.points.end(), place + outward);
            }
        }
    }
}

void PlaceRoads(SampleMap& map)
{
    const SamplePlan& plan = *map.plan;
    WayNet net;
    net.width = (plan.width - 1) / wayStep + 1;
    net.height = (plan.height - 1) / wayStep + 1;
    net.used.assign(size_t(net.width) * size_t(net.height), 0);
    net.wetness.assign(size_t(net.width) * size_t(net.height), 0);
    MeasureWetness(map, net);
    Dice dice = {plan.seed + 400};
    size_t townCount = std::min(size_t(plan.townCount), map.towns.size());
    for (int i = 0; i < plan.exitCount; i++) {
        Spot exit = ExitPlace(map, dice, i % 4);
        int town = NearestTown(map, exit, townCount);
        if (town >= 0) {
            Connect(map, net, exit, map.towns[size_t(town)].centre, i < 4 ? mainRoad : minorRoad);
        }
    }
    for (size_t i = 1; i < townCount; i++) {
        int town = NearestTown(map, map.towns[i].centre, i);
        Connect(map, net, map.towns[i].centre, map.towns[size_t(town)].centre, mainRoad);
    }
    for (size_t i = townCount; i < map.towns.size(); i++) {
        // To the nearest place that was connected before, and to the nearest town, for a second way in.
        Spot place = map.towns[i].centre;
        int near = NearestTown(map, place, i);
        int town = NearestTown(map, place, townCount);
        if (near >= 0) {
            Connect(map, net, place, map.towns[size_t(near)].centre, minorRoad);
        }
        if (town >= 0 && town != near && i % 3 != 0) {
            Connect(map, net, place, map.towns[size_t(town)].centre, minorRoad);
        }
    }
    for (int i = 0; i < plan.trackCount; i++) {
        Spot place = {RollBetween(dice, 10, float(plan.width - 20)), RollBetween(dice, 10, float(plan.height - 20))};
        int town = NearestTown(map, place, map.towns.size());
        if (town >= 0 && !NearWater(map, place, 8) && SlopeAt(map, place.x, place.y) < 0.35f) {
            Connect(map, net, place, map.towns[size_t(town)].centre, track);
        }
    }
    std::map<int, Spot> places;
    TraceRoads(map, net, mainRoad, places);
    TraceRoads(map, net, minorRoad, places);
    TraceRoads(map, net, track, places);
    RunOffMap(map);
    map.road = MakeGrid<uint8_t>(plan.width, plan.height, 0);
    for (const Road& road : map.roads) {
        StrokeLine(map.road, road.points, DrawnWidth(road.kind));
    }
}
