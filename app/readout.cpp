#include "app/map_views.h"
#include "app/map_window.h"
#include "mapdata/terrain.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"

#include <algorithm>

namespace {

constexpr int metresPerPixel = 10;

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
    CheckCommand(cursorReadoutCommand, static_cast<int>(shell.cursorReadoutOn));
}

void UpdateCursorReadout()
{
    if (!shell.cursorReadoutOn || !MapWindowExists()) {
        return;
    }
    const SavedPort saved = UsePort(shell.mapWindow);
    Point pointer;
    GetMouse(&pointer);
    RestorePort(saved);
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
    GetText(text, utmPrefixText);
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
    // The names in their order: few places, few rows.
    int lastPlace = 0;
    for (const TerrainRow& terrain : TerrainRows()) {
        lastPlace = std::max(lastPlace, terrain.readout.place);
    }
    for (int place = 1; place <= lastPlace; place++) {
        for (const TerrainRow& terrain : TerrainRows()) {
            const bool held =
                terrain.group == noGoTerrain ? &terrain == NearestNoGoOf(*cell) : HoldsTerrain(*cell, terrain);
            if (held && terrain.readout.place == place) {
                AppendBlank(buffer);
                AppendText(buffer, terrain.readout.text);
            }
        }
    }
}
