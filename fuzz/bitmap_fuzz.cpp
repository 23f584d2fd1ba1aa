#include "fuzz/targets.h"
#include "platform/gdi/surface.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

constexpr int pictureSide = 48;
constexpr uint32_t canary = 0x00C5A3;
// Larger pictures are allowed, but an input a second is no use.
constexpr uint64_t mostPixels = 1 << 21;

uint32_t Word32(const uint8_t* bytes)
{
    return static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) | static_cast<uint32_t>(bytes[3]) << 24;
}

// Whether the header states a picture that would take long; the short header's sides always pass the reader's limits.
bool IsLarge(const uint8_t* bytes, size_t size)
{
    if (size < 26) {
        return false;
    }
    const bool shortHeader = Word32(bytes + 14) == 12;
    const int64_t width = shortHeader ? Word32(bytes + 18) & 0xFFFF : static_cast<int32_t>(Word32(bytes + 18));
    const int64_t height = shortHeader ? Word32(bytes + 18) >> 16 : static_cast<int32_t>(Word32(bytes + 22));
    const uint64_t pixels = static_cast<uint64_t>(std::abs(width)) * static_cast<uint64_t>(std::abs(height));
    return pixels > mostPixels;
}

} // namespace

std::string FuzzBitmap(const uint8_t* bytes, size_t size)
{
    if (IsLarge(bytes, size)) {
        return {};
    }
    // A copy of exactly this size, so that a read behind it is noticed.
    const std::vector<uint8_t> file(bytes, bytes + size);
    const HBITMAP bitmap = BitmapFromFileBytes(file.data(), file.size());
    if (bitmap == nullptr) {
        return {};
    }
    std::string fault;
    BITMAP shape = {};
    if (GetObjectA(bitmap, sizeof shape, &shape) == 0 || shape.bmWidth < 1 || shape.bmHeight < 1) {
        fault = "a bitmap without a size";
    }
    std::vector<uint32_t> pixels((pictureSide + 2) * pictureSide, canary);
    Surface picture = {pixels.data() + pictureSide, pictureSide, pictureSide, pictureSide, {}};
    const HDC target = CreateSurfaceDC(&picture);
    const HDC source = CreateCompatibleDC(target);
    const HGDIOBJ displaced = SelectObject(source, bitmap);
    const int right = std::max(static_cast<int>(shape.bmWidth) - pictureSide / 2, 0);
    const int bottom = std::max(static_cast<int>(shape.bmHeight) - pictureSide / 2, 0);
    const POINT corners[] = {{0, 0}, {-7, -9}, {right, bottom}};
    for (const POINT& corner : corners) {
        BitBlt(target, 0, 0, pictureSide, pictureSide, source, corner.x, corner.y, SRCCOPY);
    }
    SelectObject(source, displaced);
    DeleteDC(source);
    DeleteSurfaceDC(target);
    DeleteObject(bitmap);

    const auto isCanary = [](uint32_t pixel) { return pixel == canary; };
    if (!std::all_of(pixels.begin(), pixels.begin() + pictureSide, isCanary) ||
        !std::all_of(pixels.end() - pictureSide, pixels.end(), isCanary)) {
        fault = "pixels outside the picture were written";
    }
    const auto inPicture = pixels.begin() + pictureSide;
    if (std::any_of(inPicture, inPicture + pictureSide * pictureSide, [](uint32_t pixel) { return pixel >> 24; })) {
        fault = "a pixel that is no colour";
    }
    return fault;
}
