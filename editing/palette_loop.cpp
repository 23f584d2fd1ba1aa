#include "editing/palette_loop.h"

#include "editing/editing.h"
#include "mapdata/map_record.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

constexpr int frameWithTitle = 1;
constexpr int wheelStep = 80;
constexpr int textListSize = 1000;
constexpr int maxPlainCharacter = 255;
constexpr int functionKeyCharacter = 16;

// Images of a check box in the interface bitmap, in the order in which an item takes them: states 0, 2, 1, 3.
constexpr Rect checkBoxImages[] = {
    {225, 344, 239, 362},
    {238, 344, 252, 362},
    {225, 325, 239, 343},
    {238, 325, 252, 343},
};

void GetText(char* text, int id)
{
    GetIndString(text, id / textListSize * textListSize, id % textListSize);
}

void AddPaletteItem(WindowPtr window, const PaletteItemRow& row)
{
    char text[textBufferSize];
    GetText(text, row.textID);
    const Rect place = {row.top, row.left, row.bottom, row.right};
    const Rect rects[] = {place, checkBoxImages[0], checkBoxImages[1], checkBoxImages[2], checkBoxImages[3]};
    switch (row.kind) {
    case checkBoxItem:
        AddDialogItem(window, 5, rects, text, 0, 0, 1, 0, checkBoxItem, row.itemID, stylePlain, 10);
        break;
    case pushButtonItem:
        AddPushButton(window, row.left, row.top, row.right, row.bottom, text, row.itemID);
        break;
    default:
        AddDialogItem(window, 1, rects, text, 0, 0, 1, colours.paleYellow, row.kind, row.itemID, styleBold, 10);
        break;
    }
}

WindowPtr CreatePalette(const Palette* palette)
{
    const WindowPtr window =
        NewMockDialog(frameWithTitle, palette->width, palette->height, "", &editing.palettePosition);
    if (window == nullptr) {
        return nullptr;
    }
    char title[textBufferSize];
    GetText(title, palette->titleID);
    AddDialogItem(window, 0, nullptr, "", 0, 0, 1, 0, closeBoxItem, 0, 0, 0);
    AddDialogItem(window, 0, nullptr, "", 0, 0, 1, 0, rightTitleBoxItem, 0, 0, 0);
    AddDialogItem(window, 0, nullptr, title, 0, 0, 1, 0, titleBarItem, 0, 0, 0);
    for (int i = 0; i < palette->itemCount; i++) {
        AddPaletteItem(window, palette->items[i]);
    }
    return window;
}

void DragPalette(WindowPtr window)
{
    DragWindow(window, currentEvent.where, &shell.screenRect);
    DrawMockDialog(window, true);
    PaintMapWindow();
    Rect frame;
    GetWindowFrameRect(window, &frame);
    SetPt(&editing.palettePosition, frame.left, frame.top);
}

void HandlePaletteKey()
{
    const uint32_t message = static_cast<uint32_t>(currentEvent.message);
    if (!HandleMapKey(message) && (message > maxPlainCharacter || (message & 0xFF) == functionKeyCharacter)) {
        DoFunctionKey(message);
    }
}

// Acts on what a step reported; false closes the palette.
bool HandleStep(const Palette* palette, WindowPtr window, int32_t itemID)
{
    switch (itemID) {
    case okItemID:
        return false;
    case mapClickCode:
        if (palette->hasTool()) {
            palette->stroke(window);
        } else if (!HandleContentClick()) {
            SystemBeep();
        }
        break;
    case mapUpdateCode:
        PaintMapWindow();
        break;
    case keyCode:
        HandlePaletteKey();
        break;
    case dragCode:
        DragPalette(window);
        break;
    case wheelDownCode:
        ScrollMap(1, 0, wheelStep);
        break;
    case wheelUpCode:
        ScrollMap(1, 0, -wheelStep);
        break;
    default:
        if (itemID > 0) {
            palette->hit(window, itemID);
        }
        break;
    }
    return true;
}

void ClosePalette(const Palette* palette, WindowPtr window, WindowPtr savedPort)
{
    *palette->openFlag = 0;
    palette->close();
    DisposeMockDialog(window);
    SetPort(savedPort);
    InvalidateMapRect(nullptr);
    ClearStatusText();
    PaintMapWindow();
    AdjustMenus();
}

} // namespace

void RunPalette(const Palette* palette)
{
    WindowPtr savedPort;
    GetPort(&savedPort);
    const WindowPtr window = CreatePalette(palette);
    if (window == nullptr) {
        return;
    }
    palette->open(window);
    ShowWindowInactive(window);
    DrawMockDialog(window, false);
    SetPort(shell.mapWindow);
    currentMap.mapModified = 1;
    *palette->openFlag = 1;
    AdjustMenus();
    InvalidateMapRect(nullptr);

    bool isOpen = true;
    while (isOpen && !shell.quitRequested) {
        int32_t itemHit;
        int32_t itemID;
        ModalDialogStep(window, &itemHit, &itemID, nullptr);
        if (itemHit != 0) {
            isOpen = HandleStep(palette, window, itemID);
        }
        UpdateCursorReadout();
    }
    ClosePalette(palette, window, savedPort);
}

int ToggleInGroup(WindowPtr palette, int32_t first, int32_t last, int32_t clicked)
{
    const bool wasOn = ItemStateIs(palette, clicked, 0, 1);
    ClearGroup(palette, first, last);
    SetItemState(palette, clicked, 0, wasOn ? 0 : 1);
    return wasOn ? 0 : 1;
}

void ClearGroup(WindowPtr palette, int32_t first, int32_t last)
{
    for (int32_t item = first; item <= last; item++) {
        SetItemState(palette, item, 0, 0);
    }
}

void RefreshAnalysis()
{
    if (view.terrainAnalysisOn) {
        RenderTerrainAnalysis();
    }
}
