// The two files of a sample map.
#include "tools/sample_model.h"

#include <cstdio>
#include <cstring>

struct Bytes {
    std::vector<uint8_t> values;
};

static void Put16(Bytes& out, int value)
{
    out.values.push_back(uint8_t(value & 0xFF));
    out.values.push_back(uint8_t((value >> 8) & 0xFF));
}

static void Put32(Bytes& out, uint32_t value)
{
    Put16(out, int(value & 0xFFFF));
    Put16(out, int(value >> 16));
}

static bool WriteBytes(const char* path, const Bytes& bytes)
{
    std::FILE* file = std::fopen(path, "wb");
    if (file == nullptr) {
        return false;
    }
    bool written = std::fwrite(bytes.values.data(), 1, bytes.values.size(), file) == bytes.values.size();
    return std::fclose(file) == 0 && written;
}

// ---- palette ----

static int Channel(Colour colour, int which)
{
    return which == 0 ? colour.red : which == 1 ? colour.green : colour.blue;
}

// A run of the sorted colours that will share one palette entry.
struct ColourBox {
    size_t begin;
    size_t end;
    int widest; // the channel in which they differ most
    int spread;
};

static ColourBox MeasureBox(const std::vector<Colour>& colours, size_t begin, size_t end)
{
    ColourBox box = {begin, end, 0, -1};
    for (int which = 0; which < 3; which++) {
        int low = 255;
        int high = 0;
        for (size_t i = begin; i < end; i++) {
            low = std::min(low, Channel(colours[i], which));
            high = std::max(high, Channel(colours[i], which));
        }
        if (high - low > box.spread) {
            box.spread = high - low;
            box.widest = which;
        }
    }
    return box;
}

// At most 256 colours that stand for those of the picture: the set of colours is halved where it is widest.
static std::vector<Colour> ChoosePalette(const Grid<Colour>& art)
{
    std::vector<Colour> colours = art.values;
    std::vector<ColourBox> boxes = {MeasureBox(colours, 0, colours.size())};
    while (boxes.size() < 256) {
        size_t widest = 0;
        for (size_t i = 1; i < boxes.size(); i++) {
            if (boxes[i].spread > boxes[widest].spread) {
                widest = i;
            }
        }
        ColourBox box = boxes[widest];
        if (box.spread <= 0) {
            break;
        }
        // By value, and for the same value by the rest, so that the order does not depend on the sorting.
        std::sort(colours.begin() + std::ptrdiff_t(box.begin), colours.begin() + std::ptrdiff_t(box.end),
                  [&](Colour a, Colour b) {
                      int first = Channel(a, box.widest);
                      int second = Channel(b, box.widest);
                      int restA = a.red * 65536 + a.green * 256 + a.blue;
                      int restB = b.red * 65536 + b.green * 256 + b.blue;
                      return first != second ? first < second : restA < restB;
                  });
        int middle = (Channel(colours[box.begin], box.widest) + Channel(colours[box.end - 1], box.widest)) / 2;
        size_t cut = box.begin + 1;
        while (cut + 1 < box.end && Channel(colours[cut], box.widest) <= middle) {
            cut++;
        }
        boxes[widest] = MeasureBox(colours, box.begin, cut);
        boxes.push_back(MeasureBox(colours, cut, box.end));
    }
    std::vector<Colour> palette;
    for (const ColourBox& box : boxes) {
        size_t sums[3] = {};
        for (size_t i = box.begin; i < box.end; i++) {
            for (int which = 0; which < 3; which++) {
                sums[which] += size_t(Channel(colours[i], which));
            }
        }
        size_t count = box.end - box.begin;
        palette.push_back({uint8_t((sums[0] + count / 2) / count), uint8_t((sums[1] + count / 2) / count),
                           uint8_t((sums[2] + count / 2) / count)});
    }
    return palette;
}

static uint8_t NearestEntry(const std::vector<Colour>& palette, Colour colour)
{
    int best = 0;
    int least = 1 << 30;
    for (size_t i = 0; i < palette.size(); i++) {
        int red = palette[i].red - colour.red;
        int green = palette[i].green - colour.green;
        int blue = palette[i].blue - colour.blue;
        int distance = 3 * red * red + 4 * green * green + 2 * blue * blue;
        if (distance < least) {
            least = distance;
            best = int(i);
        }
    }
    return uint8_t(best);
}

// ---- files ----

bool WriteBitmap(const char* path, const Grid<Colour>& art, int bitsPerPixel)
{
    std::vector<Colour> palette;
    if (bitsPerPixel == 8) {
        palette = ChoosePalette(art);
    }
    size_t stride = (size_t(art.width) * size_t(bitsPerPixel / 8) + 3) / 4 * 4;
    uint32_t bitsOffset = uint32_t(14 + 40 + 4 * palette.size());
    uint32_t bitsSize = uint32_t(stride * size_t(art.height));
    Bytes out;
    out.values.reserve(bitsOffset + bitsSize);
    Put16(out, 'B' | 'M' << 8);
    Put32(out, bitsOffset + bitsSize);
    Put32(out, 0);
    Put32(out, bitsOffset);
    Put32(out, 40);
    Put32(out, uint32_t(art.width));
    Put32(out, uint32_t(art.height));
    Put16(out, 1);
    Put16(out, bitsPerPixel);
    Put32(out, 0);
    Put32(out, bitsSize);
    Put32(out, 3937); // pixels to the metre, 100 to the inch
    Put32(out, 3937);
    Put32(out, uint32_t(palette.size()));
    Put32(out, 0);
    for (Colour colour : palette) {
        Put32(out, uint32_t(colour.blue | colour.green << 8 | colour.red << 16));
    }
    for (int y = art.height - 1; y >= 0; y--) {
        size_t rowBegin = out.values.size();
        for (int x = 0; x < art.width; x++) {
            Colour colour = At(art, x, y);
            if (bitsPerPixel == 8) {
                out.values.push_back(NearestEntry(palette, colour));
            } else {
                out.values.push_back(colour.blue);
                out.values.push_back(colour.green);
                out.values.push_back(colour.red);
            }
        }
        out.values.resize(rowBegin + stride, 0);
    }
    return WriteBytes(path, out);
}

bool WriteMapData(const char* path, const SamplePlan& plan, const Grid<uint16_t>& cells)
{
    Bytes out;
    auto putRect = [&](int width, int height) { // left, top, right, bottom
        Put16(out, 0);
        Put16(out, 0);
        Put16(out, width);
        Put16(out, height);
    };
    Put16(out, plan.mapID);
    Put16(out, 0);
    Put16(out, 0);
    Put16(out, cells.width);
    Put16(out, cells.height);
    putRect(plan.width, plan.height);
    Put16(out, 1);
    putRect(plan.width, plan.height);
    for (int area = 0; area < 2; area++) {
        Put16(out, 0);
        putRect(0, 0);
    }
    Put16(out, 1);
    Put16(out, plan.utmEasting);
    Put16(out, plan.utmNorthing);
    Put16(out, 100);
    for (size_t i = 0; i <= std::strlen(plan.text); i++) {
        out.values.push_back(uint8_t(plan.text[i]));
    }
    for (uint16_t cell : cells.values) {
        Put16(out, cell);
    }
    return WriteBytes(path, out);
}
