#include "editing/editing.h"
#include "editing/palette_loop.h"
#include "editing/palettes.h"
#include "editing/stroke.h"
#include "editing/whole_map.h"
#include "toolbox/shell_door.h"

#include <iterator>

namespace {

enum MoveCostItem {
    solidBrushBox = 213,
    frameBrushBox = 215,
    zeroAllButton = 216,
    setToR2Button = 217,
};

// In the order of the brush styles.
constexpr TextID brushTexts[] = {solidBrushBoxText, dotBrushBoxText, frameBrushBoxText};

constexpr int width = 285;
constexpr int showLeft = 80;
constexpr int brushLeft = 180;
constexpr int headingHeight = 16;
constexpr int rowsTop = paletteTop + 18;
constexpr int groupGap = 6;
constexpr int bottomMargin = 23; // from the last hint's top

std::span<const TerrainRow> MoveCosts()
{
    return TerrainRows(moveCostTerrain);
}

int ButtonTop()
{
    return rowsTop + static_cast<int>(MoveCosts().size()) * paletteRowStep + groupGap;
}

void AddItems(WindowPtr palette)
{
    AddPaletteText(palette, paletteMargin, paletteTop, headingHeight, createHeadingText);
    AddToolBoxes(palette, moveCostTerrain, rowsTop);
    AddPaletteText(palette, showLeft, paletteTop, headingHeight, showHeadingText);
    int top = rowsTop;
    for (const TerrainRow& moveCost : MoveCosts()) {
        AddPaletteBox(palette, showLeft, top, moveCost.shown.item, moveCost.shown.text);
        top += paletteRowStep;
    }
    AddPaletteText(palette, brushLeft, paletteTop, headingHeight, brushHeadingText);
    for (int i = 0; i < static_cast<int>(std::size(brushTexts)); i++) {
        AddPaletteBox(palette, brushLeft, rowsTop + i * paletteRowStep, solidBrushBox + i, brushTexts[i]);
    }
    AddPaletteButton(palette, paletteMargin, ButtonTop(), 120, zeroAllButton, zeroAllButtonText);
    AddPaletteButton(palette, 124, ButtonTop(), 274, setToR2Button, setToR2ButtonText);
    AddHints(palette, ButtonTop() + buttonRowHeight);
}

const TerrainRow* MoveCostOfShowBox(int32_t item)
{
    for (const TerrainRow& moveCost : MoveCosts()) {
        if (moveCost.shown.item == item) {
            return &moveCost;
        }
    }
    return nullptr;
}

void Open(WindowPtr palette)
{
    editing.moveCostTool = clearTool;
    editing.selectionRect = {};
    SetItemState(palette, clearTool, 0, 1);
    for (const TerrainRow& moveCost : MoveCosts()) {
        SetItemState(palette, moveCost.shown.item, 0, *ShowFlagOf(moveCost));
    }
    SetItemState(palette, solidBrushBox + editing.brushStyle, 0, 1);
}

bool HasTool()
{
    return editing.moveCostTool > noMoveCostTool;
}

void SelectTool(WindowPtr palette, const TerrainRow& clicked)
{
    ToggleTool(palette, moveCostTerrain, clicked.tool);
    if (editing.moveCostTool == clicked.tool) {
        editing.moveCostTool = noMoveCostTool;
    } else {
        editing.moveCostTool = clicked.tool;
        *ShowFlagOf(clicked) = 1;
        SetItemState(palette, clicked.shown.item, 0, 1);
    }
    RefreshAnalysis();
    InvalidateMapRect(nullptr);
}

void SwitchShow(WindowPtr palette, const TerrainRow& moveCost)
{
    int16_t* flag = ShowFlagOf(moveCost);
    *flag = *flag == 0 ? 1 : 0;
    SetItemState(palette, moveCost.shown.item, 0, *flag);
    InvalidateMapRect(nullptr);
}

void SelectBrush(WindowPtr palette, int32_t clicked)
{
    ClearGroup(palette, solidBrushBox, frameBrushBox);
    SetItemState(palette, clicked, 0, 1);
    editing.brushStyle = static_cast<int16_t>(clicked - solidBrushBox);
    InvalidateMapRect(nullptr);
}

void Hit(WindowPtr palette, int32_t itemID)
{
    if (const TerrainRow* tool = MoveCostOfTool(itemID); tool != nullptr) {
        SelectTool(palette, *tool);
    } else if (const TerrainRow* shown = MoveCostOfShowBox(itemID); shown != nullptr) {
        SwitchShow(palette, *shown);
    } else if (itemID >= solidBrushBox && itemID <= frameBrushBox) {
        SelectBrush(palette, itemID);
    } else if (itemID == zeroAllButton) {
        ZeroAllMoveCosts();
        RefreshAnalysis();
        InvalidateMapRect(nullptr);
    } else if (itemID == setToR2Button) {
        SetWoodsAndTownsToR2();
        InvalidateMapRect(nullptr);
    }
}

void Close()
{
    editing.moveCostTool = noMoveCostTool;
}

} // namespace

void RunMoveCostPalette()
{
    const Palette palette = {.width = width,
                             .height = ButtonTop() + buttonRowHeight + hintRowHeight + bottomMargin,
                             .title = moveCostsTitleText,
                             .addItems = AddItems,
                             .openFlag = &shell.moveCostPaletteOpen,
                             .open = Open,
                             .hasTool = HasTool,
                             .stroke = MoveCostStroke,
                             .hit = Hit,
                             .close = Close};
    RunPalette(&palette);
}
