#include "app/commands.h"
#include "app/map_views.h"
#include "app/map_window.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"

namespace {

constexpr int metresPerPixel = 10;
constexpr int generalList = 4000;
constexpr int noGoList = 8000;
constexpr int utmPrefixIndex = 100;

struct NameRow {
    int value;
    int index; // of its text
};

const NameRow featureNames[] = {{cellRoad, 29}, {cellWoods, 27}, {cellTown, 28}};
const NameRow moveCostNames[] = {{0, 25}, {1, 189}, {2, 190}, {3, 191}, {4, 192}, {6, 87}};

void AppendName(char* text, int list, int index)
{
    AppendBlank(text);
    AppendIndString(text, list, index);
}

// Two digits of kilometres, wrapping at 100, and one of hundreds of metres.
void AppendCoordinate(char* text, int metres, int originKilometres)
{
    int kilometres = metres / 1000 + originKilometres;
    if (kilometres > 99) {
        kilometres -= 100;
    }
    if (kilometres < 10) {
        AppendZero(text);
    }
    AppendNumber(text, kilometres);
    AppendNumber(text, metres % 1000 / 100);
}

} // namespace

void ToggleCursorReadout()
{
    if (shell.cursorReadoutOn) {
        shell.cursorReadoutOn = 0;
        ClearStatusText();
    } else {
        shell.cursorReadoutOn = 1;
    }
    PlaySoundResource(readoutSound);
    CheckItem(shell.viewMenu, readoutItem, static_cast<int>(shell.cursorReadoutOn));
}

void UpdateCursorReadout()
{
    if (!shell.cursorReadoutOn || !MapWindowExists()) {
        return;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    Point pointer;
    GetMouse(&pointer);
    SetPort(savedPort);
    if (!EqualPt(pointer, shell.lastReadoutPoint) && PtInRect(pointer, &currentMap.record.mapRect)) {
        ShowCursorReadout(pointer);
    }
}

void ShowCursorReadout(Point point)
{
    shell.lastReadoutPoint = point;
    const int column = point.h / cellSize;
    const int row = point.v / cellSize;
    const TerrainCell* cell = CellAt(column, row);

    char text[textBufferSize];
    char reference[textBufferSize];
    FormatGridReference(reference, point.h, point.v);
    GetIndString(text, generalList, utmPrefixIndex);
    AppendText(text, reference);
    AppendBlank(text);
    AppendChar(text, 'E');
    AppendNumber(text, cell != nullptr && (*cell & cellHiLow) ? 1 : 0);
    AppendBlank(text);
    DescribeCell(column, row, text);
    SetStatusText(1, 0, 0, text);
}

void FormatGridReference(char* buffer, int h, int v)
{
    buffer[0] = 0;
    AppendCoordinate(buffer, (h - currentMap.editableRect.left) * metresPerPixel, currentMap.record.utmEasting);
    AppendCoordinate(buffer, (currentMap.editableRect.bottom - v) * metresPerPixel, currentMap.record.utmNorthing);
}

void DescribeCell(int column, int row, char* buffer)
{
    const TerrainCell* cell = CellAt(column, row);
    if (cell == nullptr) {
        return;
    }
    for (const NameRow& feature : featureNames) {
        if (*cell & feature.value) {
            AppendName(buffer, generalList, feature.index);
        }
    }
    for (const NameRow& cost : moveCostNames) {
        if (*cell >> cellMoveCostShift == cost.value) {
            AppendName(buffer, generalList, cost.index);
        }
    }
    const int level = (*cell & cellNoGoMask) >> cellNoGoShift;
    if (level != 0) {
        AppendName(buffer, noGoList, level == 4 ? 34 : level == 2 ? 35 : 36);
    }
}
