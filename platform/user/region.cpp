#include "platform/user/region.h"

#include <algorithm>

namespace {

// A region of more rectangles than this becomes its bounding box: a little more is painted, and every step stays
// short.
constexpr size_t mostRectangles = 64;

bool IsEmpty(const RECT& area)
{
    return area.left >= area.right || area.top >= area.bottom;
}

} // namespace

void SubtractFromRegion(Region& region, const RECT& area)
{
    if (IsEmpty(area)) {
        return;
    }
    Region rest;
    for (const RECT& old : region) {
        RECT common = {std::max(old.left, area.left), std::max(old.top, area.top), std::min(old.right, area.right),
                       std::min(old.bottom, area.bottom)};
        if (IsEmpty(common)) {
            rest.push_back(old);
            continue;
        }
        const RECT pieces[] = {
            {old.left, old.top, old.right, common.top},
            {old.left, common.top, common.left, common.bottom},
            {common.right, common.top, old.right, common.bottom},
            {old.left, common.bottom, old.right, old.bottom},
        };
        for (const RECT& piece : pieces) {
            if (!IsEmpty(piece)) {
                rest.push_back(piece);
            }
        }
    }
    region = std::move(rest);
}

void AddToRegion(Region& region, const RECT& area)
{
    if (IsEmpty(area)) {
        return;
    }
    SubtractFromRegion(region, area);
    region.push_back(area);
    if (region.size() > mostRectangles) {
        region = {RegionBox(region)};
    }
}

RECT RegionBox(const Region& region)
{
    if (region.empty()) {
        return {};
    }
    RECT box = region[0];
    for (const RECT& part : region) {
        box.left = std::min(box.left, part.left);
        box.top = std::min(box.top, part.top);
        box.right = std::max(box.right, part.right);
        box.bottom = std::max(box.bottom, part.bottom);
    }
    return box;
}
