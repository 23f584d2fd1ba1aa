#include "app/map_views.h"
#include "app/map_window.h"
#include "editing/overlay.h"
#include "mapdata/failure.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <algorithm>

namespace {

constexpr int statusTextInset = 15; // from the strip's top-left corner to the baseline start
// The grow box picture in the interface bitmap.
constexpr Rect growBoxImage = MakeRect(642, 558, 660, 594);

// The map image begins at map point (0, 0), wherever a damaged record says that the map does.
Rect MapImageRect()
{
    return MakeRect(0, 0, MapWidth(), MapHeight());
}

void DrawStatusText(const Rect& strip)
{
    const SavedDrawing saved = BeginDrawing(shell.mapWindow);
    SetPortFont(fontArial, 10, stylePlain);
    TextForeColor(colours.black);
    MoveTo(strip.left + statusTextInset, strip.top + statusTextInset);
    DrawString(view.statusText);
    EndDrawing(saved);
}

void FillBeyondMap()
{
    const Rect& shown = view.viewRect;
    const Rect map = MapImageRect();
    if (shown.right > map.right) {
        const Rect right = MakeRect(std::max(shown.left, map.right), shown.top, shown.right, shown.bottom);
        FillRectColor(&right, shell.windowBackground);
    }
    if (shown.bottom > map.bottom) {
        const Rect below = MakeRect(shown.left, std::max(shown.top, map.bottom), shown.right, shown.bottom);
        FillRectColor(&below, shell.windowBackground);
    }
}

void FillMapImage(COLORREF colour)
{
    const SavedPort saved = UsePort(view.mapImage);
    const Rect image = MapImageRect();
    FillRectColor(&image, colour);
    RestorePort(saved);
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
    const SavedPort saved = UsePort(shell.mapWindow);
    UpdateWindow(view.verticalScrollBar);
    UpdateWindow(view.horizontalScrollBar);
    BeginUpdate(shell.mapWindow);
    if (shell.mapShown) {
        CopyMapImageToView();
        DrawStatusStrip();
    } else {
        FillRectColor(&shell.mapWindow->portRect, shell.windowBackground);
        if (view.statusText[0] != 0) {
            DrawStatusStrip(); // of an attempt that failed
        }
    }
    EndUpdate(shell.mapWindow);
    RestorePort(saved);
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
    const SavedPort saved = UsePort(shell.mapWindow);
    const Rect strip = StatusStripRect();
    FillRectColor(&strip, colours.grey192);
    const Rect growBox = GrowBoxImageRect();
    CopyFromInterfaceBitmap(shell.mapWindow, &growBoxImage, &growBox);
    if (view.statusText[0] != 0) {
        DrawStatusText(strip);
    }
    ValidRect(&strip);
    RestorePort(saved);
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

void SetStatusText(int redraw, TextID text)
{
    SetStatusText(redraw, ListOf(text), IndexOf(text), nullptr);
}

void ClearStatusText()
{
    view.statusText[0] = 0;
    InvalidateStatusStrip();
}

void InvalidateStatusStrip()
{
    if (MapWindowExists()) {
        const Rect strip = StatusStripRect();
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
    const SavedPort saved = UsePort(window);
    InvalRect(rect);
    RestorePort(saved);
}

void ValidateMapRect(const Rect* rect)
{
    if (!MapWindowExists()) {
        return;
    }
    const SavedPort saved = UsePort(shell.mapWindow);
    ValidRect(rect);
    RestorePort(saved);
}

// ---- the map image ----

void RedrawMapImage()
{
    SetCursorById(waitCursor);
    if (ComposeMapImage() != 0) {
        TellFailure(artFailedText, GetLastError());
    }
    InitCursor();
    InvalidateMapRect(nullptr);
}

int16_t ComposeMapImage()
{
    const int16_t status = LoadMapArt();
    if (status == 0 && !view.terrainAnalysisOn) { // the analysis has its grid already
        RedrawUTMGridIfShown();
    }
    return status;
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
    const BOOL copied = source != nullptr && displaced != nullptr &&
                        BitBlt(view.mapImage->dc, 0, 0, size.bmWidth, size.bmHeight, source, 0, 0, SRCCOPY);
    SelectObject(source, displaced);
    DeleteDC(source);
    DeleteObject(art);
    if (!copied) {
        return 1;
    }
    shell.mapShown = 1;
    return 0;
}
