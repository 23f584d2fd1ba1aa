// The ground of the art: height tints, relief shading, woods, contour lines.
#include "tools/sample_stroke.h"

struct Tone {
    float red, green, blue;
};

static Tone MixTone(Tone a, Tone b, float t)
{
    return {Mix(a.red, b.red, t), Mix(a.green, b.green, t), Mix(a.blue, b.blue, t)};
}

static constexpr Tone heightTints[] = {
    {236, 241, 216}, {245, 243, 220}, {249, 241, 214}, {246, 232, 205}, {240, 223, 200}, {240, 230, 220},
};
static constexpr int tintCount = int(sizeof heightTints / sizeof heightTints[0]);
static constexpr Tone woodsTint = {193, 220, 166};
static constexpr Tone woodsEdge = {112, 154, 92};
static constexpr Tone contourInk = {186, 122, 72};
static constexpr Tone indexContourInk = {160, 94, 50};
static constexpr Tone shadowTint = {92, 84, 108};
static constexpr Tone lightTint = {255, 253, 240};

// Coverage of the nearest contour line; strength is how much of a pixel the line is wide.
static float ContourCoverage(float height, float rise, float interval, float width)
{
    float line = std::floor(height / interval + 0.5f) * interval;
    float distance = std::abs(height - line) / rise;
    // On nearly even ground a line would spread into a stain.
    return std::clamp(width / 2 + 0.5f - distance, 0.0f, 1.0f) * std::min(width, 1.0f) * Ramp(0.008f, 0.03f, rise);
}

// The lightness of the slope in light from the north-west, -1 to 1, 0 for level ground.
static float Relief(const SampleMap& map, int x, int y, int reach)
{
    float across = Nearest(map.height, x + reach, y) - Nearest(map.height, x - reach, y);
    float down = Nearest(map.height, x, y + reach) - Nearest(map.height, x, y - reach);
    float lit = (across + down) / (float(reach) * 20) * 1.9f;
    return lit / std::sqrt(1 + lit * lit);
}

void DrawGround(const SampleMap& map, Grid<Colour>& art)
{
    const SamplePlan& plan = *map.plan;
    auto [lowest, highest] = std::minmax_element(map.height.values.begin(), map.height.values.end());
    float tintStep = std::max(*highest - *lowest, 150.0f) / (tintCount - 1);
    for (int y = 0; y < plan.height; y++) {
        for (int x = 0; x < plan.width; x++) {
            float height = At(map.height, x, y);
            float level = std::clamp((height - *lowest) / tintStep, 0.0f, float(tintCount) - 1.001f);
            Tone tone = MixTone(heightTints[int(level)], heightTints[int(level) + 1], level - std::floor(level));
            int woods = At(map.woods, x, y);
            if (woods > 0) {
                tone = MixTone(tone, woodsTint, float(woods) / 255);
                int least = std::min(std::min(Nearest(map.woods, x - 1, y), Nearest(map.woods, x + 1, y)),
                                     std::min(Nearest(map.woods, x, y - 1), Nearest(map.woods, x, y + 1)));
                tone = MixTone(tone, woodsEdge, 0.55f * float(woods - std::min(least, woods)) / 255);
            }
            float relief = 0.55f * Relief(map, x, y, 2) + 0.45f * Relief(map, x, y, 7);
            tone = relief < 0 ? MixTone(tone, shadowTint, -0.42f * relief) : MixTone(tone, lightTint, 0.5f * relief);
            if (At(map.lake, x, y) < 128) {
                float rise = Length({Nearest(map.height, x + 1, y) - Nearest(map.height, x - 1, y),
                                     Nearest(map.height, x, y + 1) - Nearest(map.height, x, y - 1)}) /
                             2;
                float slopeRise = std::max(rise, 0.001f);
                tone =
                    MixTone(tone, contourInk, 0.75f * ContourCoverage(height, slopeRise, plan.contourInterval, 0.8f));
                tone = MixTone(tone, indexContourInk,
                               0.9f * ContourCoverage(height, slopeRise, 5 * plan.contourInterval, 1.45f));
            }
            At(art, x, y) = {uint8_t(tone.red + 0.5f), uint8_t(tone.green + 0.5f), uint8_t(tone.blue + 0.5f)};
        }
    }
}
