// Stretching copies of the software drawing layer.
#include "tests/picture.h"

#include <cstdlib>

namespace {

struct DibOf32Bits {
    std::vector<uint32_t> pixels;
    BITMAPINFO info;
};

static DibOf32Bits NewDib(int width, int height, const std::vector<uint32_t>& pixels)
{
    DibOf32Bits dib = {pixels, {}};
    dib.info.bmiHeader.biSize = sizeof dib.info.bmiHeader;
    dib.info.bmiHeader.biWidth = width;
    dib.info.bmiHeader.biHeight = height;
    dib.info.bmiHeader.biPlanes = 1;
    dib.info.bmiHeader.biBitCount = 32;
    return dib;
}

static int Stretch(HDC dc, int x, int y, int width, int height, const DibOf32Bits& dib)
{
    const BITMAPINFOHEADER& header = dib.info.bmiHeader;
    return StretchDIBits(dc, x, y, width, height, 0, 0, header.biWidth, std::abs(header.biHeight), dib.pixels.data(),
                         &dib.info, DIB_RGB_COLORS, SRCCOPY);
}

TEST(Gdi, StretchingRepeatsPixelsAndStaysInsideClipAndSurface)
{
    Picture target(12, 9);
    // Three pixels to seven columns: the second one has columns 2 and 3 of them, the third one 4 to 6.
    DibOf32Bits dib = NewDib(3, -2, {0, red, 0, 0, 0, blue});
    EXPECT_EQ(Stretch(target.dc, 2, 1, 7, 4, dib), 2);
    const Rows redRows = {"............", "....##......", "....##......", "............", "............",
                          "............", "............", "............", "............"};
    EXPECT_EQ(target.Marks(red), redRows);
    const Rows blueRows = {"............", "............", "............", "......###...", "......###...",
                           "............", "............", "............", "............"};
    EXPECT_EQ(target.Marks(blue), blueRows);

    // With a positive height the rows begin at the bottom.
    dib.info.bmiHeader.biHeight = 2;
    EXPECT_EQ(Stretch(target.dc, 9, 7, 3, 2, dib), 2);
    EXPECT_EQ(target.At(11, 7), static_cast<uint32_t>(blue));
    EXPECT_EQ(target.At(10, 8), static_cast<uint32_t>(red));

    // Beyond every edge and through a clip rectangle nothing else changes.
    const RECT clip = {3, 3, 5, 5};
    SetClipOfDC(target.dc, &clip, 1);
    EXPECT_EQ(Stretch(target.dc, -10, -10, 40, 40, NewDib(1, 1, {red})), 1);
    ClearClipOfDC(target.dc);
    EXPECT_EQ(target.Count(red), 4 + 1 + 4);

    EXPECT_EQ(Stretch(target.dc, 0, 0, -4, 4, dib), 0) << "mirrored";
    EXPECT_EQ(Stretch(target.dc, 0, 0, 4, 0, dib), 0);
    EXPECT_EQ(Stretch(target.dc, 0, 0, 4, 4, NewDib(3, 0, {0})), 0);
    EXPECT_EQ(StretchDIBits(target.dc, 0, 0, 4, 4, 1, 0, 2, 2, dib.pixels.data(), &dib.info, DIB_RGB_COLORS, SRCCOPY),
              0)
        << "a part of the bitmap";
    dib.info.bmiHeader.biBitCount = 24;
    EXPECT_EQ(Stretch(target.dc, 0, 0, 4, 4, dib), 0);
    EXPECT_EQ(target.Count(red), 4 + 1 + 4);
}

// Large pictures are written by another way, which must begin and end at any pixel.
TEST(Gdi, RowsOfLargePicturesAreCopiedToTheirLastPixel)
{
    constexpr int side = 2100;
    Picture target(side, side, 0);
    std::vector<uint32_t> row(23);
    for (size_t i = 0; i < row.size(); i++) {
        row[i] = static_cast<uint32_t>(i + 1);
    }
    for (int x = 0; x < 5; x++) {
        for (int count = 1; count <= static_cast<int>(row.size()); count++) {
            const int y = x * 100 + count * 4;
            ASSERT_EQ(Stretch(target.dc, x, y, count, 2, NewDib(count, 1, row)), 1);
            for (int below = y; below < y + 2; below++) {
                for (int i = x == 0 ? 0 : -1; i <= count; i++) {
                    ASSERT_EQ(target.At(x + i, below), i < 0 || i == count ? 0u : row[static_cast<size_t>(i)])
                        << x << " " << count << " " << i;
                }
            }
            ASSERT_EQ(target.At(x, y + 2), 0u);
        }
    }
    ASSERT_EQ(Stretch(target.dc, side - 3, side - 1, 23, 5, NewDib(23, 1, row)), 1);
    EXPECT_EQ(target.At(side - 1, side - 1), 3u);
}

} // namespace
