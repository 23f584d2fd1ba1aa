#include "platform/gdi/dib.h"

#include <bit>
#include <cstring>

size_t DibRowBytes(const DibLayout& layout)
{
    return (static_cast<size_t>(layout.width) * static_cast<size_t>(layout.bits) + 31) / 32 * 4;
}

void ReadColourTable(DibLayout* layout, const uint8_t* table, int count, int entryBytes)
{
    std::fill(std::begin(layout->colours), std::end(layout->colours), 0);
    for (int index = 0; index < count; ++index, table += entryBytes) {
        layout->colours[index] = PixelOf(RGB(table[2], table[1], table[0]));
    }
}

namespace {

// The file's rows as they lie in memory.
PixelRows RowsInPlace(const DibLayout& layout, const uint8_t* pixels)
{
    ptrdiff_t stride = static_cast<ptrdiff_t>(DibRowBytes(layout));
    const uint8_t* lastStored = pixels + stride * (layout.height - 1);
    return {layout.topDown ? pixels : lastStored,
            layout.topDown ? stride : -stride,
            layout.width,
            layout.height,
            layout.bits,
            nullptr};
}

void TakeColours(HBITMAP bitmap, const DibLayout& layout)
{
    std::copy(std::begin(layout.colours), std::end(layout.colours), bitmap->colours);
    bitmap->rows.colours = bitmap->colours;
}

// 8 and 24 bits stay as they are: a blit converts them, so that loading a large picture copies nothing.
HBITMAP KeepRows(const DibLayout& layout, const uint8_t* pixels, PixelBlock* block)
{
    HBITMAP bitmap = NewBitmapRecord();
    if (bitmap == nullptr) {
        return nullptr;
    }
    if (block != nullptr) {
        std::swap(bitmap->block, *block);
    } else {
        size_t size = DibRowBytes(layout) * static_cast<size_t>(layout.height);
        if (!AllocateBlock(&bitmap->block, size)) {
            FreeBitmap(bitmap);
            return nullptr;
        }
        memcpy(bitmap->block.bytes, pixels, size);
        pixels = bitmap->block.bytes;
    }
    bitmap->rows = RowsInPlace(layout, pixels);
    TakeColours(bitmap, layout);
    return bitmap;
}

// A bitmap of 8-bit indices, all 0, its rows bottom-up and width bytes apart.
HBITMAP NewIndexBitmap(const DibLayout& layout)
{
    HBITMAP bitmap = NewBitmapRecord();
    if (bitmap == nullptr) {
        return nullptr;
    }
    if (!AllocateBlock(&bitmap->block, static_cast<size_t>(layout.width) * static_cast<size_t>(layout.height))) {
        FreeBitmap(bitmap);
        return nullptr;
    }
    ptrdiff_t stride = layout.width;
    const uint8_t* top = bitmap->block.bytes + stride * (layout.height - 1);
    bitmap->rows = {top, -stride, layout.width, layout.height, 8, nullptr};
    TakeColours(bitmap, layout);
    return bitmap;
}

HBITMAP ExpandIndices(const DibLayout& layout, const uint8_t* pixels)
{
    HBITMAP bitmap = NewIndexBitmap(layout);
    if (bitmap == nullptr) {
        return nullptr;
    }
    PixelRows source = RowsInPlace(layout, pixels);
    const int perByte = 8 / layout.bits;
    const int mask = (1 << layout.bits) - 1;
    for (int y = 0; y < layout.height; ++y) {
        const uint8_t* from = source.topRow + source.stride * y;
        uint8_t* to = bitmap->block.bytes + static_cast<ptrdiff_t>(layout.width) * (layout.height - 1 - y);
        for (int x = 0; x < layout.width; ++x) {
            int shift = 8 - layout.bits * (x % perByte + 1);
            to[x] = static_cast<uint8_t>(from[x / perByte] >> shift & mask);
        }
    }
    return bitmap;
}

} // namespace

// One colour of a pixel of 16 or 32 bits: its place, and the 8-bit value for each value there (for its upper 8 bits
// where it is wider). Narrow values repeat their bits, so that the largest becomes 255.
struct Channel {
    uint32_t mask;
    int shift;
    uint8_t values[256];
};

namespace {

Channel MakeChannel(uint32_t mask)
{
    Channel channel = {mask, 0, {}};
    if (mask == 0) {
        return channel;
    }
    int width = 32 - std::countl_zero(mask) - std::countr_zero(mask);
    channel.shift = std::countr_zero(mask) + std::max(0, width - 8);
    width = std::min(width, 8);
    for (int value = 0; value < 1 << width; ++value) {
        int widened = value << (8 - width);
        int result = 0;
        for (int shift = 0; shift < 8; shift += width) {
            result |= widened >> shift;
        }
        channel.values[value] = static_cast<uint8_t>(result);
    }
    return channel;
}

uint32_t ChannelValue(const Channel& channel, uint32_t word)
{
    return channel.values[(word & channel.mask) >> channel.shift];
}

HBITMAP ExpandWords(const DibLayout& layout, const uint8_t* pixels)
{
    HBITMAP bitmap = NewNativeBitmap(layout.width, layout.height);
    if (bitmap == nullptr) {
        return nullptr;
    }
    const Channel red = MakeChannel(layout.masks[0]);
    const Channel green = MakeChannel(layout.masks[1]);
    const Channel blue = MakeChannel(layout.masks[2]);
    PixelRows source = RowsInPlace(layout, pixels);
    for (int y = 0; y < layout.height; ++y) {
        const uint8_t* from = source.topRow + source.stride * y;
        uint32_t* to = PixelAddress(&bitmap->surface, 0, y);
        for (int x = 0; x < layout.width; ++x, from += layout.bits / 8) {
            uint32_t word = static_cast<uint32_t>(from[0]) | static_cast<uint32_t>(from[1]) << 8;
            if (layout.bits == 32) {
                word |= static_cast<uint32_t>(from[2]) << 16 | static_cast<uint32_t>(from[3]) << 24;
            }
            to[x] = ChannelValue(red, word) << 16 | ChannelValue(green, word) << 8 | ChannelValue(blue, word);
        }
    }
    return bitmap;
}

} // namespace

HBITMAP BitmapFromDib(const DibLayout& layout, const uint8_t* pixels, size_t size, PixelBlock* block)
{
    if (layout.runLengths) {
        HBITMAP bitmap = NewIndexBitmap(layout);
        if (bitmap != nullptr) {
            UnpackRunLengths(layout, pixels, size, bitmap->block.bytes);
        }
        return bitmap;
    }
    if (layout.bits < 8) {
        return ExpandIndices(layout, pixels);
    }
    if (layout.bits == 16 || layout.bits == 32) {
        return ExpandWords(layout, pixels);
    }
    return KeepRows(layout, pixels, block);
}
