// The screen's device context. Lines drawn on it invert the screen; what an odd number of drawings leaves is shown as
// an outline at the next present point, so that an outline that is removed and drawn again in between does not
// flicker. Lines that overlap only in part are not taken apart.
#include "platform/user/state.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace {

struct Line { // both ends included, the first one left of or above the second
    int x0;
    int y0;
    int x1;
    int y1;
    auto operator<=>(const Line&) const = default;
};

HDC screenDC = nullptr;
std::set<Line> oddLines;
std::vector<Line> shownLines;
bool outlineChanged = false;

// Leaves out the end point. A slanted line counts only when it is a single pixel.
bool Normalised(int x0, int y0, int x1, int y1, Line* line)
{
    const int dx = (x1 > x0) - (x1 < x0);
    const int dy = (y1 > y0) - (y1 < y0);
    if (dx == 0 && dy == 0) {
        return false;
    }
    if (dx != 0 && dy != 0 && (std::abs(x1 - x0) > 1 || std::abs(y1 - y0) > 1)) {
        return false;
    }
    x1 -= dx;
    y1 -= dy;
    *line = {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
    return true;
}

void InvertLine(int x0, int y0, int x1, int y1)
{
    Line line = {};
    if (!Normalised(x0, y0, x1, y1, &line)) {
        return;
    }
    if (oddLines.erase(line) == 0) {
        oddLines.insert(line);
    }
    outlineChanged = true;
}

bool IsPixel(const Line& line)
{
    return line.x0 == line.x1 && line.y0 == line.y1;
}

// Whether the line shows the pixel already, or can be made longer by one to show it.
bool Absorb(Line& line, const Line& pixel)
{
    const bool horizontal = line.y0 == line.y1 && line.y0 == pixel.y0;
    const bool vertical = line.x0 == line.x1 && line.x0 == pixel.x0;
    if (horizontal && pixel.x0 >= line.x0 - 1 && pixel.x0 <= line.x1 + 1) {
        line.x0 = std::min(line.x0, pixel.x0);
        line.x1 = std::max(line.x1, pixel.x0);
        return true;
    }
    if (vertical && pixel.y0 >= line.y0 - 1 && pixel.y0 <= line.y1 + 1) {
        line.y0 = std::min(line.y0, pixel.y0);
        line.y1 = std::max(line.y1, pixel.y0);
        return true;
    }
    return false;
}

// Single pixels become the ends of the lines that they touch; one that touches none shows only when it is all there
// is.
std::vector<Line> LinesToShow()
{
    std::vector<Line> lines;
    std::copy_if(oddLines.begin(), oddLines.end(), std::back_inserter(lines),
                 [](const Line& line) { return !IsPixel(line); });
    if (lines.empty()) {
        return {oddLines.begin(), oddLines.end()};
    }
    for (const Line& pixel : oddLines) {
        for (size_t i = 0; IsPixel(pixel) && i < lines.size() && !Absorb(lines[i], pixel); i++) {
        }
    }
    return lines;
}

} // namespace

HDC ScreenDC()
{
    if (screenDC == nullptr) {
        screenDC = CreateScreenDC(InvertLine);
    }
    return screenDC;
}

void ShowPendingOutline()
{
    if (!outlineChanged) {
        return;
    }
    outlineChanged = false;
    std::vector<Line> lines = LinesToShow();
    if (lines == shownLines) {
        return;
    }
    shownLines = lines;
    std::vector<HostSegment> segments;
    segments.reserve(lines.size());
    for (const Line& line : lines) {
        segments.push_back({line.x0, line.y0, line.x1, line.y1});
    }
    host->showOutline(segments.data(), static_cast<int>(segments.size()));
}

void ForgetOutline()
{
    if ((host != nullptr) && !shownLines.empty()) {
        host->showOutline(nullptr, 0);
    }
    oddLines.clear();
    shownLines.clear();
    outlineChanged = false;
    if (screenDC != nullptr) {
        DeleteSurfaceDC(screenDC);
    }
    screenDC = nullptr;
}
