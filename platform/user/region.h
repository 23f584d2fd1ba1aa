// A set of pixels as a list of disjoint rectangles.
#pragma once

#include "platform/api/types.h"

#include <vector>

typedef std::vector<RECT> Region;

void AddToRegion(Region& region, const RECT& area);
void SubtractFromRegion(Region& region, const RECT& area);
RECT RegionBox(const Region& region); // all zero when it is empty
