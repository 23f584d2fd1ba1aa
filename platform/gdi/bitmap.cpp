#include "platform/gdi/dib.h"
#include "platform/kernel/system_calls.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <sys/mman.h>

// ---- memory ----

constexpr size_t pageBlockSize = 1 << 20;
// From here on a block is made of whole huge pages where the system has them, because most of what a large picture
// costs is the first touch of its pages.
constexpr size_t hugeBlockSize = 4 << 20;
constexpr size_t hugePageSize = 2 << 20;
// Pixels begin so far behind the start of a page: copying between addresses that differ by a few bytes beyond whole
// pages is slow on many processors, and blocks of the heap begin some bytes behind one.
constexpr size_t pageSkew = 1024;

namespace {

size_t MappedLength(size_t size)
{
    const size_t length = size + pageSkew;
    return length < hugeBlockSize ? length : (length + hugePageSize - 1) / hugePageSize * hugePageSize;
}

uint8_t* MapPages(size_t length)
{
    const size_t spare = length < hugeBlockSize ? 0 : hugePageSize;
    void* mapped = systemCalls.mapPages(length + spare);
    if (mapped == MAP_FAILED) {
        return nullptr;
    }
    uint8_t* bytes = static_cast<uint8_t*>(mapped);
    if (spare > 0) {
        // Keeps the part that begins at a huge page.
        const size_t before = hugePageSize - reinterpret_cast<uintptr_t>(bytes) % hugePageSize;
        munmap(bytes, before);
        if (before < spare) {
            munmap(bytes + before + length, spare - before);
        }
        bytes += before;
        madvise(bytes, length, MADV_HUGEPAGE);
    }
    return bytes;
}

} // namespace

bool AllocateBlock(PixelBlock* block, size_t size)
{
    *block = {nullptr, 0};
    if (size < pageBlockSize) {
        block->bytes = static_cast<uint8_t*>(systemCalls.allocate(size, 1));
    } else if (size < SIZE_MAX / 2) {
        uint8_t* pages = MapPages(MappedLength(size));
        block->bytes = pages != nullptr ? pages + pageSkew : nullptr;
    }
    if (block->bytes != nullptr) {
        block->size = size;
    }
    return block->bytes != nullptr;
}

void FreeBlock(PixelBlock* block)
{
    if (block->size >= pageBlockSize) {
        munmap(block->bytes - pageSkew, MappedLength(block->size));
    } else {
        free(block->bytes);
    }
    *block = {nullptr, 0};
}

HBITMAP NewBitmapRecord()
{
    HBITMAP bitmap = new (std::nothrow) HBITMAP__{};
    if (bitmap != nullptr) {
        bitmap->header = {ObjectType::bitmap, 0, false};
    }
    return bitmap;
}

void FreeBitmap(HBITMAP bitmap)
{
    FreeBlock(&bitmap->block);
    delete bitmap;
}

HBITMAP NewNativeBitmap(int width, int height)
{
    if (width < 1 || height < 1) {
        return nullptr;
    }
    size_t columns = static_cast<size_t>(width);
    size_t rows = static_cast<size_t>(height);
    if (rows > SIZE_MAX / sizeof(uint32_t) / columns) {
        return nullptr;
    }
    HBITMAP bitmap = NewBitmapRecord();
    if (bitmap == nullptr) {
        return nullptr;
    }
    if (!AllocateBlock(&bitmap->block, columns * rows * sizeof(uint32_t))) {
        FreeBitmap(bitmap);
        return nullptr;
    }
    bitmap->surface = {reinterpret_cast<uint32_t*>(bitmap->block.bytes), width, height, width, {}};
    bitmap->rows = {
        bitmap->block.bytes, static_cast<ptrdiff_t>(columns * sizeof(uint32_t)), width, height, 32, nullptr};
    return bitmap;
}

// ---- bitmaps ----

HBITMAP WINAPI CreateCompatibleBitmap(HDC dc, int width, int height)
{
    return dc != nullptr ? NewNativeBitmap(width, height) : nullptr;
}

HBITMAP WINAPI CreateDIBitmap(HDC dc, const BITMAPINFOHEADER* header, DWORD flags, const void* bits,
                              const BITMAPINFO* info, UINT usage)
{
    if ((dc == nullptr) || (header == nullptr) || (bits == nullptr) || (info == nullptr) || flags != CBM_INIT ||
        usage != DIB_RGB_COLORS) {
        return nullptr;
    }
    int depth = header->biBitCount;
    int64_t height = header->biHeight;
    if (header->biCompression != BI_RGB || (depth != 1 && depth != 4 && depth != 8 && depth != 24)) {
        return nullptr;
    }
    if (header->biWidth < 1 || header->biWidth > largestSide || height == 0 || std::abs(height) > largestSide) {
        return nullptr;
    }
    DibLayout layout = {};
    layout.width = header->biWidth;
    layout.height = static_cast<int>(std::abs(height));
    layout.topDown = height < 0;
    layout.bits = depth;
    if (depth <= 8) {
        DWORD possible = 1u << depth;
        DWORD used = info->bmiHeader.biClrUsed;
        const uint8_t* table = reinterpret_cast<const uint8_t*>(info) + info->bmiHeader.biSize;
        ReadColourTable(&layout, table, static_cast<int>(used == 0 ? possible : std::min(used, possible)), 4);
    }
    return BitmapFromDib(layout, static_cast<const uint8_t*>(bits), 0, nullptr);
}

int WINAPI GetObjectA(HANDLE object, int size, LPVOID record)
{
    if (!IsObject(object, ObjectType::bitmap)) {
        return 0;
    }
    if (record == nullptr) {
        return sizeof(BITMAP);
    }
    if (size < static_cast<int>(sizeof(BITMAP))) {
        return 0;
    }
    const PixelRows& rows = static_cast<HBITMAP>(object)->rows;
    BITMAP bitmap = {};
    bitmap.bmWidth = rows.width;
    bitmap.bmHeight = rows.height;
    bitmap.bmWidthBytes = static_cast<LONG>(std::abs(rows.stride));
    bitmap.bmPlanes = 1;
    bitmap.bmBitsPixel = static_cast<WORD>(rows.bits);
    memcpy(record, &bitmap, sizeof bitmap);
    return sizeof(BITMAP);
}
