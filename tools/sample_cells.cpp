// The cells of a sample map: what the art shows in each square of 10 by 10 pixels.
#include "tools/sample_model.h"

static constexpr int squareSide = 10;

// The parts of a cell's word.
static constexpr uint16_t miscBlock = 0x0002;
static constexpr uint16_t hiLow = 0x0008;
static constexpr uint16_t roadFlag = 0x0020;
static constexpr uint16_t woodsFlag = 0x0040;
static constexpr uint16_t townFlag = 0x0080;
static constexpr int noGoShift = 8;
static constexpr int moveCostShift = 11;
static constexpr int waterCost = 6;
static constexpr int roughestCost = 4;

// A river that fills this part of a square makes it a barrier, else rivers would have gaps between squares.
static constexpr float waterShare = 0.38f;

// The part of a square that a mask covers, 0 to 1; only pixels of the map count.
static float Share(const Grid<uint8_t>& mask, int column, int row)
{
    int sum = 0;
    int pixels = 0;
    for (int y = row * squareSide; y < std::min(mask.height, (row + 1) * squareSide); y++) {
        for (int x = column * squareSide; x < std::min(mask.width, (column + 1) * squareSide); x++) {
            sum += At(mask, x, y);
            pixels++;
        }
    }
    return float(sum) / (255.0f * float(pixels));
}

static Spot SquareCentre(int column, int row)
{
    return {float(column * squareSide + squareSide / 2), float(row * squareSide + squareSide / 2)};
}

static Grid<float> SquareHeights(const SampleMap& map, int columns, int rows)
{
    Grid<float> heights = MakeGrid<float>(columns, rows, 0);
    for (int row = 0; row < rows; row++) {
        for (int column = 0; column < columns; column++) {
            Spot centre = SquareCentre(column, row);
            At(heights, column, row) = Nearest(map.height, int(centre.x), int(centre.y));
        }
    }
    return heights;
}

// A hill that stands alone blocks the view without being one of the heights.
static bool IsKnoll(const Grid<float>& heights, int column, int row, float prominence)
{
    float own = At(heights, column, row);
    static constexpr int ringX[16] = {6, 6, 4, 2, 0, -2, -4, -6, -6, -6, -4, -2, 0, 2, 4, 6};
    static constexpr int ringY[16] = {0, 2, 4, 6, 6, 6, 4, 2, 0, -2, -4, -6, -6, -6, -4, -2};
    for (int k = 0; k < 16; k++) {
        if (!Inside(heights, column + ringX[k], row + ringY[k]) ||
            own - At(heights, column + ringX[k], row + ringY[k]) < prominence) {
            return false;
        }
    }
    return true;
}

static uint16_t NoGoLevel(const SampleMap& map, int column, int row, float slope, bool woods, float water)
{
    if (Share(map.cliff, column, row) > 0.3f ||
        (water > waterShare && Share(map.lakeDepth, column, row) * 255 > deepWater)) {
        return 4;
    }
    if (Share(map.marsh, column, row) > 0.5f || slope > 0.6f || water > waterShare) {
        return 2;
    }
    return woods && slope > 0.4f ? 1 : 0;
}

static int MoveCost(const SampleMap& map, int column, int row, float slope, bool woods, bool town, float water)
{
    if (water > waterShare) {
        return waterCost;
    }
    int rough = slope < 0.07f ? 0 : slope < 0.16f ? 1 : slope < 0.28f ? 2 : slope < 0.42f ? 3 : 4;
    if (Share(map.marsh, column, row) > 0.5f) {
        return std::max(rough, 3);
    }
    int cover = woods || town ? 2 : 0;
    return std::min(std::max(rough, cover) + (woods && rough >= 2 ? 1 : 0), roughestCost);
}

Grid<uint16_t> DeriveCells(const SampleMap& map)
{
    int columns = (map.plan->width + squareSide - 1) / squareSide;
    int rows = (map.plan->height + squareSide - 1) / squareSide;
    Grid<uint16_t> cells = MakeGrid<uint16_t>(columns, rows, 0);
    Grid<float> heights = SquareHeights(map, columns, rows);
    std::vector<float> ranked = heights.values;
    size_t rank = ranked.size() * 88 / 100;
    std::nth_element(ranked.begin(), ranked.begin() + std::ptrdiff_t(rank), ranked.end());
    float heightsBegin = ranked[rank];
    for (int row = 0; row < rows; row++) {
        for (int column = 0; column < columns; column++) {
            Spot centre = SquareCentre(column, row);
            float slope = SlopeAt(map, centre.x, centre.y);
            float water = Share(map.water, column, row);
            bool road = Share(map.road, column, row) > 0.1f;
            bool woods = Share(map.woods, column, row) > 0.5f;
            bool town = Share(map.town, column, row) > 0.09f;
            bool high = At(heights, column, row) >= heightsBegin && water <= waterShare;
            bool knoll = !high && IsKnoll(heights, column, row, map.plan->contourInterval * 0.6f);
            uint16_t word = 0;
            word |= high ? hiLow : 0;
            word |= road ? roadFlag : 0;
            word |= woods ? woodsFlag : 0;
            word |= town ? townFlag : 0;
            word |= knoll || Share(map.hedge, column, row) > 0.09f ? miscBlock : 0;
            // A road, a bridge included, is open ground for everybody.
            if (!road) {
                word |= uint16_t(NoGoLevel(map, column, row, slope, woods, water) << noGoShift);
                word |= uint16_t(MoveCost(map, column, row, slope, woods, town, water) << moveCostShift);
            }
            At(cells, column, row) = word;
        }
    }
    return cells;
}
