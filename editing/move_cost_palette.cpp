#include "editing/editing.h"
#include "editing/palette_loop.h"
#include "editing/palettes.h"
#include "editing/stroke.h"
#include "editing/whole_map.h"
#include "toolbox/shell_door.h"

#include <iterator>

namespace {

enum MoveCostItem {
    showClearBox = 207,
    showWaterBox = 212,
    solidBrushBox = 213,
    frameBrushBox = 215,
    zeroAllButton = 216,
    setToR2Button = 217,
};
constexpr int toolCount = 6;

const PaletteItemRow items[] = {
    {0, staticTextItem, 10, 25, 275, 41, 15182},
    {clearTool, checkBoxItem, 10, 43, 28, 57, 15163},
    {rough1Tool, checkBoxItem, 10, 59, 28, 73, 15164},
    {rough2Tool, checkBoxItem, 10, 75, 28, 89, 15165},
    {rough3Tool, checkBoxItem, 10, 91, 28, 105, 15166},
    {rough4Tool, checkBoxItem, 10, 107, 28, 121, 15167},
    {waterTool, checkBoxItem, 10, 123, 28, 137, 15168},
    {0, staticTextItem, 80, 25, 275, 41, 15183},
    {207, checkBoxItem, 80, 43, 98, 57, 15176},
    {208, checkBoxItem, 80, 59, 98, 73, 15177},
    {209, checkBoxItem, 80, 75, 98, 89, 15178},
    {210, checkBoxItem, 80, 91, 98, 105, 15179},
    {211, checkBoxItem, 80, 107, 98, 121, 15180},
    {212, checkBoxItem, 80, 123, 98, 137, 15181},
    {0, staticTextItem, 180, 25, 275, 41, 15184},
    {213, checkBoxItem, 180, 43, 198, 57, 15185},
    {214, checkBoxItem, 180, 59, 198, 73, 15186},
    {215, checkBoxItem, 180, 75, 198, 89, 15187},
    {zeroAllButton, pushButtonItem, 10, 145, 120, 165, 15172},
    {setToR2Button, pushButtonItem, 124, 145, 274, 165, 15169},
    {0, staticTextItem, 10, 169, 275, 185, 15188},
    {0, staticTextItem, 10, 187, 275, 203, 15189},
};

// The show flag of each class, in the order of the tools and of their show boxes.
int16_t* const showFlags[toolCount] = {
    &editing.showClear,  &editing.showRough1, &editing.showRough2,
    &editing.showRough3, &editing.showRough4, &editing.showWater,
};

void Open(WindowPtr palette)
{
    editing.moveCostTool = clearTool;
    editing.selectionRect = {};
    SetItemState(palette, clearTool, 0, 1);
    for (int i = 0; i < toolCount; i++) {
        SetItemState(palette, showClearBox + i, 0, *showFlags[i]);
    }
    SetItemState(palette, solidBrushBox + editing.brushStyle, 0, 1);
}

bool HasTool()
{
    return editing.moveCostTool > noMoveCostTool;
}

void SelectTool(WindowPtr palette, int32_t clicked)
{
    ToggleInGroup(palette, clearTool, waterTool, clicked);
    if (editing.moveCostTool == clicked) {
        editing.moveCostTool = noMoveCostTool;
    } else {
        const int index = clicked - clearTool;
        editing.moveCostTool = clicked;
        *showFlags[index] = 1;
        SetItemState(palette, showClearBox + index, 0, 1);
    }
    RefreshAnalysis();
    InvalidateMapRect(nullptr);
}

void SwitchShow(WindowPtr palette, int32_t clicked)
{
    int16_t* flag = showFlags[clicked - showClearBox];
    *flag = *flag == 0 ? 1 : 0;
    SetItemState(palette, clicked, 0, *flag);
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
    if (itemID >= clearTool && itemID <= waterTool) {
        SelectTool(palette, itemID);
    } else if (itemID >= showClearBox && itemID <= showWaterBox) {
        SwitchShow(palette, itemID);
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
    static const Palette palette = {285,
                                    210,
                                    15170,
                                    items,
                                    static_cast<int>(std::size(items)),
                                    &shell.moveCostPaletteOpen,
                                    Open,
                                    HasTool,
                                    MoveCostStroke,
                                    Hit,
                                    Close};
    RunPalette(&palette);
}
