// Cursors and icons, read from .cur and .ico resources, and image files.
#include "platform/kernel/heap.h"
#include "platform/user/state.h"

#include <algorithm>

struct HCURSOR__ {
    int kind; // HostCursorKind
    int hotX;
    int hotY;
    int width;
    int height;
    std::vector<uint32_t> pixels;
};

struct HICON__ {
    int width;
    int height;
    std::vector<uint32_t> pixels;
};

namespace {

constexpr int standardIconSize = 32;
constexpr int largestImage = 256;

HCURSOR__ arrowCursor = {hostCursorArrow, 0, 0, 0, 0, {}};
HCURSOR__ waitCursor = {hostCursorWait, 0, 0, 0, 0, {}};

struct ImageState {
    std::vector<std::unique_ptr<HCURSOR__>> cursors;
    std::vector<std::unique_ptr<HICON__>> icons;
    HCURSOR current = &arrowCursor;
    HCURSOR shown = &arrowCursor; // what the host shows
    int showCount = 0;
};

ImageState images;

struct Bytes {
    const uint8_t* data;
    size_t size;
};

unsigned Word(const Bytes& bytes, size_t at)
{
    return at + 2 <= bytes.size ? static_cast<unsigned>(bytes.data[at] | bytes.data[at + 1] << 8) : 0;
}

uint32_t Long(const Bytes& bytes, size_t at)
{
    return Word(bytes, at) | Word(bytes, at + 2) << 16;
}

struct DirectoryEntry {
    int width;
    int height;
    int hotX; // of a cursor
    int hotY;
    Bytes image;
};

struct DecodedImage {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels; // 0xAARRGGBB
};

// The images of a .cur or .ico file, those that lie inside it.
std::vector<DirectoryEntry> ReadDirectory(const Bytes& file, unsigned type)
{
    std::vector<DirectoryEntry> entries;
    if (Word(file, 0) != 0 || Word(file, 2) != type) {
        return entries;
    }
    const size_t count = Word(file, 4);
    for (size_t i = 0; i < count; i++) {
        const size_t at = 6 + 16 * i;
        if (at + 16 > file.size) {
            break;
        }
        const size_t size = Long(file, at + 8);
        const size_t offset = Long(file, at + 12);
        if (offset > file.size || size > file.size - offset) {
            continue;
        }
        entries.push_back({file.data[at] ? file.data[at] : largestImage,
                           file.data[at + 1] ? file.data[at + 1] : largestImage,
                           static_cast<int>(Word(file, at + 4)),
                           static_cast<int>(Word(file, at + 6)),
                           {file.data + offset, size}});
    }
    return entries;
}

size_t RowBytes(int width, unsigned bits)
{
    return (static_cast<size_t>(width) * bits + 31) / 32 * 4;
}

unsigned PixelIndex(const uint8_t* row, int column, unsigned bits)
{
    const unsigned at = static_cast<unsigned>(column) * bits;
    return static_cast<unsigned>(row[at / 8] >> (8 - bits - at % 8)) & ((1U << bits) - 1);
}

// One image: a header of 40 bytes that counts the rows of colours and mask together, the colour table, the rows of
// colours and the rows of the mask, both from the bottom up.
bool DecodeImage(const Bytes& bytes, DecodedImage* decoded)
{
    const int64_t width = static_cast<int32_t>(Long(bytes, 4));
    const int64_t height = static_cast<int32_t>(Long(bytes, 8)) / 2;
    const unsigned bits = Word(bytes, 14);
    const bool known = bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32;
    if (bytes.size < 40 || Long(bytes, 0) != 40 || Long(bytes, 16) != BI_RGB || !known || width < 1 ||
        width > largestImage || height < 1 || height > largestImage) {
        return false;
    }
    const int columns = static_cast<int>(width);
    const int rows = static_cast<int>(height);
    size_t colourCount = 0;
    if (bits <= 8) {
        colourCount = Long(bytes, 32) ? std::min<size_t>(Long(bytes, 32), size_t{1} << bits) : size_t{1} << bits;
    }
    const size_t colourRow = RowBytes(columns, bits);
    const size_t maskRow = RowBytes(columns, 1);
    const size_t colours = 40 + 4 * colourCount;
    const size_t mask = colours + colourRow * static_cast<size_t>(rows);
    const size_t maskEnd = mask + maskRow * static_cast<size_t>(rows);
    if (mask > bytes.size || (bits != 32 && maskEnd > bytes.size)) {
        return false;
    }

    decoded->width = columns;
    decoded->height = rows;
    decoded->pixels.assign(static_cast<size_t>(columns) * static_cast<size_t>(rows), 0);
    bool hasAlpha = false;
    auto ColourAt = [&](int row, int column) -> uint32_t {
        const size_t from = colours + colourRow * static_cast<size_t>(rows - 1 - row);
        if (bits == 32) {
            return Long(bytes, from + 4 * static_cast<size_t>(column));
        }
        if (bits == 24) {
            return Long(bytes, from + 3 * static_cast<size_t>(column)) & 0xFFFFFF;
        }
        const unsigned index = PixelIndex(bytes.data + from, column, bits);
        return index < colourCount ? Long(bytes, 40 + 4 * index) & 0xFFFFFF : 0;
    };
    for (int row = 0; row < rows; row++) {
        for (int column = 0; column < columns; column++) {
            const uint32_t colour = ColourAt(row, column);
            hasAlpha = hasAlpha || (colour >> 24) != 0;
            decoded->pixels[static_cast<size_t>(row) * static_cast<size_t>(columns) + static_cast<size_t>(column)] =
                colour;
        }
    }
    if (hasAlpha) {
        return true;
    }
    for (int row = 0; row < rows; row++) {
        const uint8_t* maskBits = bytes.data + mask + maskRow * static_cast<size_t>(rows - 1 - row);
        for (int column = 0; column < columns; column++) {
            uint32_t& pixel =
                decoded
                    ->pixels[static_cast<size_t>(row) * static_cast<size_t>(columns) + static_cast<size_t>(column)];
            const bool masked = maskEnd <= bytes.size && PixelIndex(maskBits, column, 1) != 0;
            // A masked pixel that is not black inverts the screen; here it is drawn black.
            if (!masked) {
                pixel |= 0xFF000000;
            } else {
                pixel = (pixel & 0xFFFFFF) ? 0xFF000000 : 0;
            }
        }
    }
    return true;
}

Bytes ResourceBytes(HINSTANCE instance, LPCSTR name, LPCSTR type)
{
    const HRSRC resource = FindResourceA(instance, name, type);
    const void* data = LockResource(LoadResource(instance, resource));
    return {static_cast<const uint8_t*>(data), data != nullptr ? SizeofResource(instance, resource) : 0};
}

// The image nearest to the wanted width, the wider one of two.
const DirectoryEntry* NearestEntry(const std::vector<DirectoryEntry>& entries, int width)
{
    const DirectoryEntry* best = nullptr;
    for (const DirectoryEntry& entry : entries) {
        const int distance = std::abs(entry.width - width);
        if ((best == nullptr) || distance < std::abs(best->width - width) ||
            (distance == std::abs(best->width - width) && entry.width > best->width)) {
            best = &entry;
        }
    }
    return best;
}

HICON LoadIconOfSize(HINSTANCE instance, LPCSTR name, int width)
{
    HICON made = nullptr;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    WithMemory([&] {
        const std::vector<DirectoryEntry> entries = ReadDirectory(ResourceBytes(instance, name, RT_ICON), 1);
        const DirectoryEntry* entry = NearestEntry(entries, width > 0 ? width : standardIconSize);
        DecodedImage decoded;
        if ((entry == nullptr) || !DecodeImage(entry->image, &decoded)) {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return;
        }
        images.icons.push_back(
            std::make_unique<HICON__>(HICON__{decoded.width, decoded.height, std::move(decoded.pixels)}));
        made = images.icons.back().get();
    });
    return made;
}

bool IsLiveIcon(HICON icon)
{
    return std::any_of(images.icons.begin(), images.icons.end(),
                       [&](const std::unique_ptr<HICON__>& live) { return live.get() == icon; });
}

bool IsLiveCursor(HCURSOR cursor)
{
    return cursor == &arrowCursor || cursor == &waitCursor ||
           std::any_of(images.cursors.begin(), images.cursors.end(),
                       [&](const std::unique_ptr<HCURSOR__>& live) { return live.get() == cursor; });
}

} // namespace

HCURSOR WINAPI LoadCursorA(HINSTANCE instance, LPCSTR name)
{
    if (instance == nullptr) {
        if (name == static_cast<LPCSTR>(IDC_ARROW)) {
            return &arrowCursor;
        }
        return name == static_cast<LPCSTR>(IDC_WAIT) ? &waitCursor : nullptr;
    }
    HCURSOR made = nullptr;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    WithMemory([&] {
        const std::vector<DirectoryEntry> entries = ReadDirectory(ResourceBytes(instance, name, RT_CURSOR), 2);
        const DirectoryEntry* entry = NearestEntry(entries, standardIconSize);
        DecodedImage decoded;
        if ((entry == nullptr) || !DecodeImage(entry->image, &decoded)) {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return;
        }
        images.cursors.push_back(std::make_unique<HCURSOR__>(HCURSOR__{
            hostCursorImage, entry->hotX, entry->hotY, decoded.width, decoded.height, std::move(decoded.pixels)}));
        made = images.cursors.back().get();
    });
    return made;
}

BOOL WINAPI DestroyCursor(HCURSOR cursor)
{
    if (cursor == &arrowCursor || cursor == &waitCursor || !IsLiveCursor(cursor)) {
        return FALSE;
    }
    if (images.current == cursor) {
        images.current = nullptr;
    }
    if (images.shown == cursor) {
        images.shown = nullptr; // its address may come back for another cursor
    }
    std::erase_if(images.cursors, [&](const std::unique_ptr<HCURSOR__>& live) { return live.get() == cursor; });
    return TRUE;
}

// Departs from Windows: with none, the arrow shows.
HCURSOR WINAPI SetCursor(HCURSOR cursor)
{
    const HCURSOR previous = images.current;
    if ((cursor != nullptr) && !IsLiveCursor(cursor)) {
        return previous;
    }
    images.current = cursor;
    const HCURSOR wanted = cursor != nullptr ? cursor : &arrowCursor;
    if ((host != nullptr) && images.shown != wanted) {
        images.shown = wanted;
        const HostImage image = {wanted->width, wanted->height, wanted->pixels.data()};
        host->setCursor(wanted->kind, wanted->kind == hostCursorImage ? &image : nullptr, wanted->hotX, wanted->hotY);
    }
    return previous;
}

// Only counts: the cursor is never taken from the screen.
int WINAPI ShowCursor(BOOL show)
{
    images.showCount += show ? 1 : -1;
    return images.showCount;
}

HICON WINAPI LoadIconA(HINSTANCE instance, LPCSTR name)
{
    return LoadIconOfSize(instance, name, standardIconSize);
}

HANDLE WINAPI LoadImageA(HINSTANCE instance, LPCSTR name, UINT type, int width, int, UINT flags)
{
    if (type == IMAGE_ICON && !(flags & LR_LOADFROMFILE)) {
        return LoadIconOfSize(instance, name, width);
    }
    if (type == IMAGE_BITMAP && (flags & LR_LOADFROMFILE) && (name != nullptr)) {
        return BitmapFromFile(name);
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}

void ShowIcons(const Window& window)
{
    std::vector<HostImage> shown;
    for (HICON icon : {window.windowClass->record.hIcon, window.windowClass->record.hIconSm}) {
        if ((icon != nullptr) && IsLiveIcon(icon)) {
            shown.push_back({icon->width, icon->height, icon->pixels.data()});
        }
    }
    if (!shown.empty()) {
        host->setIcons(window.hostWindow, shown.data(), static_cast<int>(shown.size()));
    }
}

void DestroyAllImages()
{
    images = ImageState();
}
