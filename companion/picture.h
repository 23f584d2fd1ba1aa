// Pictures: the editor's map image, drawn without a window by the editor's own functions, and PNG files.
#pragma once

#include "companion/map_data.h"

#include <memory>

struct Picture {
    int width = 0;
    int height = 0;
    std::unique_ptr<uint32_t[]> pixels; // 0x00RRGGBB, row by row from the top
};

enum MapView { artView, featuresView, costsView, analysisView };

struct PictureOptions {
    MapView view = artView;
    int gridMode = 0;                           // 0 no grid, 1 lines, 2 lines with kilometre numbers
    int style = 0;                              // BrushStyle of the marks
    const TerrainRow* feature = nullptr;        // whose cells are marked; null for every NO-GO level
    bool costShown[8] = {};                     // by the place of the cost in its group
    Rect area = {};                             // map pixels; what a window that shows this part would show
    const std::vector<Point>* framed = nullptr; // cells that get a red frame
};

// Room for the pixels, whatever they hold.
void SizePicture(Picture* picture, int width, int height);

Rect WholeMap(const MapData& map);
// The path of the art that belongs to a data file; empty when there is none.
std::string ArtPath(const std::string& dataPath);
// Draws the area of a map. artPath may be empty where the view is the analysis. False after the failure was told.
bool DrawMap(Report* report, const MapData& map, const std::string& artPath, const PictureOptions& options,
             Picture* picture);

// times > 0: every pixel becomes a square of that many; < 0: squares of that many become one pixel, their average.
Picture Scaled(const Picture& picture, int times);

bool EncodePng(const Picture& picture, std::string* bytes, std::string* fault);

// How bright each pixel of a PNG file is on black, 0 to 255; transparent ones are dark. Only a picture of one of the
// two sizes is taken apart.
struct Mask {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> levels;
};
struct MaskSize {
    int width;
    int height;
};
bool DecodeMask(const std::string& bytes, MaskSize first, MaskSize second, Mask* mask, std::string* fault);
