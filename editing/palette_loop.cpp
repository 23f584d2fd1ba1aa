#include "editing/palette_loop.h"

#include "editing/editing.h"
#include "mapdata/map_record.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

constexpr int frameWithTitle = 1;
constexpr int wheelStep = 80;
constexpr int maxPlainCharacter = 255;
constexpr int functionKeyCharacter = 16;
constexpr int checkBoxWidth = 18;
constexpr int checkBoxHeight = 14;
constexpr int buttonHeight = 20;

WindowPtr CreatePalette(const Palette* palette)
{
    const WindowPtr window =
        NewMockDialog(frameWithTitle, palette->width, palette->height, "", &editing.palettePosition);
    if (window == nullptr) {
        return nullptr;
    }
    char title[textBufferSize];
    GetText(title, palette->title);
    AddItem(window, {closeBoxItem});
    AddItem(window, {rightTitleBoxItem});
    AddItem(window, {.kind = titleBarItem, .text = title});
    palette->addItems(window);
    return window;
}

void DragPalette(WindowPtr window)
{
    DragWindow(window, currentEvent.where, &shell.screenRect);
    DrawMockDialog(window, true);
    PaintMapWindow();
    Rect frame;
    GetWindowFrameRect(window, &frame);
    editing.palettePosition = MakePoint(frame.left, frame.top);
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

void ClosePalette(const Palette* palette, WindowPtr window, const SavedPort& saved)
{
    *palette->openFlag = 0;
    palette->close();
    DisposeMockDialog(window);
    RestorePort(saved);
    InvalidateMapRect(nullptr);
    ClearStatusText();
    PaintMapWindow();
    AdjustMenus();
}

} // namespace

void RunPalette(const Palette* palette)
{
    const WindowPtr window = CreatePalette(palette);
    if (window == nullptr) {
        return;
    }
    palette->open(window);
    ShowWindowInactive(window);
    DrawMockDialog(window, false);
    const SavedPort saved = UsePort(shell.mapWindow);
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
    ClosePalette(palette, window, saved);
}

// ---- items ----

void AddPaletteBox(WindowPtr palette, int left, int top, int32_t itemID, TextID text)
{
    char label[textBufferSize];
    GetText(label, text);
    AddItem(palette, {checkBoxItem, MakeRect(left, top, left + checkBoxWidth, top + checkBoxHeight), label, itemID});
}

void AddPaletteButton(WindowPtr palette, int left, int top, int right, int32_t itemID, TextID text)
{
    char label[textBufferSize];
    GetText(label, text);
    AddItem(palette, {pushButtonItem, MakeRect(left, top, right, top + buttonHeight), label, itemID});
}

void AddPaletteText(WindowPtr palette, int left, int top, int height, TextID text)
{
    char words[textBufferSize];
    GetText(words, text);
    const int right = palette->portRect.right - paletteMargin;
    AddItem(palette, {staticTextItem, MakeRect(left, top, right, top + height), words});
}

int AddToolBoxes(WindowPtr palette, TerrainGroup group, int top)
{
    for (const TerrainRow& row : TerrainRows(group)) {
        AddPaletteBox(palette, paletteMargin, top, row.tool, row.toolText);
        top += paletteRowStep;
    }
    return top;
}

void AddHints(WindowPtr palette, int top)
{
    AddPaletteText(palette, paletteMargin, top, paletteRowStep, areaHintText);
    AddPaletteText(palette, paletteMargin, top + hintRowHeight, paletteRowStep, directionLockHintText);
}

// ---- groups ----

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

int ToggleTool(WindowPtr palette, TerrainGroup group, int32_t clicked)
{
    const bool wasOn = ItemStateIs(palette, clicked, 0, 1);
    ClearTools(palette, group);
    SetItemState(palette, clicked, 0, wasOn ? 0 : 1);
    return wasOn ? 0 : 1;
}

void ClearTools(WindowPtr palette, TerrainGroup group)
{
    for (const TerrainRow& row : TerrainRows(group)) {
        SetItemState(palette, row.tool, 0, 0);
    }
}

void RefreshAnalysis()
{
    if (view.terrainAnalysisOn) {
        ComposeMapImage();
    }
}
