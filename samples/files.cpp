// The two files of a sample map.
#include "mapdata/map_bytes.h"
#include "samples/model.h"

#include <fstream>
#include <span>

namespace {

typedef std::vector<uint8_t> Bytes;

// A little-endian number.
void Put(Bytes& out, int number, int byteCount)
{
    for (int i = 0; i < byteCount; i++) {
        out.push_back(uint8_t(number >> (8 * i)));
    }
}

bool WriteBytes(const std::string& path, const Bytes& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    file.close();
    return file.good();
}

// ---- palette ----

// Colours that will share one palette entry.
struct ColourBox {
    std::span<Colour> colours;
    int channel; // in which they differ most
    int middle;
    int spread;
};

ColourBox MakeBox(std::span<Colour> colours)
{
    ColourBox box = {colours, 0, 0, -1};
    for (int channel = 0; channel < 3; channel++) {
        auto valueOf = [&](Colour colour) { return int(colour[channel]); };
        int low = valueOf(*std::ranges::min_element(colours, {}, valueOf));
        int high = valueOf(*std::ranges::max_element(colours, {}, valueOf));
        if (high - low > box.spread) {
            box = {colours, channel, (low + high) / 2, high - low};
        }
    }
    return box;
}

// 256 colours that stand for those of the picture: the set of colours is halved where it is widest.
std::vector<Colour> ChoosePalette(std::vector<Colour> colours)
{
    std::vector<ColourBox> boxes = {MakeBox(colours)};
    while (boxes.size() < 256) {
        ColourBox& widest = *std::ranges::max_element(boxes, {}, &ColourBox::spread);
        std::span<Colour> all = widest.colours;
        auto upper = std::partition(all.begin(), all.end(),
                                    [&](Colour colour) { return colour[widest.channel] <= widest.middle; });
        widest = MakeBox({all.begin(), upper});
        boxes.push_back(MakeBox({upper, all.end()}));
    }
    std::vector<Colour> palette;
    for (const ColourBox& box : boxes) {
        Colour mean;
        for (int channel = 0; channel < 3; channel++) {
            size_t sum = box.colours.size() / 2;
            for (Colour colour : box.colours) {
                sum += colour[channel];
            }
            mean[channel] = uint8_t(sum / box.colours.size());
        }
        palette.push_back(mean);
    }
    return palette;
}

uint8_t NearestEntry(const std::vector<Colour>& palette, Colour colour)
{
    auto distance = [&](Colour entry) {
        int red = entry[0] - colour[0];
        int green = entry[1] - colour[1];
        int blue = entry[2] - colour[2];
        return 3 * red * red + 4 * green * green + 2 * blue * blue;
    };
    return uint8_t(std::ranges::min_element(palette, {}, distance) - palette.begin());
}

} // namespace

// ---- files ----

bool WriteArt(const std::string& path, const SamplePlan& plan, const Grid<Colour>& art)
{
    int bits = plan.art.bitsPerPixel;
    std::vector<Colour> palette = bits == 8 ? ChoosePalette(art.values) : std::vector<Colour>();
    int colourCount = int(palette.size());
    int stride = (art.width * bits / 8 + 3) / 4 * 4;
    int bitsSize = stride * art.height;
    int bitsOffset = 14 + 40 + 4 * colourCount;
    int pixelsPerMetre = 3937; // 100 to the inch
    Bytes out = {'B', 'M'};
    for (int number : {bitsOffset + bitsSize, 0, bitsOffset, 40, art.width, art.height, 1 | bits << 16, 0, bitsSize,
                       pixelsPerMetre, pixelsPerMetre, colourCount, 0}) {
        Put(out, number, 4);
    }
    for (Colour colour : palette) {
        Put(out, colour[2] | colour[1] << 8 | colour[0] << 16, 4);
    }
    for (int y = art.height - 1; y >= 0; y--) {
        for (int x = 0; x < art.width; x++) {
            Colour colour = At(art, x, y);
            if (bits == 8) {
                out.push_back(NearestEntry(palette, colour));
            } else {
                out.insert(out.end(), colour.rbegin(), colour.rend());
            }
        }
        out.resize(bitsOffset + stride * (art.height - y));
    }
    return WriteBytes(path, out);
}

bool WriteMapData(const std::string& path, const SamplePlan& plan, const Grid<TerrainCell>& cells)
{
    MapRecord record = plan.record;
    record.mapRect = {0, 0, int16_t(plan.art.height), int16_t(plan.art.width)};
    record.columnCount = int16_t(cells.width);
    record.rowCount = int16_t(cells.height);
    record.areaFlag1 = 1;
    record.areaRect1 = record.mapRect;
    record.markerWord = 1;
    Bytes out(maxMapHeaderBytes);
    out.resize(EncodeMapHeader(&record, out.data()));
    for (TerrainCell cell : cells.values) {
        Put(out, cell, 2);
    }
    return WriteBytes(path, out);
}
