// Coverage from distance: a pixel is covered by how far its centre lies inside the edge.
#include "tools/sample_stroke.h"

void StrokeSegment(Grid<uint8_t>& mask, Spot from, Spot to, float fromWidth, float toWidth)
{
    float reach = std::max(fromWidth, toWidth) / 2 + 1;
    int left = std::max(0, int(std::floor(std::min(from.x, to.x) - reach)));
    int top = std::max(0, int(std::floor(std::min(from.y, to.y) - reach)));
    int right = std::min(mask.width - 1, int(std::max(from.x, to.x) + reach));
    int bottom = std::min(mask.height - 1, int(std::max(from.y, to.y) + reach));
    Spot along = to - from;
    float squared = along.x * along.x + along.y * along.y;
    float inverse = squared > 0 ? 1 / squared : 0;
    for (int y = top; y <= bottom; y++) {
        for (int x = left; x <= right; x++) {
            Spot offset = Spot{float(x) + 0.5f, float(y) + 0.5f} - from;
            float t = std::clamp((offset.x * along.x + offset.y * along.y) * inverse, 0.0f, 1.0f);
            float distance = Length(offset - along * t);
            float width = Mix(fromWidth, toWidth, t);
            // A line under one pixel wide is a paler line of one pixel.
            float coverage =
                std::min(width, 1.0f) * std::clamp(std::max(width, 1.0f) / 2 + 0.5f - distance, 0.0f, 1.0f);
            uint8_t& covered = At(mask, x, y);
            covered = std::max(covered, CoverageByte(coverage));
        }
    }
}

void StrokeLine(Grid<uint8_t>& mask, const std::vector<Spot>& points, float width)
{
    for (size_t i = 1; i < points.size(); i++) {
        StrokeSegment(mask, points[i - 1], points[i], width, width);
    }
}

void StrokeWideLine(Grid<uint8_t>& mask, const WideLine& line, float extra)
{
    for (size_t i = 1; i < line.points.size(); i++) {
        StrokeSegment(mask, line.points[i - 1], line.points[i], line.widths[i - 1] + extra, line.widths[i] + extra);
    }
}

void StrokeDashes(Grid<uint8_t>& mask, const std::vector<Spot>& points, float width, float dash, float gap)
{
    float phase = 0; // way since the current dash began
    for (size_t i = 1; i < points.size(); i++) {
        float length = Distance(points[i - 1], points[i]);
        Spot unit = Unit(points[i] - points[i - 1]);
        float done = 0;
        while (done < length) {
            bool drawing = phase < dash;
            float step = std::min(length - done, (drawing ? dash : dash + gap) - phase);
            if (drawing) {
                StrokeSegment(mask, points[i - 1] + unit * done, points[i - 1] + unit * (done + step), width, width);
            }
            // The smallest step keeps rounding from stopping the walk.
            done += std::max(step, 0.01f);
            phase += std::max(step, 0.01f);
            if (phase >= dash + gap) {
                phase = 0;
            }
        }
    }
}

void FillBuilding(Grid<uint8_t>& mask, const Building& building, float extra)
{
    float halfLength = building.halfLength + extra;
    float halfWidth = building.halfWidth + extra;
    float reach = halfLength + halfWidth + 1;
    int left = std::max(0, int(std::floor(building.centre.x - reach)));
    int top = std::max(0, int(std::floor(building.centre.y - reach)));
    int right = std::min(mask.width - 1, int(building.centre.x + reach));
    int bottom = std::min(mask.height - 1, int(building.centre.y + reach));
    for (int y = top; y <= bottom; y++) {
        for (int x = left; x <= right; x++) {
            Spot offset = Spot{float(x) + 0.5f, float(y) + 0.5f} - building.centre;
            float along = std::abs(offset.x * building.axis.x + offset.y * building.axis.y);
            float across = std::abs(offset.y * building.axis.x - offset.x * building.axis.y);
            float coverage =
                std::clamp(halfLength + 0.5f - along, 0.0f, 1.0f) * std::clamp(halfWidth + 0.5f - across, 0.0f, 1.0f);
            uint8_t& covered = At(mask, x, y);
            covered = std::max(covered, CoverageByte(coverage));
        }
    }
}

std::vector<Spot> SmoothCurve(const std::vector<Spot>& points)
{
    std::vector<Spot> curve;
    if (points.empty()) {
        return curve;
    }
    int last = int(points.size()) - 1;
    for (int i = 0; i < last; i++) {
        Spot p0 = points[size_t(std::max(i - 1, 0))];
        Spot p1 = points[size_t(i)];
        Spot p2 = points[size_t(i + 1)];
        Spot p3 = points[size_t(std::min(i + 2, last))];
        int pieces = std::max(1, int(Distance(p1, p2) / 2));
        for (int k = 0; k < pieces; k++) {
            float t = float(k) / float(pieces);
            Spot a = p1 * 2;
            Spot b = (p2 - p0) * t;
            Spot c = (p0 * 2 - p1 * 5 + p2 * 4 - p3) * (t * t);
            Spot d = (p1 * 3 - p0 - p2 * 3 + p3) * (t * t * t);
            curve.push_back((a + b + c + d) * 0.5f);
        }
    }
    curve.push_back(points[size_t(last)]);
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
