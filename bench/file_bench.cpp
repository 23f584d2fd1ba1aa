// Opening and saving the largest map, beside the plain reads and writes.
#include "bench/bench.h"
#include "mapdata/data_file.h"
#include "mapdata/map_commands.h"
#include "mapdata/rescue.h"
#include "toolbox/offscreen.h"
#include "toolbox/shell_door.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char artName[] = "Map900c.bmp";
constexpr char dataName[] = "Map900c.dat";
constexpr size_t imageBytes = static_cast<size_t>(largestSide) * largestSide * 4;

void ReadWholeFile(const char* name)
{
    const int file = open(name, O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || fstat(file, &status) != 0) {
        std::abort();
    }
    void* buffer = malloc(static_cast<size_t>(status.st_size));
    if (read(file, buffer, static_cast<size_t>(status.st_size)) != status.st_size) {
        std::abort();
    }
    benchmark::DoNotOptimize(buffer);
    close(file);
    free(buffer);
}

void LimitReadFilesAndWriteImage(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        ReadWholeFile(artName);
        ReadWholeFile(dataName);
        void* image = calloc(imageBytes, 1);
        memset(image, 0x55, imageBytes);
        benchmark::DoNotOptimize(image);
        benchmark::ClobberMemory();
        free(image);
    }
}
BENCHMARK(LimitReadFilesAndWriteImage)->Unit(benchmark::kMillisecond);

void OpenMapFiles(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        DisposeGWorld(view.mapImage);
        view.mapImage = nullptr;
        if (OpenMapDataFile() != 0 || ReadMapHeader(currentMap.openDataFile) != 0 || AllocateCellColumns() != 0 ||
            ReadMapCells(currentMap.openDataFile) != 0 ||
            NewGWorld(&view.mapImage, 32, &currentMap.record.mapRect, nullptr, nullptr, 0) != 0 ||
            LoadMapArt() != 0) {
            state.SkipWithError("the map could not be opened");
        }
        CloseFile(currentMap.openDataFile);
        currentMap.openDataFile = noFile;
    }
}
BENCHMARK(OpenMapFiles)->Unit(benchmark::kMillisecond);

void ReadDataFile(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        HFILE file = noFile;
        OpenFileSpecRead(&currentMap.dataFileSpec, &file);
        if (ReadMapHeader(file) != 0 || ReadMapCells(file) != 0) {
            state.SkipWithError("the data file could not be read");
        }
        CloseFile(file);
    }
}
BENCHMARK(ReadDataFile)->Unit(benchmark::kMicrosecond);

// The same bytes with one write and the syncs of file and folder that a save owes its user.
void LimitWriteAndSync(benchmark::State& state)
{
    OpenLargestMap();
    const size_t bytes = 57 + 2 * static_cast<size_t>(maxCellCount) * maxCellCount;
    void* buffer = calloc(bytes, 1);
    for (auto _ : state) {
        const int file = open("limit.dat", O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (write(file, buffer, bytes) != static_cast<ssize_t>(bytes)) {
            std::abort();
        }
        fsync(file);
        close(file);
        const int folder = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        fsync(folder);
        close(folder);
    }
    free(buffer);
}
BENCHMARK(LimitWriteAndSync)->Unit(benchmark::kMicrosecond)->UseRealTime();

void WriteDataFile(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        HFILE file = noFile;
        if (CreateFileSpec(&currentMap.dataFileSpec, &file) != 0 || WriteMapData(file) != 0) {
            state.SkipWithError("the data file could not be written");
        }
        CloseFile(file);
    }
}
BENCHMARK(WriteDataFile)->Unit(benchmark::kMicrosecond)->UseRealTime();

// The same bytes written beside a file and put in its place, without syncs: what a rescue copy can cost at least.
void LimitWriteAndRename(benchmark::State& state)
{
    OpenLargestMap();
    const size_t bytes = 57 + 2 * static_cast<size_t>(maxCellCount) * maxCellCount;
    void* buffer = calloc(bytes, 1);
    for (auto _ : state) {
        const int file = open("limit.new", O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (write(file, buffer, bytes) != static_cast<ssize_t>(bytes)) {
            std::abort();
        }
        close(file);
        rename("limit.new", "limit.dat");
    }
    free(buffer);
}
BENCHMARK(LimitWriteAndRename)->Unit(benchmark::kMicrosecond)->UseRealTime();

void WriteRescueCopy(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        ++currentMap.cellColumns[0][0]; // nothing is written for a map that is as it was
        NoteMapChange();
        KeepRescueCopy();
    }
    if (!rescue.copyKept) {
        state.SkipWithError("there is no copy");
    }
    DropRescueCopy();
    rescue.workDropped = 0;
}
BENCHMARK(WriteRescueCopy)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
