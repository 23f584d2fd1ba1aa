// Rasters, points and repeatable random numbers for the sample map generator. Only +, -, *, / and square roots are
// used on floating numbers: these are exact to the last bit everywhere, so that the same seed gives the same files.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <queue>
#include <vector>

template <typename T>
struct Grid {
    int width = 0;
    int height = 0;
    std::vector<T> values;
};

template <typename T>
Grid<T> MakeGrid(int width, int height, T fill = {})
{
    return {width, height, std::vector<T>(size_t(width) * size_t(height), fill)};
}

auto& At(auto& grid, int x, int y)
{
    return grid.values[size_t(y * grid.width + x)];
}

// A grid with the value valueAt(x, y) at every place.
template <typename T>
Grid<T> FillGrid(int width, int height, auto valueAt)
{
    Grid<T> grid = MakeGrid<T>(width, height);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            At(grid, x, y) = T(valueAt(x, y));
        }
    }
    return grid;
}

bool Inside(const auto& grid, int x, int y)
{
    return x >= 0 && y >= 0 && x < grid.width && y < grid.height;
}

// The nearest cell of the grid, for points that may lie outside.
const auto& Nearest(const auto& grid, int x, int y)
{
    return At(grid, std::clamp(x, 0, grid.width - 1), std::clamp(y, 0, grid.height - 1));
}

// The least of the four values that are reach away.
auto LeastAround(const auto& grid, int x, int y, int reach)
{
    return std::min({Nearest(grid, x - reach, y), Nearest(grid, x + reach, y), Nearest(grid, x, y - reach),
                     Nearest(grid, x, y + reach)});
}

// The value that so many others are not above.
inline float ValueAtRank(std::vector<float> values, size_t rank)
{
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(rank), values.end());
    return values[rank];
}

// The eight neighbours, then the eight knight's moves.
constexpr int stepX[16] = {1, 1, 0, -1, -1, -1, 0, 1, 2, 1, -1, -2, -2, -1, 1, 2};
constexpr int stepY[16] = {0, 1, 1, 1, 0, -1, -1, -1, 1, 2, 2, 1, -1, -2, -2, -1};

// What waits, by cost or height and the index that settles ties; the lowest is taken first.
typedef std::pair<float, int> Waiting;
typedef std::priority_queue<Waiting, std::vector<Waiting>, std::greater<Waiting>> WaitingQueue;

// ---- points ----

struct Spot {
    float x = 0;
    float y = 0;
};

inline Spot SpotAt(int x, int y)
{
    return {float(x), float(y)};
}

// The cell of the grid that a point lies in, or the nearest one.
const auto& Nearest(const auto& grid, Spot place)
{
    return Nearest(grid, int(place.x), int(place.y));
}

// How much the values to the right and below are greater than those to the left and above.
inline Spot Change(const Grid<float>& grid, int x, int y, int reach)
{
    return {Nearest(grid, x + reach, y) - Nearest(grid, x - reach, y),
            Nearest(grid, x, y + reach) - Nearest(grid, x, y - reach)};
}

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

inline Spot operator/(Spot a, float divisor)
{
    return {a.x / divisor, a.y / divisor};
}

inline float Dot(Spot a, Spot b)
{
    return a.x * b.x + a.y * b.y;
}

// The vector a quarter to the right on the map.
inline Spot Turned(Spot a)
{
    return {-a.y, a.x};
}

inline float Length(Spot a)
{
    return std::sqrt(Dot(a, a));
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

// From low to below high.
inline float RollBetween(Dice& dice, float low, float high)
{
    return low + (high - low) * (float(Roll(dice) >> 8) * (1.0f / 16777216.0f));
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
inline float Noise(Spot place, uint32_t seed)
{
    // Sixteen directions round the circle.
    static constexpr float gradients[16][2] = {
        {1, 0},  {0.924f, 0.383f},   {0.707f, 0.707f},   {0.383f, 0.924f},
        {0, 1},  {-0.383f, 0.924f},  {-0.707f, 0.707f},  {-0.924f, 0.383f},
        {-1, 0}, {-0.924f, -0.383f}, {-0.707f, -0.707f}, {-0.383f, -0.924f},
        {0, -1}, {0.383f, -0.924f},  {0.707f, -0.707f},  {0.924f, -0.383f},
    };
    int cellX = int(std::floor(place.x));
    int cellY = int(std::floor(place.y));
    float fx = place.x - float(cellX);
    float fy = place.y - float(cellY);
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
inline float LayeredNoise(Spot place, int octaves, uint32_t seed)
{
    float sum = 0;
    float strength = 1;
    for (int i = 0; i < octaves; i++) {
        sum += strength * Noise(place, seed + uint32_t(i) * 101);
        // The shift keeps the octaves' lattices apart, which would otherwise all have their zeros in common.
        place = place * 2 + Spot{17.3f, -9.7f};
        strength *= 0.5f;
    }
    return sum;
}
