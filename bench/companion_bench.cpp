// kestrel-map: a picture of the largest map beside libpng alone, a campaign's check, and the start.
#include "bench/bench.h"
#include "companion/command_line.h"
#include "companion/picture.h"
#include "editing/editing.h"
#include "toolbox/shell_door.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <png.h>

namespace {

constexpr char dataName[] = "Map900c.dat";

// The companion draws with the editor's own state, which the other benchmarks still need.
template <typename Work>
void WithStateOfItsOwn(Work work)
{
    const CurrentMap keptMap = currentMap;
    const ViewState keptView = view;
    const EditingState keptEditing = editing;
    const ShellState keptShell = shell;
    currentMap = {};
    view = {};
    shell = {};
    work();
    currentMap = keptMap;
    view = keptView;
    editing = keptEditing;
    shell = keptShell;
}

void LimitPngOfTheLargestMap(benchmark::State& state)
{
    OpenLargestMap();
    Report report;
    MapData map;
    Picture picture;
    WithStateOfItsOwn([&] {
        PictureOptions options;
        LoadMap(&report, dataName, true, &map);
        options.area = WholeMap(map);
        DrawMap(&report, map, ArtPath(dataName), options, &picture);
    });
    std::vector<uint8_t> rows;
    for (int i = 0; i < largestSide * largestSide; i++) {
        const uint32_t pixel = picture.pixels[static_cast<size_t>(i)];
        for (const int shift : {16, 8, 0}) {
            rows.push_back(static_cast<uint8_t>(pixel >> shift));
        }
    }
    for (auto _ : state) {
        png_image image = {};
        image.version = PNG_IMAGE_VERSION;
        image.width = image.height = static_cast<png_uint_32>(largestSide);
        image.format = PNG_FORMAT_RGB;
        png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
        std::vector<uint8_t> bytes(size);
        if (png_image_write_to_memory(&image, bytes.data(), &size, 0, rows.data(), 0, nullptr) == 0) {
            state.SkipWithError("libpng could not write");
        }
    }
}
BENCHMARK(LimitPngOfTheLargestMap)->Unit(benchmark::kMillisecond)->Iterations(2);

void RenderTheLargestMap(benchmark::State& state)
{
    OpenLargestMap();
    for (auto _ : state) {
        WithStateOfItsOwn([&] {
            Report report;
            if (RunCommandLine({"render", dataName, "-o", "picture.png"}, &report) != statusFine) {
                state.SkipWithError(report.errors.c_str());
            }
        });
    }
}
BENCHMARK(RenderTheLargestMap)->Unit(benchmark::kMillisecond)->Iterations(2);

void MakeCampaign(int mapCount)
{
    MapData map;
    map.record.columnCount = 120;
    map.record.rowCount = 90;
    map.record.mapRect = MakeRect(0, 0, 1200, 900);
    map.record.versionNumber = 100;
    MakeCells(&map);
    uint8_t art[54] = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0, 0xB0, 0x04, 0, 0, 0x84, 0x03};
    art[26] = 1;
    art[28] = 24;
    for (int i = 0; i < mapCount; i++) {
        const std::string folder = "campaign/" + std::to_string(i / 100);
        const std::string path = folder + "/Map" + std::to_string(100 + i % 100) + "c.";
        map.record.mapID = static_cast<int16_t>(100 + i % 100);
        std::filesystem::create_directories(folder);
        std::ofstream(path + "dat", std::ios::binary) << EncodeMap(map);
        std::ofstream(path + "bmp", std::ios::binary).write(reinterpret_cast<const char*>(art), sizeof art);
        std::filesystem::resize_file(path + "bmp", 54 + 3600 * 900); // its pixels are a hole in the file
    }
}

void CheckTwoThousandMaps(benchmark::State& state)
{
    constexpr int mapCount = 2000;
    OpenLargestMap();
    MakeCampaign(mapCount);
    for (auto _ : state) {
        Report report;
        if (RunCommandLine({"check", "campaign"}, &report) != statusFine) {
            state.SkipWithError((report.errors + report.out).substr(0, 200).c_str());
        }
    }
    state.SetItemsProcessed(state.iterations() * mapCount);
    std::filesystem::remove_all("campaign");
}
BENCHMARK(CheckTwoThousandMaps)->Unit(benchmark::kMillisecond)->UseRealTime();

void StartTheCompanion(benchmark::State& state)
{
    for (auto _ : state) {
        if (std::system("\"" KESTREL_COMPANION "\" --version >/dev/null") != 0) {
            state.SkipWithError("it did not start");
        }
    }
}
BENCHMARK(StartTheCompanion)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
