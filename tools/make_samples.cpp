// make_samples OUTPUT_FOLDER: writes the sample maps, each a piece of invented country, as an art file and a data
// file. The same program always writes the same files.
#include "tools/sample_model.h"

#include <cstdio>
#include <string>

static const SamplePlan plans[] = {
    {.mapID = 101,
     .width = 455,
     .height = 225,
     .bitsPerPixel = 8,
     .seed = 13,
     .margin = 240,
     .outlet = {0.0f, 0.6f},
     .inlet = {1.0f, 0.4f},
     .inletArea = 180,
     .mountainStrength = 75,
     .lowlandStrength = 12,
     .countryWavelength = 420,
     .baseHeight = 140,
     .contourInterval = 10,
     .lakeCount = 1,
     .tarnCount = 0,
     .townCount = 1,
     .villageCount = 3,
     .trackCount = 6,
     .exitCount = 6,
     .utmEasting = 32,
     .utmNorthing = 57,
     .text = ""},
    {.mapID = 102,
     .width = 1200,
     .height = 900,
     .bitsPerPixel = 24,
     .seed = 36,
     .margin = 240,
     .outlet = {0.45f, 1.0f},
     .inlet = {0.6f, 0.0f},
     .inletArea = 320,
     .mountainStrength = 85,
     .lowlandStrength = 11,
     .countryWavelength = 1000,
     .baseHeight = 210,
     .contourInterval = 20,
     .lakeCount = 2,
     .tarnCount = 2,
     .townCount = 3,
     .villageCount = 9,
     .trackCount = 22,
     .exitCount = 5,
     .utmEasting = 64,
     .utmNorthing = 18,
     .text = "Sample map: hill country with a river crossing"},
    {.mapID = 103,
     .width = 3100,
     .height = 3100,
     .bitsPerPixel = 24,
     .seed = 7,
     .margin = 200,
     .outlet = {0.35f, 1.0f},
     .inlet = {0.8f, 0.0f},
     .inletArea = 600,
     .mountainStrength = 110,
     .lowlandStrength = 10,
     .countryWavelength = 1300,
     .baseHeight = 180,
     .contourInterval = 20,
     .lakeCount = 6,
     .tarnCount = 14,
     .townCount = 9,
     .villageCount = 46,
     .trackCount = 110,
     .exitCount = 9,
     .utmEasting = 87,
     .utmNorthing = 41,
     .text = "Sample map: the largest size, 31 by 31 kilometres"},
};

static bool MakeSample(const SamplePlan& plan, const std::string& folder)
{
    SampleMap map;
    map.plan = &plan;
    {
        Land land = ShapeLand(plan);
        FillHeights(map, land);
        MeasureSlopes(map);
        PlaceRivers(map, land);
    }
    PlaceLakes(map);
    MeasureSlopes(map);
    DrawWaterMask(map);
    PlaceTowns(map);
    PlaceRoads(map);
    PlaceBuildings(map);
    PlaceWoods(map);
    PlaceMarshes(map);
    PlaceHedges(map);
    PlaceCliffs(map);

    Grid<Colour> art = MakeGrid<Colour>(plan.width, plan.height, {});
    DrawGround(map, art);
    DrawSymbols(map, art);
    std::string base = folder + "/Map" + std::to_string(plan.mapID) + "c";
    return WriteBitmap((base + ".bmp").c_str(), art, plan.bitsPerPixel) &&
           WriteMapData((base + ".dat").c_str(), plan, DeriveCells(map));
}

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: make_samples OUTPUT_FOLDER\n");
        return 2;
    }
    for (const SamplePlan& plan : plans) {
        if (!MakeSample(plan, arguments[1])) {
            std::fprintf(stderr, "make_samples: could not write map %d to %s\n", plan.mapID, arguments[1]);
            return 1;
        }
    }
    return 0;
}
