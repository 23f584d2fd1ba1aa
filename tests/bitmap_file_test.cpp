// Bitmap files: every kind that is read, and what damaged ones do.
#include "fuzz/targets.h"
#include "platform/gdi/surface.h"
#include "platform/kernel/system_calls.h"
#include "tests/map_files.h"

#include <functional>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Pixels = std::vector<uint32_t>; // rows top-down

void Put(Bytes* bytes, uint64_t value, int width)
{
    for (int index = 0; index < width; ++index) {
        bytes->push_back(static_cast<uint8_t>(value >> 8 * index));
    }
}

struct FileShape {
    int headerSize = 40;
    int width = 3;
    int height = 2;
    int bits = 24;
    uint32_t compression = BI_RGB;
    uint32_t coloursUsed = 0;
    std::vector<uint32_t> masks = {};   // behind or inside the header, as its size says
    std::vector<uint32_t> colours = {}; // 0x00RRGGBB
    Bytes pixels = {};
    int pixelOffset = -1; // -1: the right one
    int planes = 1;
};

Bytes MakeFile(const FileShape& shape)
{
    Bytes info;
    Put(&info, static_cast<uint32_t>(shape.headerSize), 4);
    const int sideWidth = shape.headerSize == 12 ? 2 : 4;
    Put(&info, static_cast<uint32_t>(shape.width), sideWidth);
    Put(&info, static_cast<uint32_t>(shape.height), sideWidth);
    Put(&info, static_cast<uint32_t>(shape.planes), 2);
    Put(&info, static_cast<uint32_t>(shape.bits), 2);
    if (shape.headerSize != 12) {
        Put(&info, shape.compression, 4);
        Put(&info, 0, 4);
        Put(&info, 0, 8);
        Put(&info, shape.coloursUsed, 4);
        Put(&info, 0, 4);
        info.resize(std::min<size_t>(info.size(), static_cast<size_t>(shape.headerSize)));
    }
    for (uint32_t mask : shape.masks) {
        Put(&info, mask, 4);
    }
    info.resize(std::max<size_t>(info.size(), static_cast<size_t>(shape.headerSize)));
    for (uint32_t colour : shape.colours) {
        Put(&info, colour, shape.headerSize == 12 ? 3 : 4);
    }
    Bytes file = {'B', 'M'};
    Put(&file, 14 + info.size() + shape.pixels.size(), 4);
    Put(&file, 0, 4);
    Put(&file, shape.pixelOffset < 0 ? 14 + info.size() : static_cast<uint32_t>(shape.pixelOffset), 4);
    file.insert(file.end(), info.begin(), info.end());
    file.insert(file.end(), shape.pixels.begin(), shape.pixels.end());
    return file;
}

// The pixels of a bitmap as a blit shows them; deletes it.
Pixels Shown(HBITMAP bitmap)
{
    if (!bitmap) {
        return {};
    }
    BITMAP record = {};
    GetObjectA(bitmap, sizeof record, &record);
    Pixels pixels(static_cast<size_t>(record.bmWidth) * static_cast<size_t>(record.bmHeight), 0xBAD00BAD);
    Surface surface = {pixels.data(), record.bmWidth, record.bmHeight, record.bmWidth, {}};
    HDC target = CreateSurfaceDC(&surface);
    HDC memory = CreateCompatibleDC(target);
    HGDIOBJ displaced = SelectObject(memory, bitmap);
    BitBlt(target, 0, 0, record.bmWidth, record.bmHeight, memory, 0, 0, SRCCOPY);
    SelectObject(memory, displaced);
    DeleteDC(memory);
    DeleteSurfaceDC(target);
    EXPECT_TRUE(DeleteObject(bitmap));
    return pixels;
}

Pixels Load(const Bytes& file)
{
    // A buffer of exactly that size, so that reading past it is seen.
    Bytes exact(file);
    exact.shrink_to_fit();
    return Shown(BitmapFromFileBytes(exact.data(), exact.size()));
}

Pixels Load(const FileShape& shape)
{
    return Load(MakeFile(shape));
}

const FileShape trueColour = {
    .pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 11, 12, 13, 14, 15, 16, 17, 18, 19, 0, 0, 0}};
const Pixels trueColourShown = {0x0D0C0B, 0x100F0E, 0x131211, 0x030201, 0x060504, 0x090807};
const std::vector<uint32_t> fourColours = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};

TEST(BitmapFile, TrueColourInEveryHeader)
{
    for (int headerSize : {12, 16, 20, 40, 52, 56, 64, 108, 124}) {
        FileShape shape = trueColour;
        shape.headerSize = headerSize;
        EXPECT_EQ(Load(shape), trueColourShown) << headerSize;
    }
    FileShape topDown = trueColour;
    topDown.height = -2;
    EXPECT_EQ(Load(topDown), (Pixels{0x030201, 0x060504, 0x090807, 0x0D0C0B, 0x100F0E, 0x131211}));
    FileShape withoutOffset = trueColour;
    withoutOffset.pixelOffset = 0;
    EXPECT_EQ(Load(withoutOffset), trueColourShown);
    // A gap before the pixels, and a colour table that only advises.
    FileShape gap = trueColour;
    gap.coloursUsed = 2;
    gap.colours = {1, 2, 3};
    EXPECT_EQ(Load(gap), trueColourShown);
}

TEST(BitmapFile, IndicesOfEveryDepthTakeTheirColours)
{
    const Pixels shown = {0x0000FF, 0x00FF00, 0xFF0000, 0xFF0000, 0x000000, 0x00FF00};
    for (int headerSize : {12, 40, 64, 124}) {
        FileShape eight = {.headerSize = headerSize, .bits = 8, .pixels = {1, 0, 2, 0, 3, 2, 1, 0}};
        eight.colours = fourColours;
        eight.colours.resize(256, 0x999999);
        EXPECT_EQ(Load(eight), shown) << headerSize;
        FileShape four = {.headerSize = headerSize, .bits = 4, .pixels = {0x10, 0x20, 0, 0, 0x32, 0x10, 0, 0}};
        four.colours = fourColours;
        four.colours.resize(16, 0x999999);
        EXPECT_EQ(Load(four), shown) << headerSize;
        FileShape one = {.headerSize = headerSize, .width = 9, .height = 1, .bits = 1, .pixels = {0xA5, 0x80, 0, 0}};
        one.colours = {0x112233, 0x445566};
        const uint32_t a = 0x445566, b = 0x112233;
        EXPECT_EQ(Load(one), (Pixels{a, b, a, b, b, a, b, a, a})) << headerSize;
    }
    // Fewer colours than indices: what has no entry is black.
    FileShape few = {
        .bits = 8, .coloursUsed = 2, .colours = {0xFFFFFF, 0xFF0000}, .pixels = {0, 1, 2, 0, 255, 1, 0, 0}};
    EXPECT_EQ(Load(few), (Pixels{0, 0xFF0000, 0xFFFFFF, 0xFFFFFF, 0xFF0000, 0}));
    few.coloursUsed = 0; // the pixels begin where the full table would still go on
    EXPECT_EQ(Load(few), (Pixels{0, 0xFF0000, 0xFFFFFF, 0xFFFFFF, 0xFF0000, 0}));
    few.coloursUsed = 0xFFFFFFFF;
    EXPECT_EQ(Load(few).size(), 6u);
}

TEST(BitmapFile, MasksPlaceTheColours)
{
    FileShape plain16 = {.width = 2, .height = 1, .bits = 16, .pixels = {0x1F, 0x7C, 0xE3, 0x83}};
    EXPECT_EQ(Load(plain16), (Pixels{0xFF00FF, 0x00FF18}));
    FileShape plain32 = {.width = 1, .height = 1, .bits = 32, .pixels = {1, 2, 3, 0xAA}};
    EXPECT_EQ(Load(plain32), (Pixels{0x030201}));

    for (int headerSize : {40, 52, 56, 108, 124}) {
        FileShape masked = {
            .headerSize = headerSize, .width = 2, .height = 1, .bits = 16, .compression = BI_BITFIELDS};
        masked.masks = {0xF800, 0x07E0, 0x001F};
        masked.pixels = {0x00, 0xF8, 0xE4, 0x07};
        EXPECT_EQ(Load(masked), (Pixels{0xFF0000, 0x00FF21})) << headerSize;
        masked.bits = 32;
        masked.masks = {0x000003FF, 0x000FFC00, 0x3FF00000};
        masked.pixels = {0xFF, 0x03, 0, 0, 0, 0, 0xF0, 0x3F};
        EXPECT_EQ(Load(masked), (Pixels{0xFF0000, 0x0000FF})) << headerSize;
    }
    FileShape alpha = {.width = 1, .height = 1, .bits = 32, .compression = 6};
    alpha.masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000};
    alpha.pixels = {1, 2, 3, 0x80};
    EXPECT_EQ(Load(alpha), (Pixels{0x010203}));
    alpha.masks = {0, 0xFFFFFFFF, 0xF00F, 0};
    EXPECT_EQ(Load(alpha).size(), 1u);
    FileShape wrong = trueColour;
    wrong.compression = BI_BITFIELDS;
    EXPECT_EQ(Load(wrong), Pixels{});
    wrong = alpha;
    wrong.headerSize = 64; // other headers mean something else by this number
    wrong.compression = BI_BITFIELDS;
    EXPECT_EQ(Load(wrong), Pixels{});
}

// 4 by 3, as indices from the top row on.
struct RunCase {
    const char* what;
    uint32_t compression;
    Bytes stream;
    std::vector<int> indices;
};

const RunCase runCases[] = {
    {"runs and row ends", BI_RLE8, {4, 1, 0, 0, 2, 2, 2, 3, 0, 0, 1, 1, 0, 1}, {1, 0, 0, 0, 2, 2, 3, 3, 1, 1, 1, 1}},
    {"absolute, padded", BI_RLE8, {0, 3, 1, 2, 3, 9, 1, 1, 0, 0, 4, 2, 0, 1}, {0, 0, 0, 0, 2, 2, 2, 2, 1, 2, 3, 1}},
    {"a move", BI_RLE8, {1, 1, 0, 2, 1, 2, 2, 3, 0, 1}, {0, 0, 3, 3, 0, 0, 0, 0, 1, 0, 0, 0}},
    {"runs past the row", BI_RLE8, {9, 1, 0, 0, 0, 6, 2, 2, 2, 2, 3, 3, 0, 1}, {0, 0, 0, 0, 2, 2, 2, 2, 1, 1, 1, 1}},
    {"rows above the picture", BI_RLE8, {0, 2, 0, 3, 4, 1}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"no end", BI_RLE8, {4, 1, 0, 0, 4, 2}, {0, 0, 0, 0, 2, 2, 2, 2, 1, 1, 1, 1}},
    {"cut in an absolute run", BI_RLE8, {0, 4, 1, 2}, {0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 0, 0}},
    {"cut in a move", BI_RLE8, {2, 3, 0, 2, 1}, {0, 0, 0, 0, 0, 0, 0, 0, 3, 3, 0, 0}},
    {"pairs", BI_RLE4, {4, 0x12, 0, 0, 3, 0x30, 0, 1}, {0, 0, 0, 0, 3, 0, 3, 0, 1, 2, 1, 2}},
    {"absolute pairs", BI_RLE4, {0, 3, 0x12, 0x30, 1, 0x20, 0, 1}, {0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 2}},
    {"five pairs, padded",
     BI_RLE4,
     {0, 5, 0x12, 0x31, 0x20, 9, 0, 0, 1, 0x10, 0, 1},
     {0, 0, 0, 0, 1, 0, 0, 0, 1, 2, 3, 1}},
};

TEST(BitmapFile, RunLengthsAreUnpackedAndClipped)
{
    for (const RunCase& one : runCases) {
        FileShape shape = {.width = 4, .height = 3, .bits = one.compression == BI_RLE8 ? 8 : 4};
        shape.compression = one.compression;
        shape.coloursUsed = 4;
        shape.colours = fourColours;
        shape.pixels = one.stream;
        Pixels expected;
        for (int index : one.indices) {
            expected.push_back(fourColours[static_cast<size_t>(index)]);
        }
        EXPECT_EQ(Load(shape), expected) << one.what;
        shape.height = -3;
        EXPECT_EQ(Load(shape), Pixels{}) << one.what;
        shape.height = 3;
        shape.bits = 24;
        EXPECT_EQ(Load(shape), Pixels{}) << one.what;
    }
}

TEST(BitmapFile, ShapesThatCannotBeAreRefused)
{
    const std::function<void(FileShape*)> changes[] = {
        [](FileShape* s) { s->width = 0; },
        [](FileShape* s) { s->width = -3; },
        [](FileShape* s) { s->height = 0; },
        [](FileShape* s) { s->height = INT32_MIN; },
        [](FileShape* s) { s->planes = 2; },
        [](FileShape* s) { s->bits = 2; },
        [](FileShape* s) { s->bits = 0; },
        [](FileShape* s) { s->compression = 4; },
        [](FileShape* s) { s->headerSize = 128; },
        [](FileShape* s) { s->pixelOffset = 53; },
        [](FileShape* s) { s->pixelOffset = 55; },
        [](FileShape* s) { s->pixelOffset = INT32_MAX; },
        [](FileShape* s) { s->width = 16385, s->height = 1, s->pixels.resize(49156); },
        [](FileShape* s) { s->width = s->height = 10000, s->pixels.resize(1000); },
    };
    for (const auto& change : changes) {
        FileShape shape = trueColour;
        change(&shape);
        EXPECT_TRUE(Load(shape).empty()) << &change - changes;
    }
    EXPECT_FALSE(Load(FileShape{.width = 16384, .height = 1, .pixels = Bytes(49152)}).empty());
    Bytes file = MakeFile(trueColour);
    file[1] = 'A';
    EXPECT_TRUE(Load(file).empty());
    EXPECT_EQ(BitmapFromFileBytes(nullptr, 100), nullptr);
}

TEST(BitmapFile, TruncatedAnywhereIsDamagedOrShort)
{
    FileShape masked = {.width = 2, .height = 1, .bits = 16, .compression = BI_BITFIELDS, .masks = {1, 2, 4}};
    masked.pixels = {0, 0, 1, 1};
    FileShape core = trueColour;
    core.headerSize = 12;
    FileShape indexed = {.bits = 4, .colours = fourColours, .pixels = Bytes(8)};
    for (const FileShape& shape : {trueColour, core, masked, indexed}) {
        const Bytes whole = MakeFile(shape);
        EXPECT_FALSE(Load(whole).empty());
        for (size_t size = 0; size < whole.size(); ++size) {
            EXPECT_TRUE(Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size))).empty()) << size;
        }
    }
    FileShape runs = {.width = 4, .height = 3, .bits = 8, .compression = BI_RLE8, .coloursUsed = 4};
    runs.colours = fourColours;
    runs.pixels = {0, 3, 1, 2, 3, 9, 0, 2, 1, 1, 4, 2, 0, 1};
    const Bytes whole = MakeFile(runs);
    for (size_t size = 0; size <= whole.size(); ++size) {
        const Pixels shown = Load(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)));
        EXPECT_EQ(shown.size(), size > whole.size() - runs.pixels.size() ? 12u : 0u) << size;
    }
}

TEST(BitmapFile, AnyByteChangedIsHarmless)
{
    FileShape runs = {.width = 4, .height = 3, .bits = 4, .compression = BI_RLE4, .coloursUsed = 4};
    runs.colours = fourColours;
    runs.pixels = {0, 5, 0x12, 0x31, 0x20, 9, 0, 2, 1, 1, 4, 2, 0, 1};
    for (const FileShape& shape : {trueColour, runs}) {
        const Bytes whole = MakeFile(shape);
        for (size_t position = 0; position < whole.size(); ++position) {
            for (int value : {0, 1, 2, 3, 4, 12, 16, 32, 40, 108, 127, 128, 254, 255}) {
                Bytes changed = whole;
                changed[position] = static_cast<uint8_t>(value);
                EXPECT_EQ(FuzzBitmap(changed.data(), changed.size()), "") << position << " " << value;
            }
        }
    }
}

TEST(BitmapFile, ReadsFromAPathWhatItReadsFromBytes)
{
    const TemporaryFolder folder;
    const auto write = [&](const Bytes& bytes) { folder.Write("art.bmp", std::string(bytes.begin(), bytes.end())); };
    // Larger than the part that is looked at first, and kept in the file's own depth.
    FileShape large = {.width = 123, .height = 77, .pixels = Bytes(372 * 77)};
    for (size_t index = 0; index < large.pixels.size(); ++index) {
        large.pixels[index] = static_cast<uint8_t>(index * 7 + index / 251);
    }
    FileShape runs = {.width = 4, .height = 3, .bits = 8, .compression = BI_RLE8, .pixels = runCases[0].stream};
    for (const FileShape& shape : {large, trueColour, runs}) {
        const Bytes file = MakeFile(shape);
        write(file);
        EXPECT_EQ(Shown(BitmapFromFile("art.bmp")), Load(file));
    }
    // All columns of the large one, the last of each row included.
    write(MakeFile(large));
    const Pixels shown = Shown(BitmapFromFile("art.bmp"));
    ASSERT_EQ(shown.size(), 123u * 77u);
    for (size_t y = 0; y < 77; ++y) {
        for (size_t x = 0; x < 123; ++x) {
            const uint8_t* stored = large.pixels.data() + (76 - y) * 372 + x * 3;
            ASSERT_EQ(shown[y * 123 + x], static_cast<uint32_t>(stored[2] << 16 | stored[1] << 8 | stored[0]));
        }
    }
    for (const size_t size : {5, 0}) {
        write(Bytes(size));
        EXPECT_EQ(BitmapFromFile("art.bmp"), nullptr);
    }
    // More than half a gigabyte is refused before any memory is asked for.
    folder.Write("art.bmp", BitmapHead(14000, 14000, 24));
    std::filesystem::resize_file("art.bmp", 54 + 42000ull * 14000);
    systemCalls.mapPages = [](size_t) -> void* {
        ADD_FAILURE() << "memory was asked for";
        return MAP_FAILED;
    };
    EXPECT_EQ(BitmapFromFile("art.bmp"), nullptr);
    systemCalls = RealSystemCalls();
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"none", "pipe", ".", static_cast<const char*>(nullptr)}) { // a pipe without its writer
        EXPECT_EQ(BitmapFromFile(path), nullptr);
    }
}

} // namespace
