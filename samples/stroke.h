// Anti-aliased lines and areas into coverage masks.
#pragma once

#include "samples/model.h"

// Raises the mask to the coverage of a line; width in pixels, round ends.
void StrokeSegment(Grid<uint8_t>& mask, Spot from, Spot to, float fromWidth, float toWidth);
void StrokeLine(Grid<uint8_t>& mask, const std::vector<Spot>& points, float width);
// extra is added to the line's own widths; pieces up to the width narrowest are left out.
void StrokeWideLine(Grid<uint8_t>& mask, const WideLine& line, float extra, float narrowest);
void StrokeDashes(Grid<uint8_t>& mask, const std::vector<Spot>& points, float width);
// Raises the mask to the coverage of a building, grown by extra on each side.
void FillBuilding(Grid<uint8_t>& mask, const Building& building, float extra);

// A smooth curve through the points, with pieces of at most two pixels or so.
std::vector<Spot> SmoothCurve(const std::vector<Spot>& points);
// Moves each inner point towards its neighbours.
void RelaxLine(std::vector<Spot>& points, int rounds);

inline uint8_t CoverageByte(float coverage)
{
    return uint8_t(std::clamp(coverage, 0.0f, 1.0f) * 255 + 0.5f);
}

inline void Raise(uint8_t& covered, float coverage)
{
    covered = std::max(covered, CoverageByte(coverage));
}
