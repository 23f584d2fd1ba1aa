// The cells of a sample map: what the art shows in each square.
#include "samples/model.h"

namespace {

// A river that fills this part of a square makes it a barrier, else rivers would have gaps between squares.
constexpr float waterShare = 0.38f;

// The part of a square that a mask covers, 0 to 1; only pixels of the map count.
float Share(const Grid<uint8_t>& mask, int column, int row)
{
    int sum = 0;
    int pixels = 0;
    for (int y = row * cellSize; y < std::min(mask.height, (row + 1) * cellSize); y++) {
        for (int x = column * cellSize; x < std::min(mask.width, (column + 1) * cellSize); x++) {
            sum += At(mask, x, y);
            pixels++;
        }
    }
    return float(sum) / (255.0f * float(pixels));
}

// A hill that stands alone blocks the view without being one of the heights.
bool IsKnoll(const Grid<float>& heights, int column, int row, float prominence)
{
    static constexpr int ringX[16] = {6, 6, 4, 2, 0, -2, -4, -6, -6, -6, -4, -2, 0, 2, 4, 6};
    static constexpr int ringY[16] = {0, 2, 4, 6, 6, 6, 4, 2, 0, -2, -4, -6, -6, -6, -4, -2};
    for (int k = 0; k < 16; k++) {
        int x = column + ringX[k];
        int y = row + ringY[k];
        if (!Inside(heights, x, y) || At(heights, column, row) - At(heights, x, y) < prominence) {
            return false;
        }
    }
    return true;
}

} // namespace

Grid<TerrainCell> DeriveCells(const SampleMap& map)
{
    int columns = CellCountOf(map.plan->art.width);
    int rows = CellCountOf(map.plan->art.height);
    Grid<float> heights = FillGrid<float>(columns, rows, [&](int column, int row) {
        return Nearest(map.height, column * cellSize + cellSize / 2, row * cellSize + cellSize / 2);
    });
    float heightsBegin = ValueAtRank(heights.values, heights.values.size() * 88 / 100);
    return FillGrid<TerrainCell>(columns, rows, [&](int column, int row) {
        auto share = [&](const Grid<uint8_t>& mask) { return Share(mask, column, row); };
        float slope = SlopeAt(map, SpotAt(column * cellSize + cellSize / 2, row * cellSize + cellSize / 2));
        bool wet = share(map.water) > waterShare;
        bool deep = share(map.lakeDepth) * 255 > deepWater;
        bool marsh = share(map.marsh) > 0.5f;
        bool woods = share(map.woods) > 0.5f;
        bool town = share(map.town) > 0.09f;
        bool high = At(heights, column, row) >= heightsBegin && !wet;
        bool knoll = !high && IsKnoll(heights, column, row, map.plan->art.contourInterval * 0.6f);
        int word = high ? cellHiLow : 0;
        word |= woods ? cellWoods : 0;
        word |= town ? cellTown : 0;
        word |= knoll || share(map.hedge) > 0.09f ? cellMiscLOSBlock : 0;
        if (share(map.road) > 0.1f) {
            return word | cellRoad; // a road, a bridge included, is open ground for everybody
        }
        int noGo = deep || share(map.cliff) > 0.3f ? 4
                   : wet || marsh || slope > 0.6f  ? 2
                   : woods && slope > 0.4f         ? 1
                                                   : 0;
        int rough = slope < 0.07f ? 0 : slope < 0.16f ? 1 : slope < 0.28f ? 2 : slope < 0.42f ? 3 : 4;
        int cover = marsh ? 3 : woods || town ? 2 : 0;
        int steepWoods = woods && rough >= 2 ? 1 : 0;
        int moveCost = wet ? 6 : std::min(std::max(rough, cover) + steepWoods, 4);
        return word | noGo << cellNoGoShift | moveCost << cellMoveCostShift;
    });
}
