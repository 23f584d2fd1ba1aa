// What the user waits for on the screen, each beside the plain memory work that it cannot do without.
#include "bench/bench.h"
#include "editing/overlay.h"
#include "editing/stroke.h"
#include "editing/whole_map.h"
#include "mapdata/map_record.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <vector>

namespace {

int ViewWidth()
{
    return view.viewRect.right - view.viewRect.left;
}

int ViewHeight()
{
    return view.viewRect.bottom - view.viewRect.top;
}

std::vector<unsigned>& WindowPixels()
{
    static std::vector<unsigned> pixels(static_cast<size_t>(benchScreenWidth) * benchScreenHeight);
    return pixels;
}

void CopyViewRows()
{
    const unsigned* source = LargePixels();
    unsigned* target = WindowPixels().data();
    for (int row = 0; row < ViewHeight(); row++) {
        memcpy(target + static_cast<size_t>(row) * benchScreenWidth, source + static_cast<size_t>(row) * largestSide,
               static_cast<size_t>(ViewWidth()) * sizeof(unsigned));
    }
    benchmark::ClobberMemory();
}

void FillCellSquare(unsigned* pixels, int stride, int column, int row, unsigned colour)
{
    for (int v = 0; v < cellSize; v++) {
        unsigned* line = pixels + static_cast<size_t>(row * cellSize + v) * static_cast<size_t>(stride) +
                         static_cast<size_t>(column) * cellSize;
        for (int h = 0; h < cellSize; h++) {
            line[h] = colour;
        }
    }
}

void FillSquares(int count)
{
    const int columns = ViewWidth() / cellSize;
    const int cells = columns * (ViewHeight() / cellSize);
    for (int i = 0; i < count; i++) {
        const int cell = static_cast<int>(static_cast<long>(i) * cells / count);
        FillCellSquare(WindowPixels().data(), benchScreenWidth, cell % columns, cell / columns, 0x00FF0000);
    }
    benchmark::ClobberMemory();
}

void LimitCopyView(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        CopyViewRows();
    }
}
BENCHMARK(LimitCopyView)->Unit(benchmark::kMicrosecond);

void RepaintView(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        InvalidateMapRect(nullptr);
        PaintMapWindow();
    }
}
BENCHMARK(RepaintView)->Unit(benchmark::kMicrosecond);

constexpr int markedCells = 17000; // most of a full screen's cells

void LimitCopyAndFills(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        CopyViewRows();
        FillSquares(markedCells);
    }
}
BENCHMARK(LimitCopyAndFills)->Unit(benchmark::kMicrosecond);

void FeaturesOverlay(benchmark::State& state)
{
    OpenLargestMap();
    MarkCells(markedCells);
    editing.featureTool = woodsTool;
    shell.featuresPaletteOpen = 1;
    for (auto _ : state) {
        InvalidateMapRect(nullptr);
        PaintMapWindow();
    }
    shell.featuresPaletteOpen = 0;
}
BENCHMARK(FeaturesOverlay)->Unit(benchmark::kMicrosecond);

void MoveCostOverlay(benchmark::State& state)
{
    OpenLargestMap();
    editing.moveCostTool = clearTool;
    editing.brushStyle = static_cast<int16_t>(state.range(0));
    for (int16_t* flag : {&editing.showClear, &editing.showRough1, &editing.showRough2, &editing.showRough3,
                          &editing.showRough4, &editing.showWater}) {
        *flag = 1;
    }
    shell.moveCostPaletteOpen = 1;
    for (auto _ : state) {
        InvalidateMapRect(nullptr);
        PaintMapWindow();
    }
    shell.moveCostPaletteOpen = 0;
}
BENCHMARK(MoveCostOverlay)->Arg(solidBrush)->Arg(dotBrush)->Arg(frameBrush)->Unit(benchmark::kMicrosecond);

void StrokeCell(benchmark::State& state)
{
    OpenLargestMap();
    editing.featureTool = woodsTool;
    shell.featuresPaletteOpen = 1;
    SetPort(shell.mapWindow);
    int column = 0;
    for (auto _ : state) {
        ChangeFeatureCell(column, 20, toggleCell);
        GdiFlush();
        column = (column + 1) % 100;
    }
    shell.featuresPaletteOpen = 0;
}
BENCHMARK(StrokeCell)->Unit(benchmark::kMicrosecond);

// The same pixels by a plain loop over the cells.
void WriteAnalysisCell(unsigned* pixels, int column, int row)
{
    constexpr unsigned colours[] = {0xDDDDDD, 0x999999, 0x666666, 0x555555, 0x000000, 0, 0xA6CAF0};
    const TerrainCell cell = currentMap.cellColumns[column][row];
    const unsigned ground = cell & cellRoad ? 0xFFFFFF : colours[(cell >> cellMoveCostShift) % 7];
    FillCellSquare(pixels, largestSide, column, row, ground);
    unsigned* square = pixels + (static_cast<size_t>(row) * largestSide + static_cast<size_t>(column)) * cellSize;
    for (int v = 3; (cell & cellWoods) && v < 7; v++) {
        for (int h = 3; h < 7; h++) {
            square[v * largestSide + h] = 0x66CC66;
        }
    }
    for (int i = 0; (cell & cellHiLow) && i < cellSize; i++) {
        constexpr int last = cellSize - 1;
        square[i] = square[last * largestSide + i] = 0x9A6834;
        square[i * largestSide] = square[i * largestSide + last] = 0x9A6834;
    }
}

void LimitAnalysisPixels(benchmark::State& state)
{
    OpenLargestMap();
    std::vector<unsigned> pixels(static_cast<size_t>(largestSide) * largestSide);
    for (auto _ : state) {
        for (int row = 0; row < maxCellCount; row++) {
            for (int column = 0; column < maxCellCount; column++) {
                WriteAnalysisCell(pixels.data(), column, row);
            }
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(LimitAnalysisPixels)->Unit(benchmark::kMillisecond);

void TerrainAnalysis(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        RenderTerrainAnalysis();
    }
}
BENCHMARK(TerrainAnalysis)->Unit(benchmark::kMillisecond);

// Each of the three operations, over all cells of the largest map.
void WholeMapOperation(benchmark::State& state)
{
    OpenLargestMap();
    void (*const operations[])() = {RaiseWoodsAndTownsToR2, ClearEveryFeature, ClearEveryMoveCost};
    for (auto _ : state) {
        operations[state.range(0)]();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(WholeMapOperation)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

} // namespace
