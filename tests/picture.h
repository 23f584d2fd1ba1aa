// A picture that the drawing layer draws into, for tests of it.
#pragma once

#include "platform/gdi/surface.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

constexpr uint32_t red = 0xFF0000;
constexpr uint32_t blue = 0x0000FF;
constexpr uint32_t ground = 0x102030;

// A picture with its device context. Pixels beyond the width catch drawing outside the surface.
struct Picture {
    static constexpr int margin = 3;

    Picture(int width, int height, uint32_t fill = ground)
        : storage(static_cast<size_t>((width + margin) * height), fill),
          surface{storage.data(), width, height, width + margin, {}}, dc(CreateSurfaceDC(&surface))
    {
        for (int y = 0; y < height; ++y) {
            std::fill_n(storage.begin() + y * (width + margin) + width, margin, 0xDEADBEEF);
        }
    }

    ~Picture()
    {
        for (int y = 0; y < surface.height; ++y) {
            for (int x = surface.width; x < surface.stride; ++x) {
                EXPECT_EQ(storage[static_cast<size_t>(y * surface.stride + x)], 0xDEADBEEF);
            }
        }
        DeleteSurfaceDC(dc);
    }

    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    uint32_t At(int x, int y) const
    {
        return storage[static_cast<size_t>(y * surface.stride + x)];
    }

    // Rows of '#' for pixels of that value and '.' for the others.
    std::vector<std::string> Marks(uint32_t value) const
    {
        std::vector<std::string> rows;
        for (int y = 0; y < surface.height; ++y) {
            rows.emplace_back();
            for (int x = 0; x < surface.width; ++x) {
                rows.back() += At(x, y) == value ? '#' : '.';
            }
        }
        return rows;
    }

    int Count(uint32_t value) const
    {
        return static_cast<int>(std::count(storage.begin(), storage.end(), value));
    }

    std::vector<uint32_t> storage;
    Surface surface;
    HDC dc;
};

using Rows = std::vector<std::string>;
