// Rasters, points and repeatable random numbers for the sample map generator. Only +, -, *, / and square roots are
// used on floating numbers: these are exact to the last bit everywhere, so that the same seed gives the same files.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

template <typename T>
struct Grid {
    int width = 0;
    int height = 0;
    std::vector<T> values;
};

template <typename T>
Grid<T> MakeGrid(int width, int height, T fill)
{
    return {width, height, std::vector<T>(size_t(width) * size_t(height), fill)};
}

template <typename T>
T& At(Grid<T>& grid, int x, int y)
{
    return grid.values[size_t(y) * size_t(grid.width) + size_t(x)];
}

template <typename T>
const T& At(const Grid<T>& grid, int x, int y)
{
    return grid.values[size_t(y) * size_t(grid.width) + size_t(x)];
}

template <typename T>
bool Inside(const Grid<T>& grid, int x, int y)
{
    return x >= 0 && y >= 0 && x < grid.width && y < grid.height;
}

// The nearest cell of the grid, for points that may lie outside.
template <typename T>
const T& Nearest(const Grid<T>& grid, int x, int y)
{
    return At(grid, std::clamp(x, 0, grid.width - 1), std::clamp(y, 0, grid.height - 1));
}

struct Spot {
    float x = 0;
    float y = 0;
};

inline Spot operator+(Spot a, Spot b)
{
    return {a.x + b.x, a.y + b.y};
}

inline Spot operator-(Spot a, Spot b)
{
    return {a.x - b.x, a.y - b.y};
}

inline Spot operator*(Spot a, float factor)
{
    return {a.x * factor, a.y * factor};
}

inline float Length(Spot a)
{
    return std::sqrt(a.x * a.x + a.y * a.y);
}

inline float Distance(Spot a, Spot b)
{
    return Length(a - b);
}

// The vector with length 1; (1, 0) for one too short to have a direction.
inline Spot Unit(Spot a)
{
    float length = Length(a);
    return length > 1e-6f ? a * (1 / length) : Spot{1, 0};
}

// 0 up to low, 1 from high, smooth between.
inline float Ramp(float low, float high, float value)
{
    float t = std::clamp((value - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

inline float Mix(float a, float b, float t)
{
    return a + (b - a) * t;
}

// ---- random numbers ----

struct Dice {
    uint64_t state;
};

inline uint32_t Roll(Dice& dice)
{
    dice.state += 0x9E3779B97F4A7C15u;
    uint64_t z = dice.state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return uint32_t((z ^ (z >> 31)) >> 32);
}

// From 0 to below 1.
inline float RollUnit(Dice& dice)
{
    return float(Roll(dice) >> 8) * (1.0f / 16777216.0f);
}

inline float RollBetween(Dice& dice, float low, float high)
{
    return low + (high - low) * RollUnit(dice);
}

// A number that belongs to the place (x, y), the same whenever it is asked for.
inline uint32_t HashAt(int x, int y, uint32_t seed)
{
    uint32_t h = seed * 0x9E3779B1u + uint32_t(x) * 0x85EBCA77u + uint32_t(y) * 0xC2B2AE3Du;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return h ^ (h >> 15);
}

inline float HashUnit(int x, int y, uint32_t seed)
{
    return float(HashAt(x, y, seed) >> 8) * (1.0f / 16777216.0f);
}

// Smooth noise of wavelength 1, about -1 to 1.
inline float Noise(float x, float y, uint32_t seed)
{
    // Sixteen directions round the circle.
    static constexpr float gradients[16][2] = {
        {1, 0},  {0.924f, 0.383f},   {0.707f, 0.707f},   {0.383f, 0.924f},
        {0, 1},  {-0.383f, 0.924f},  {-0.707f, 0.707f},  {-0.924f, 0.383f},
        {-1, 0}, {-0.924f, -0.383f}, {-0.707f, -0.707f}, {-0.383f, -0.924f},
        {0, -1}, {0.383f, -0.924f},  {0.707f, -0.707f},  {0.924f, -0.383f},
    };
    float floorX = std::floor(x);
    float floorY = std::floor(y);
    int cellX = int(floorX);
    int cellY = int(floorY);
    float fx = x - floorX;
    float fy = y - floorY;
    auto corner = [&](int dx, int dy) {
        const float* g = gradients[HashAt(cellX + dx, cellY + dy, seed) >> 28];
        return g[0] * (fx - float(dx)) + g[1] * (fy - float(dy));
    };
    float u = fx * fx * fx * (fx * (fx * 6 - 15) + 10);
    float v = fy * fy * fy * (fy * (fy * 6 - 15) + 10);
    float top = Mix(corner(0, 0), corner(1, 0), u);
    float bottom = Mix(corner(0, 1), corner(1, 1), u);
    return 1.5f * Mix(top, bottom, v);
}

// Noise in octaves, each at half the wavelength and half the strength of the one before.
inline float LayeredNoise(float x, float y, int octaves, uint32_t seed)
{
    float sum = 0;
    float strength = 1;
    for (int i = 0; i < octaves; i++) {
        sum += strength * Noise(x, y, seed + uint32_t(i) * 101);
        // The shift keeps the octaves' lattices apart, which would otherwise all have their zeros in common.
        x = x * 2 + 17.3f;
        y = y * 2 - 9.7f;
        strength *= 0.5f;
    }
    return sum;
}
