#include "fuzz/targets.h"
#include "mapdata/map_bytes.h"

#include <algorithm>
#include <vector>

namespace {

constexpr TerrainCell canary = 0xC5A3;

// A grid whose columns lie in one block, with words around each that nobody may touch.
struct GuardedGrid {
    int columnCount;
    int rowCount;
    std::vector<TerrainCell> words;
    std::vector<TerrainCell*> columns;
};

GuardedGrid MakeGrid(const MapRecord& record)
{
    GuardedGrid grid = {record.columnCount, record.rowCount, {}, {}};
    const size_t stride = static_cast<size_t>(grid.rowCount) + 1;
    grid.words.assign(stride * static_cast<size_t>(grid.columnCount) + 1, canary);
    for (size_t x = 0; x < static_cast<size_t>(grid.columnCount); x++) {
        grid.columns.push_back(grid.words.data() + 1 + x * stride);
        std::fill_n(grid.columns[x], grid.rowCount, TerrainCell{0});
    }
    return grid;
}

bool GuardsStand(const GuardedGrid& grid)
{
    const size_t stride = static_cast<size_t>(grid.rowCount) + 1;
    for (size_t i = 0; i < grid.words.size(); i += stride) {
        if (grid.words[i] != canary) {
            return false;
        }
    }
    return true;
}

// Every kind of block that a reader may use: the rows one by one, then by sevens.
void DecodeGrid(const uint8_t* bytes, size_t size, int rowsPerBlock, GuardedGrid* grid)
{
    const size_t rowBytes = 2 * static_cast<size_t>(grid->columnCount);
    for (int row = 0; row < grid->rowCount; row += rowsPerBlock) {
        const int rows = std::min(rowsPerBlock, grid->rowCount - row);
        const size_t offset = std::min(size, rowBytes * static_cast<size_t>(row));
        const size_t count = std::min(size - offset, rowBytes * static_cast<size_t>(rows));
        DecodeCellRows(bytes + offset, count, grid->columns.data(), grid->columnCount, row, rows);
    }
}

} // namespace

std::string FuzzMapData(const uint8_t* bytes, size_t size)
{
    const size_t headSize = std::min(size, maxMapHeaderBytes);
    MapRecord record;
    size_t taken = 0;
    const int faults = DecodeMapHeader(bytes, headSize, &record, &taken);
    if (taken > headSize) {
        return "the header took more bytes than there are";
    }
    if (faults != 0) {
        return {};
    }
    const bool countsPossible = record.columnCount >= 1 && record.columnCount <= maxCellCount &&
                                record.rowCount >= 1 && record.rowCount <= maxCellCount;
    const int width = record.mapRect.right - record.mapRect.left;
    const int height = record.mapRect.bottom - record.mapRect.top;
    if (!countsPossible || width < 1 || width > maxMapSide || height < 1 || height > maxMapSide) {
        return "a header passed that no map can have";
    }
    GuardedGrid grid = MakeGrid(record);
    DecodeGrid(bytes + taken, size - taken, 1, &grid);

    std::vector<uint8_t> stored(maxMapHeaderBytes);
    const size_t headerBytes = EncodeMapHeader(&record, stored.data());
    stored.resize(headerBytes + 2 * static_cast<size_t>(grid.columnCount) * static_cast<size_t>(grid.rowCount));
    EncodeCellRows(grid.columns.data(), grid.columnCount, 0, grid.rowCount, stored.data() + headerBytes);

    MapRecord again;
    size_t takenAgain = 0;
    if (DecodeMapHeader(stored.data(), std::min(stored.size(), maxMapHeaderBytes), &again, &takenAgain) != 0) {
        return "what was stored cannot be read";
    }
    if (takenAgain != headerBytes) {
        return "the cells are sought in the wrong place";
    }
    GuardedGrid gridAgain = MakeGrid(again);
    DecodeGrid(stored.data() + takenAgain, stored.size() - takenAgain, 7, &gridAgain);
    if (!GuardsStand(grid) || !GuardsStand(gridAgain)) {
        return "a word outside the grid was written";
    }
    std::vector<uint8_t> storedAgain(maxMapHeaderBytes);
    storedAgain.resize(EncodeMapHeader(&again, storedAgain.data()));
    if (!std::equal(storedAgain.begin(), storedAgain.end(), stored.begin()) || grid.words != gridAgain.words) {
        return "what was stored reads back as something else";
    }
    // A whole file is stored as it was, but for the marker, which is 1 ever after.
    if (size >= stored.size() && taken == headerBytes) {
        std::vector<uint8_t> expected(bytes, bytes + stored.size());
        expected[48] = 1;
        expected[49] = 0;
        if (stored != expected) {
            return "a whole file is not stored as it was read";
        }
    }
    return {};
}
