// Coverage from distance: a pixel is covered by how far its centre lies inside the edge.
#include "samples/stroke.h"

namespace {

// Raises the mask within reach of the line between two spots to coverageAt(centre of a pixel).
void RaiseMask(Grid<uint8_t>& mask, Spot from, Spot to, float reach, auto coverageAt)
{
    int right = std::min(mask.width - 1, int(std::max(from.x, to.x) + reach));
    int bottom = std::min(mask.height - 1, int(std::max(from.y, to.y) + reach));
    for (int y = std::max(0, int(std::min(from.y, to.y) - reach)); y <= bottom; y++) {
        for (int x = std::max(0, int(std::min(from.x, to.x) - reach)); x <= right; x++) {
            Raise(At(mask, x, y), coverageAt(SpotAt(x, y) + Spot{0.5f, 0.5f}));
        }
    }
}

} // namespace

void StrokeSegment(Grid<uint8_t>& mask, Spot from, Spot to, float fromWidth, float toWidth)
{
    Spot along = to - from;
    float squared = Dot(along, along);
    float inverse = squared > 0 ? 1 / squared : 0;
    RaiseMask(mask, from, to, std::max(fromWidth, toWidth) / 2 + 1, [&](Spot place) {
        float t = std::clamp(Dot(place - from, along) * inverse, 0.0f, 1.0f);
        float distance = Length(place - from - along * t);
        float width = Mix(fromWidth, toWidth, t);
        // A line under one pixel wide is a paler line of one pixel.
        return std::min(width, 1.0f) * std::clamp(std::max(width, 1.0f) / 2 + 0.5f - distance, 0.0f, 1.0f);
    });
}

void StrokeLine(Grid<uint8_t>& mask, const std::vector<Spot>& points, float width)
{
    for (size_t i = 1; i < points.size(); i++) {
        StrokeSegment(mask, points[i - 1], points[i], width, width);
    }
}

void StrokeWideLine(Grid<uint8_t>& mask, const WideLine& line, float extra, float narrowest)
{
    for (size_t i = 1; i < line.points.size(); i++) {
        if (line.widths[i] > narrowest) {
            StrokeSegment(mask, line.points[i - 1], line.points[i], line.widths[i - 1] + extra,
                          line.widths[i] + extra);
        }
    }
}

void StrokeDashes(Grid<uint8_t>& mask, const std::vector<Spot>& points, float width)
{
    constexpr float dash = 6;
    constexpr float gap = 2.6f;
    float phase = 0; // way since the current dash began
    for (size_t i = 1; i < points.size(); i++) {
        float length = Distance(points[i - 1], points[i]);
        Spot unit = Unit(points[i] - points[i - 1]);
        float done = 0;
        while (done < length) {
            // The smallest step keeps rounding from stopping the walk.
            float step = std::min(length - done, (phase < dash ? dash : dash + gap) - phase);
            if (phase < dash) {
                StrokeSegment(mask, points[i - 1] + unit * done, points[i - 1] + unit * (done + step), width, width);
            }
            step = std::max(step, 0.01f);
            done += step;
            phase = phase + step < dash + gap ? phase + step : 0;
        }
    }
}

void FillBuilding(Grid<uint8_t>& mask, const Building& building, float extra)
{
    float length = building.halfLength + extra + 0.5f;
    float width = building.halfWidth + extra + 0.5f;
    RaiseMask(mask, building.centre, building.centre, length + width, [&](Spot place) {
        float along = std::abs(Dot(place - building.centre, building.axis));
        float across = std::abs(Dot(place - building.centre, Turned(building.axis)));
        return std::clamp(length - along, 0.0f, 1.0f) * std::clamp(width - across, 0.0f, 1.0f);
    });
}

std::vector<Spot> SmoothCurve(const std::vector<Spot>& points)
{
    std::vector<Spot> curve;
    for (size_t i = 1; i < points.size(); i++) {
        Spot p0 = points[i > 1 ? i - 2 : 0];
        Spot p1 = points[i - 1];
        Spot p2 = points[i];
        Spot p3 = points[std::min(i + 1, points.size() - 1)];
        int pieces = std::max(1, int(Distance(p1, p2) / 2));
        for (int k = 0; k < pieces; k++) {
            float t = float(k) / float(pieces);
            Spot sum = p1 * 2 + (p2 - p0) * t + (p0 * 2 - p1 * 5 + p2 * 4 - p3) * (t * t) +
                       (p1 * 3 - p0 - p2 * 3 + p3) * (t * t * t);
            curve.push_back(sum * 0.5f);
        }
    }
    curve.push_back(points.back());
    return curve;
}

void RelaxLine(std::vector<Spot>& points, int rounds)
{
    for (int round = 0; round < rounds; round++) {
        std::vector<Spot> before = points;
        for (size_t i = 1; i + 1 < points.size(); i++) {
            points[i] = before[i - 1] * 0.25f + before[i] * 0.5f + before[i + 1] * 0.25f;
        }
    }
}
