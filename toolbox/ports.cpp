#include "toolbox/conversions.h"
#include "toolbox/device_context.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

void SetPort(WindowPtr port)
{
    currentPort = port;
}

void GetPort(WindowPtr* port)
{
    *port = currentPort;
}

// ---- a port used for a while ----

SavedPort UsePort(WindowPtr port)
{
    const SavedPort saved = {currentPort};
    currentPort = port;
    return saved;
}

void RestorePort(const SavedPort& saved)
{
    currentPort = saved.previous;
}

SavedDrawing BeginDrawing(WindowPtr port)
{
    SavedDrawing saved = {};
    saved.current = UsePort(port);
    saved.port = port;
    saved.textColour = GetTextColor(port->dc);
    saved.textBackColour = GetBkColor(port->dc);
    saved.foreColour = port->foreColour;
    saved.backColour = port->backColour;
    saved.fontNumber = port->fontNumber;
    saved.fontSize = port->fontSize;
    saved.fontStyle = port->fontStyle;
    // With the initial objects selected, what is drawn with meanwhile never deletes the saved ones.
    saved.pen = SelectObject(port->dc, port->initialPen);
    saved.font = SelectObject(port->dc, port->initialFont);
    return saved;
}

void EndDrawing(const SavedDrawing& saved)
{
    const WindowPtr port = saved.port;
    ReplaceObject(port->dc, saved.pen, port->initialPen);
    ReplaceObject(port->dc, saved.font, port->initialFont);
    SetTextColor(port->dc, saved.textColour);
    SetBkColor(port->dc, saved.textBackColour);
    port->foreColour = saved.foreColour;
    port->backColour = saved.backColour;
    port->fontNumber = saved.fontNumber;
    port->fontSize = saved.fontSize;
    port->fontStyle = saved.fontStyle;
    RestorePort(saved.current);
}

// ---- coordinates ----

namespace {

HWND CurrentWindow()
{
    return currentPort != nullptr ? currentPort->window : nullptr;
}

} // namespace

void GlobalToLocal(Point* point)
{
    POINT position = PlatformPoint(*point);
    MapWindowPoints(HWND_DESKTOP, CurrentWindow(), &position, 1);
    if (currentPort != nullptr && currentPort == shell.mapWindow) {
        DPtoLP(shell.mapWindowDC, &position, 1);
    }
    *point = PointFrom(position);
}

void LocalToGlobal(Point* point)
{
    POINT position = PlatformPoint(*point);
    if (CurrentWindow() != nullptr) {
        ClientToScreen(CurrentWindow(), &position);
    }
    *point = PointFrom(position);
}

void GetMouse(Point* point)
{
    POINT position = {};
    GetCursorPos(&position);
    *point = PointFrom(position);
    GlobalToLocal(point);
}

namespace {

// Moves the device context's origin so that the window's top-left client pixel is (h, v). False when it is there.
bool ShiftOrigin(HWND window, HDC dc, int h, int v)
{
    const RECT area = LogicalClientRect(window, dc);
    if (area.left == h && area.top == v) {
        return false;
    }
    OffsetWindowOrgEx(dc, h - area.left, v - area.top, nullptr);
    return true;
}

} // namespace

void SetOrigin(int h, int v)
{
    if (CurrentWindow() != nullptr && currentPort->dc != nullptr) {
        if (ShiftOrigin(currentPort->window, currentPort->dc, h, v)) {
            RefreshContentRect(currentPort);
        }
        return;
    }
    if (const HWND foreground = GetForegroundWindow()) {
        const HDC dc = GetDC(foreground);
        ShiftOrigin(foreground, dc, h, v);
        ReleaseDC(foreground, dc);
    }
}

void RefreshContentRect(WindowPtr window)
{
    window->contentRect = RectFrom(LogicalClientRect(window->window, window->dc));
    window->portRect = window->contentRect;
}

// ---- records ----

WindowPtr NewPortRecord()
{
    const HGLOBAL block = GlobalAlloc(GHND, sizeof(PortRecord));
    if (block == nullptr) {
        return nullptr;
    }
    const auto port = static_cast<WindowPtr>(GlobalLock(block));
    if (port == nullptr) {
        GlobalFree(block);
    }
    return port;
}

void FreePortRecord(WindowPtr port)
{
    if (port == nullptr) {
        return;
    }
    if (currentPort == port) {
        currentPort = port != shell.mapWindow ? shell.mapWindow : nullptr;
    }
    if (const HGLOBAL block = GlobalHandle(port)) {
        GlobalUnlock(block);
        GlobalFree(block);
    }
}

void PrepareWindowPort(WindowPtr port, HWND window)
{
    constexpr COLORREF defaultForeground = PALETTERGB(0, 0, 0);
    constexpr COLORREF defaultBackground = PALETTERGB(255, 255, 255);
    constexpr int defaultFontSize = 10;

    port->window = window;
    SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(port));
    port->dc = GetDC(window);
    SetTextAlign(port->dc, TA_BASELINE | TA_LEFT | TA_NOUPDATECP);
    port->foreColour = defaultForeground;
    port->backColour = defaultBackground;
    SetTextColor(port->dc, defaultForeground);
    SetBkColor(port->dc, defaultBackground);
    port->initialPalette = static_cast<HPALETTE>(GetCurrentObject(port->dc, OBJ_PAL));
    port->initialFont = static_cast<HFONT>(GetCurrentObject(port->dc, OBJ_FONT));
    port->initialPen = static_cast<HPEN>(GetCurrentObject(port->dc, OBJ_PEN));
    if (const HFONT font = NewFont(nullptr, fontArial, defaultFontSize, stylePlain)) {
        SelectObject(port->dc, font);
        port->fontNumber = fontArial;
        port->fontSize = defaultFontSize;
        port->fontStyle = stylePlain;
    }
    if (shell.programPalette != nullptr) {
        SelectPalette(port->dc, shell.programPalette, FALSE);
        RealizePalette(port->dc);
    }
    RefreshContentRect(port);
}

void DetachWindowPort(WindowPtr port)
{
    if (port->dc != nullptr) {
        if (port->initialPalette != nullptr) {
            SelectPalette(port->dc, port->initialPalette, FALSE);
            RealizePalette(port->dc);
        }
        PutBackObject(port->dc, port->initialFont);
        PutBackObject(port->dc, port->initialPen);
        ReleaseDC(port->window, port->dc);
    }
    if (port->window != nullptr) {
        SetWindowLongPtrA(port->window, 0, 0);
    }
    port->window = nullptr;
    port->dc = nullptr;
}

void ReleaseWindowPort(WindowPtr port)
{
    if (port != nullptr) {
        DetachWindowPort(port);
        FreePortRecord(port);
    }
}
