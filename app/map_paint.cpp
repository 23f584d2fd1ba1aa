#include "app/map_window.h"
#include "editing/overlay.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <algorithm>

namespace {

constexpr int statusTextInset = 15; // from the strip's top-left corner to the baseline start
// The grow box picture in the interface bitmap; it covers the strip's right end and as much above it.
constexpr Rect growBoxImage = {558, 642, 594, 660};
constexpr int growBoxImageWidth = 18;
constexpr int growBoxImageHeight = 36;

Rect StatusStrip()
{
    const Rect& port = shell.mapWindow->portRect;
    return {static_cast<int16_t>(port.bottom - statusStripHeight), port.left, port.bottom, port.right};
}

// The map image begins at map point (0, 0), wherever a damaged record says that the map does.
Rect MapImageRect()
{
    Rect image;
    SetRect(&image, 0, 0, MapWidth(), MapHeight());
    return image;
}

void FillBeyondMap()
{
    const Rect& shown = view.viewRect;
    const Rect map = MapImageRect();
    if (shown.right > map.right) {
        const Rect right = {shown.top, std::max(shown.left, map.right), shown.bottom, shown.right};
        FillRectColor(&right, shell.windowBackground);
    }
    if (shown.bottom > map.bottom) {
        const Rect below = {std::max(shown.top, map.bottom), shown.left, shown.bottom, shown.right};
        FillRectColor(&below, shell.windowBackground);
    }
}

void FillMapImage(COLORREF colour)
{
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(view.mapImage);
    const Rect image = MapImageRect();
    FillRectColor(&image, colour);
    SetPort(savedPort);
}

} // namespace

void PaintMapWindow()
{
    if (!MapWindowExists()) {
        return;
    }
    if (shell.moveCostPaletteOpen) {
        PaintMoveCostOverlay();
        return;
    }
    if (shell.featuresPaletteOpen) {
        PaintFeaturesOverlay();
        return;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    UpdateWindow(view.verticalScrollBar);
    UpdateWindow(view.horizontalScrollBar);
    BeginUpdate(shell.mapWindow);
    if (shell.mapShown) {
        CopyMapImageToView();
        DrawStatusStrip();
    } else {
        FillRectColor(&shell.mapWindow->portRect, shell.windowBackground);
    }
    EndUpdate(shell.mapWindow);
    SetPort(savedPort);
}

// The window keeps its picture, so one copy straight from the map image composes it without flicker.
void CopyMapImageToView()
{
    if (view.mapImage == nullptr) {
        FillRectColor(&view.viewRect, shell.windowBackground);
        return;
    }
    Rect shown = view.viewRect;
    const Rect image = MapImageRect();
    if (ClipToBounds(&shown, &image)) {
        CopyBits(view.mapImage->dc, shell.mapWindowDC, &shown, &shown, 0, nullptr);
    }
    FillBeyondMap();
}

void DrawStatusStrip()
{
    if (!MapWindowExists()) {
        return;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    const WindowPtr window = shell.mapWindow;
    SetPort(window);

    const Rect strip = StatusStrip();
    FillRectColor(&strip, colours.grey192);
    const Rect growBox = {static_cast<int16_t>(strip.bottom - growBoxImageHeight),
                          static_cast<int16_t>(strip.right - growBoxImageWidth), strip.bottom, strip.right};
    CopyFromInterfaceBitmap(window, &growBoxImage, &growBox);
    if (view.statusText[0] != 0) {
        COLORREF textColour;
        COLORREF backColour;
        GetTextForeColor(&textColour);
        GetTextBackColor(&backColour);
        const COLORREF foreColour = window->foreColour;
        const int32_t number = window->fontNumber;
        const int32_t size = window->fontSize;
        const int32_t style = window->fontStyle;
        SetPortFont(fontArial, 10, stylePlain);
        TextForeColor(colours.black);
        MoveTo(strip.left + statusTextInset, strip.top + statusTextInset);
        DrawString(view.statusText);
        SetPortFont(number, size, style);
        SetTextForeColor(&textColour);
        SetTextBackColor(&backColour);
        window->foreColour = foreColour;
    }
    ValidRect(&strip);
    SetPort(savedPort);
}

void SetStatusText(int redraw, int list, int index, const char* text)
{
    if ((text == nullptr || text[0] == 0) && list != 0) {
        GetIndString(view.statusText, list, index);
    } else {
        CopyText(text == nullptr ? "" : text, view.statusText);
    }
    if (redraw) {
        DrawStatusStrip();
    } else {
        InvalidateStatusStrip();
    }
}

void ClearStatusText()
{
    view.statusText[0] = 0;
    InvalidateStatusStrip();
}

void InvalidateStatusStrip()
{
    if (MapWindowExists()) {
        const Rect strip = StatusStrip();
        InvalidateMapRect(&strip);
    }
}

void InvalidateMapRect(const Rect* rect)
{
    if (MapWindowExists()) {
        InvalidateWindowRect(shell.mapWindow, rect);
    }
}

void InvalidateWindowRect(WindowPtr window, const Rect* rect)
{
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(window);
    InvalRect(rect);
    SetPort(savedPort);
}

void ValidateMapRect(const Rect* rect)
{
    if (!MapWindowExists()) {
        return;
    }
    WindowPtr savedPort;
    GetPort(&savedPort);
    SetPort(shell.mapWindow);
    ValidRect(rect);
    SetPort(savedPort);
}

int16_t LoadMapArt()
{
    if (view.terrainAnalysisOn) {
        RenderTerrainAnalysis();
        return 0;
    }
    char path[textBufferSize];
    if (view.mapImage == nullptr || !FullPath(&currentMap.artFileSpec, path)) {
        return 1;
    }
    const HBITMAP art =
        static_cast<HBITMAP>(LoadImageA(nullptr, path, IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION));
    if (art == nullptr) {
        return 1;
    }
    BITMAP size = {};
    GetObjectA(art, sizeof size, &size);
    if (size.bmWidth < MapWidth() || size.bmHeight < MapHeight()) {
        FillMapImage(shell.windowBackground);
    }
    const HDC source = CreateCompatibleDC(shell.mapWindowDC);
    const HGDIOBJ displaced = SelectObject(source, art);
    BitBlt(view.mapImage->dc, 0, 0, size.bmWidth, size.bmHeight, source, 0, 0, SRCCOPY);
    SelectObject(source, displaced);
    DeleteDC(source);
    DeleteObject(art);
    shell.mapShown = 1;
    return 0;
}
