#include "editing/editing.h"
#include "editing/palette_loop.h"
#include "editing/palettes.h"
#include "editing/stroke.h"
#include "editing/whole_map.h"
#include "toolbox/shell_door.h"

#include <iterator>

namespace {

enum FeaturesItem {
    solidGridBox = 206,
    blackGridBox = 207,
    redGridBox = 208,
    purpleGridBox = 209,
    greenGridBox = 210,
    removeAllButton = 214,
    showAllNoGoBox = 215,
};

const PaletteItemRow items[] = {
    {0, staticTextItem, 10, 25, 290, 39, 8028},
    {hiLowTool, checkBoxItem, 10, 41, 28, 55, 15142},
    {woodsTool, checkBoxItem, 10, 57, 28, 71, 15143},
    {townTool, checkBoxItem, 10, 73, 28, 87, 15144},
    {roadTool, checkBoxItem, 10, 89, 28, 103, 15145},
    {miscLOSTool, checkBoxItem, 10, 105, 28, 119, 15146},
    {solidGridBox, checkBoxItem, 140, 41, 158, 55, 15147},
    {blackGridBox, checkBoxItem, 140, 57, 158, 71, 15154},
    {redGridBox, checkBoxItem, 140, 73, 158, 87, 15157},
    {purpleGridBox, checkBoxItem, 140, 89, 158, 103, 15155},
    {greenGridBox, checkBoxItem, 140, 105, 158, 119, 15156},
    {0, staticTextItem, 10, 124, 290, 138, 8029},
    {noGo1Tool, checkBoxItem, 10, 140, 28, 154, 8030},
    {showAllNoGoBox, checkBoxItem, 188, 140, 206, 154, 8033},
    {noGo2Tool, checkBoxItem, 10, 156, 28, 170, 8031},
    {noGo3Tool, checkBoxItem, 10, 172, 28, 186, 8032},
    {removeAllButton, pushButtonItem, 10, 191, 130, 211, 15151},
    {0, staticTextItem, 10, 215, 290, 231, 15188},
    {0, staticTextItem, 10, 233, 290, 249, 15189},
};

void Open(WindowPtr palette)
{
    editing.showAllNoGo = 0;
    editing.noGoLevel = 0;
    editing.featureTool = hiLowTool;
    editing.selectionRect = {};
    SetItemState(palette, hiLowTool, 0, 1);
    SetItemState(palette, solidGridBox, 0, editing.solidGrid ? 1 : 0);
    if (editing.gridColourItem != 0) {
        SetItemState(palette, editing.gridColourItem, 0, 1);
    }
}

bool HasTool()
{
    return editing.featureTool != noFeatureTool;
}

void SelectFeature(WindowPtr palette, int32_t clicked)
{
    if (editing.noGoLevel != 0) {
        editing.noGoLevel = 0;
        ClearGroup(palette, noGo1Tool, noGo3Tool);
    }
    editing.featureTool = ToggleInGroup(palette, hiLowTool, miscLOSTool, clicked) ? clicked : noFeatureTool;
    RefreshAnalysis();
    InvalidateMapRect(nullptr);
}

void SelectNoGo(WindowPtr palette, int32_t clicked)
{
    if (editing.featureTool >= hiLowTool && editing.featureTool <= miscLOSTool) {
        ClearGroup(palette, hiLowTool, miscLOSTool);
    }
    if (ToggleInGroup(palette, noGo1Tool, noGo3Tool, clicked)) {
        editing.featureTool = clicked;
        editing.noGoLevel = clicked == noGo1Tool ? 1 : clicked == noGo2Tool ? 2 : 4;
    } else {
        editing.featureTool = noFeatureTool;
        editing.noGoLevel = 0;
    }
    RefreshAnalysis();
    InvalidateMapRect(nullptr);
}

void SelectGridColour(WindowPtr palette, int32_t clicked)
{
    const COLORREF gridColours[] = {colours.black, colours.red, colours.purple, colours.green};
    if (ToggleInGroup(palette, blackGridBox, greenGridBox, clicked)) {
        editing.gridColourItem = clicked;
        editing.gridColour = gridColours[clicked - blackGridBox];
    } else {
        editing.gridColourItem = 0;
        editing.gridColour = colours.white;
    }
    InvalidateMapRect(nullptr);
}

void SwitchSolidGrid(WindowPtr palette)
{
    ToggleItem(palette, solidGridBox, 0);
    editing.solidGrid = ItemStateIs(palette, solidGridBox, 0, 1);
    InvalidateMapRect(nullptr);
    PaintMapWindow();
}

void SwitchShowAllNoGo(WindowPtr palette)
{
    editing.showAllNoGo = !editing.showAllNoGo;
    SetItemState(palette, showAllNoGoBox, 0, static_cast<int>(editing.showAllNoGo));
    RefreshAnalysis();
    InvalidateMapRect(nullptr);
}

void Hit(WindowPtr palette, int32_t itemID)
{
    if (itemID >= hiLowTool && itemID <= miscLOSTool) {
        SelectFeature(palette, itemID);
    } else if (itemID == solidGridBox) {
        SwitchSolidGrid(palette);
    } else if (itemID >= blackGridBox && itemID <= greenGridBox) {
        SelectGridColour(palette, itemID);
    } else if (itemID >= noGo1Tool && itemID <= noGo3Tool) {
        SelectNoGo(palette, itemID);
    } else if (itemID == removeAllButton) {
        RemoveAllFeatures();
        RefreshAnalysis();
    } else if (itemID == showAllNoGoBox) {
        SwitchShowAllNoGo(palette);
    }
}

void Close()
{
    editing.showAllNoGo = 0;
    editing.noGoLevel = 0;
    editing.featureTool = noFeatureTool;
}

} // namespace

void RunFeaturesPalette()
{
    static const Palette palette = {300,
                                    255,
                                    15153,
                                    items,
                                    static_cast<int>(std::size(items)),
                                    &shell.featuresPaletteOpen,
                                    Open,
                                    HasTool,
                                    FeaturesStroke,
                                    Hit,
                                    Close};
    RunPalette(&palette);
}
