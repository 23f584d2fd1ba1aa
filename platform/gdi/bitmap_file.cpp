#include "platform/api/kernel.h"
#include "platform/gdi/dib.h"
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

constexpr uint64_t fileHeaderSize = 14;
constexpr uint32_t compressionAlphaBitfields = 6;
constexpr uint64_t mostPictureBytes = 512u << 20; // of memory for one picture; more is refused before any is taken

// The beginning of a bitmap file and the size of the whole.
struct FileHead {
    const uint8_t* bytes;
    uint64_t fileSize; // bytes holds at least bitmapHeadBytes of them, or all
    uint32_t headerSize;
};

namespace {

uint32_t Word16(const uint8_t* bytes)
{
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8;
}

uint32_t Word32(const uint8_t* bytes)
{
    return Word16(bytes) | Word16(bytes + 2) << 16;
}

// A field of the information header; short headers leave their last fields out, which are 0 then.
uint32_t HeaderField(const FileHead& head, uint32_t offset, uint32_t width)
{
    if (offset + width > head.headerSize) {
        return 0;
    }
    const uint8_t* field = head.bytes + fileHeaderSize + offset;
    return width == 2 ? Word16(field) : Word32(field);
}

bool ReadShape(const FileHead& head, DibLayout* layout)
{
    const bool core = head.headerSize == 12;
    int64_t width = HeaderField(head, 4, 2);
    int64_t height = HeaderField(head, 6, 2);
    if (!core) {
        width = static_cast<int32_t>(HeaderField(head, 4, 4));
        height = static_cast<int32_t>(HeaderField(head, 8, 4));
    }
    uint32_t planes = HeaderField(head, core ? 8 : 12, 2);
    uint32_t bits = HeaderField(head, core ? 10 : 14, 2);
    layout->topDown = height < 0;
    height = std::abs(height);
    if (width < 1 || width > largestSide || height < 1 || height > largestSide || planes != 1) {
        return false;
    }
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && (core || (bits != 16 && bits != 32))) {
        return false;
    }
    layout->width = static_cast<int>(width);
    layout->height = static_cast<int>(height);
    layout->bits = static_cast<int>(bits);
    return true;
}

// The masks of 16 and 32 bits a pixel. *headersEnd moves past masks that follow the header.
bool ReadMasks(const FileHead& head, uint32_t compression, DibLayout* layout, uint64_t* headersEnd)
{
    if (compression == BI_RGB) {
        const uint32_t masks16[3] = {0x7C00, 0x03E0, 0x001F};
        const uint32_t masks32[3] = {0xFF0000, 0x00FF00, 0x0000FF};
        std::copy_n(layout->bits == 16 ? masks16 : masks32, 3, layout->masks);
        return true;
    }
    if (layout->bits != 16 && layout->bits != 32) {
        return false;
    }
    // The headers of OS/2 use this compression number for something else.
    const bool behindHeader = head.headerSize == 40;
    if (!behindHeader && head.headerSize != 52 && head.headerSize != 56 && head.headerSize < 108) {
        return false;
    }
    if (behindHeader) {
        *headersEnd += compression == compressionAlphaBitfields ? 16 : 12;
    }
    if (*headersEnd > head.fileSize) {
        return false;
    }
    for (int index = 0; index < 3; ++index) {
        layout->masks[index] = Word32(head.bytes + fileHeaderSize + 40 + index * 4);
    }
    return true;
}

// Fills the layout and finds where the pixels begin and, for uncompressed ones, end.
bool ReadHead(FileHead head, DibLayout* layout, uint64_t* pixelsBegin, uint64_t* pixelsEnd)
{
    if (head.fileSize < fileHeaderSize + 12 || head.bytes[0] != 'B' || head.bytes[1] != 'M') {
        return false;
    }
    head.headerSize = Word32(head.bytes + fileHeaderSize);
    const bool core = head.headerSize == 12;
    if (!core && (head.headerSize < 16 || head.headerSize > 64) && head.headerSize != 108 && head.headerSize != 124) {
        return false;
    }
    uint64_t headersEnd = fileHeaderSize + head.headerSize;
    if (headersEnd > head.fileSize || !ReadShape(head, layout)) {
        return false;
    }

    const uint32_t compression = core ? BI_RGB : HeaderField(head, 16, 4);
    switch (compression) {
    case BI_RGB:
    case BI_BITFIELDS:
    case compressionAlphaBitfields:
        if (!ReadMasks(head, compression, layout, &headersEnd)) {
            return false;
        }
        break;
    case BI_RLE8:
    case BI_RLE4:
        if (layout->bits != (compression == BI_RLE8 ? 8 : 4) || layout->topDown) {
            return false;
        }
        layout->runLengths = true;
        break;
    default:
        return false;
    }

    const uint64_t entryBytes = core ? 3 : 4;
    const uint64_t possible = layout->bits <= 8 ? 1u << layout->bits : 0;
    uint64_t colours = core ? possible : HeaderField(head, 32, 4);
    if (possible > 0 && (colours == 0 || colours > possible)) {
        colours = possible;
    }

    const uint64_t stated = Word32(head.bytes + 10);
    *pixelsBegin = stated != 0 ? stated : headersEnd + colours * entryBytes;
    if (*pixelsBegin < headersEnd || *pixelsBegin >= head.fileSize) {
        return false;
    }
    if (possible > 0) {
        colours = std::min(colours, (*pixelsBegin - headersEnd) / entryBytes);
        ReadColourTable(layout, head.bytes + headersEnd, static_cast<int>(colours), static_cast<int>(entryBytes));
    }

    *pixelsEnd = head.fileSize;
    if (layout->runLengths) {
        return true;
    }
    *pixelsEnd = *pixelsBegin + static_cast<uint64_t>(DibRowBytes(*layout)) * static_cast<uint64_t>(layout->height);
    return *pixelsEnd <= head.fileSize;
}

} // namespace

HBITMAP BitmapFromFileBytes(const uint8_t* bytes, size_t size)
{
    DibLayout layout = {};
    uint64_t begin, end;
    if ((bytes == nullptr) || !ReadHead({bytes, size, 0}, &layout, &begin, &end)) {
        return nullptr;
    }
    return BitmapFromDib(layout, bytes + begin, static_cast<size_t>(end - begin), nullptr);
}

bool BitmapSizeFromHead(const uint8_t* head, uint64_t fileSize, int* width, int* height)
{
    DibLayout layout = {};
    uint64_t begin, end;
    if (!ReadHead({head, fileSize, 0}, &layout, &begin, &end)) {
        return false;
    }
    *width = layout.width;
    *height = layout.height;
    return true;
}

// ---- from a path ----

namespace {

bool ReadAt(int file, uint64_t offset, uint8_t* bytes, size_t size)
{
    size_t done = 0;
    while (done < size) {
        const ssize_t got = RetryInterrupted(
            [&] { return systemCalls.readAt(file, bytes + done, size - done, static_cast<off_t>(offset + done)); });
        if (got <= 0) {
            if (got < 0) {
                SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
            }
            return false;
        }
        done += static_cast<size_t>(got);
    }
    return true;
}

HBITMAP BitmapFromOpenFile(int file)
{
    struct stat status;
    if (RetryInterrupted([&] { return systemCalls.statOpen(file, &status); }) != 0) {
        SetLastError(ErrorFromErrno(errno, ERROR_READ_FAULT));
        return nullptr;
    }
    SetLastError(ERROR_INVALID_DATA); // unless the system has another reason
    if (!S_ISREG(status.st_mode)) {
        return nullptr;
    }
    const uint64_t fileSize = static_cast<uint64_t>(status.st_size);
    uint8_t head[bitmapHeadBytes];
    DibLayout layout = {};
    uint64_t begin, end;
    if (!ReadAt(file, 0, head, static_cast<size_t>(std::min<uint64_t>(fileSize, bitmapHeadBytes))) ||
        !ReadHead({head, fileSize, 0}, &layout, &begin, &end)) {
        return nullptr;
    }
    // Run lengths need no more than this, however long the file is made.
    const uint64_t pixelCount = static_cast<uint64_t>(layout.width) * static_cast<uint64_t>(layout.height);
    if (layout.runLengths) {
        end = std::min(end, begin + pixelCount * 4 + bitmapHeadBytes);
    }

    const size_t size = static_cast<size_t>(end - begin);
    const uint64_t expanded = layout.runLengths || layout.bits < 8     ? pixelCount
                              : layout.bits == 16 || layout.bits == 32 ? pixelCount * sizeof(uint32_t)
                                                                       : 0;
    PixelBlock block;
    if (size + expanded > mostPictureBytes || !AllocateBlock(&block, size)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    HBITMAP bitmap = nullptr;
    if (ReadAt(file, begin, block.bytes, size)) {
        bitmap = BitmapFromDib(layout, block.bytes, size, &block);
    }
    FreeBlock(&block);
    return bitmap;
}

} // namespace

HBITMAP BitmapFromFile(const char* path)
{
    char resolved[4096];
    if ((path == nullptr) || !ResolvePath(path, resolved, sizeof resolved)) {
        return nullptr;
    }
    // Without O_NONBLOCK opening a named pipe would wait for its other end.
    const int file =
        RetryInterrupted([&] { return systemCalls.open(resolved, O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0); });
    if (file < 0) {
        SetErrorForPath(resolved, ERROR_READ_FAULT);
        return nullptr;
    }
    HBITMAP bitmap = BitmapFromOpenFile(file);
    systemCalls.close(file);
    return bitmap;
}
