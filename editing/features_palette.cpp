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

// The colours of the marks, in the order of their boxes from blackGridBox on.
struct GridColour {
    COLORREF Colours::*colour;
    TextID text;
};
constexpr GridColour gridColours[] = {
    {&Colours::black, blackGridBoxText},
    {&Colours::red, redGridBoxText},
    {&Colours::purple, purpleGridBoxText},
    {&Colours::green, greenGridBoxText},
};

constexpr int width = 300;
constexpr int gridLeft = 140;
constexpr int showAllLeft = 188;
constexpr int headingHeight = 14;
constexpr int groupGap = 3;
constexpr int bottomMargin = 22; // from the last hint's top

int RowsHeight(TerrainGroup group)
{
    return static_cast<int>(TerrainRows(group).size()) * paletteRowStep;
}

int ButtonTop()
{
    return paletteTop + 2 * (paletteRowStep + groupGap) + RowsHeight(featureTerrain) + RowsHeight(noGoTerrain);
}

void AddItems(WindowPtr palette)
{
    AddPaletteText(palette, paletteMargin, paletteTop, headingHeight, primaryTerrainHeadingText);
    int top = paletteTop + paletteRowStep;
    int gridTop = top;
    top = AddToolBoxes(palette, featureTerrain, top) + groupGap;
    AddPaletteBox(palette, gridLeft, gridTop, solidGridBox, solidGridBoxText);
    for (int i = 0; i < static_cast<int>(std::size(gridColours)); i++) {
        gridTop += paletteRowStep;
        AddPaletteBox(palette, gridLeft, gridTop, blackGridBox + i, gridColours[i].text);
    }
    AddPaletteText(palette, paletteMargin, top, headingHeight, impassableTerrainHeadingText);
    top += paletteRowStep;
    AddToolBoxes(palette, noGoTerrain, top);
    AddPaletteBox(palette, showAllLeft, top, showAllNoGoBox, showAllNoGoBoxText);
    AddPaletteButton(palette, paletteMargin, ButtonTop(), 130, removeAllButton, removeAllButtonText);
    AddHints(palette, ButtonTop() + buttonRowHeight);
}

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
        ClearTools(palette, noGoTerrain);
    }
    editing.featureTool = ToggleTool(palette, featureTerrain, clicked) ? clicked : noFeatureTool;
    RefreshAnalysis();
    InvalidateMapRect(nullptr);
}

void SelectNoGo(WindowPtr palette, int32_t clicked)
{
    ClearTools(palette, featureTerrain);
    if (ToggleTool(palette, noGoTerrain, clicked)) {
        editing.featureTool = clicked;
        editing.noGoLevel = static_cast<int16_t>(NoGoLevelOf(FeatureOfTool(clicked)->value));
    } else {
        editing.featureTool = noFeatureTool;
        editing.noGoLevel = 0;
    }
    RefreshAnalysis();
    InvalidateMapRect(nullptr);
}

void SelectGridColour(WindowPtr palette, int32_t clicked)
{
    if (ToggleInGroup(palette, blackGridBox, greenGridBox, clicked)) {
        editing.gridColourItem = clicked;
        editing.gridColour = colours.*gridColours[clicked - blackGridBox].colour;
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
    const TerrainRow* tool = FeatureOfTool(itemID);
    if (tool != nullptr && tool->group == featureTerrain) {
        SelectFeature(palette, itemID);
    } else if (tool != nullptr) {
        SelectNoGo(palette, itemID);
    } else if (itemID == solidGridBox) {
        SwitchSolidGrid(palette);
    } else if (itemID >= blackGridBox && itemID <= greenGridBox) {
        SelectGridColour(palette, itemID);
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
    const Palette palette = {.width = width,
                             .height = ButtonTop() + buttonRowHeight + hintRowHeight + bottomMargin,
                             .title = featuresTitleText,
                             .addItems = AddItems,
                             .openFlag = &shell.featuresPaletteOpen,
                             .open = Open,
                             .hasTool = HasTool,
                             .stroke = FeaturesStroke,
                             .hit = Hit,
                             .close = Close};
    RunPalette(&palette);
}
