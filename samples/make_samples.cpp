// make_samples OUTPUT_FOLDER: writes the sample maps, each a piece of invented country, as an art file and a data
// file. The same program always writes the same files.
#include "samples/model.h"

#include <cstdio>
#include <string>

namespace {

const SamplePlan plans[] = {
    {.record = {.mapID = 101, .utmEasting = 32, .utmNorthing = 57, .versionNumber = 100},
     .seed = 13,
     .art = {.width = 455, .height = 225, .bitsPerPixel = 8, .contourInterval = 10},
     .land = {.margin = 240, .baseHeight = 140, .mountains = 75, .lowlands = 12, .wavelength = 420},
     .river = {.inlet = {1.0f, 0.4f}, .outlet = {0.0f, 0.6f}, .areaAtInlet = 180},
     .counts = {.lakes = 1, .tarns = 0, .towns = 1, .villages = 3, .tracks = 6, .exits = 6}},
    {.record = {.mapID = 102,
                .utmEasting = 64,
                .utmNorthing = 18,
                .versionNumber = 100,
                .mapText = "Sample map: hill country with a river crossing"},
     .seed = 36,
     .art = {.width = 1200, .height = 900, .bitsPerPixel = 24, .contourInterval = 20},
     .land = {.margin = 240, .baseHeight = 210, .mountains = 85, .lowlands = 11, .wavelength = 1000},
     .river = {.inlet = {0.6f, 0.0f}, .outlet = {0.45f, 1.0f}, .areaAtInlet = 320},
     .counts = {.lakes = 2, .tarns = 2, .towns = 3, .villages = 9, .tracks = 22, .exits = 5}},
    {.record = {.mapID = 103,
                .utmEasting = 87,
                .utmNorthing = 41,
                .versionNumber = 100,
                .mapText = "Sample map: the largest size, 31 by 31 kilometres"},
     .seed = 7,
     .art = {.width = 3100, .height = 3100, .bitsPerPixel = 24, .contourInterval = 20},
     .land = {.margin = 200, .baseHeight = 180, .mountains = 110, .lowlands = 10, .wavelength = 1300},
     .river = {.inlet = {0.8f, 0.0f}, .outlet = {0.35f, 1.0f}, .areaAtInlet = 600},
     .counts = {.lakes = 6, .tarns = 14, .towns = 9, .villages = 46, .tracks = 110, .exits = 9}},
};

constexpr void (*steps[])(SampleMap&) = {ShapeLand,      FillHeights, MeasureHeights, PlaceRivers,    PlaceLakes,
                                         MeasureHeights, PlaceTowns,  PlaceRoads,     PlaceBuildings, PlaceWoods,
                                         PlaceMarshes,   PlaceHedges, PlaceCliffs};

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: make_samples OUTPUT_FOLDER\n");
        return 2;
    }
    for (const SamplePlan& plan : plans) {
        SampleMap map;
        map.plan = &plan;
        for (auto* step : steps) {
            step(map);
        }
        std::string base = arguments[1] + ("/Map" + std::to_string(plan.record.mapID)) + "c";
        if (!WriteArt(base + ".bmp", plan, DrawArt(map)) || !WriteMapData(base + ".dat", plan, DeriveCells(map))) {
            std::fprintf(stderr, "make_samples: could not write %s\n", base.c_str());
            return 1;
        }
    }
    return 0;
}
