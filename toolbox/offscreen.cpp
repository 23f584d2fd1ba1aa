#include "toolbox/offscreen.h"

#include "toolbox/device_context.h"
#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

// ---- making and taking apart ----

namespace {

void CopyPortSettings(WindowPtr world)
{
    if (currentPort != nullptr) {
        world->foreColour = currentPort->foreColour;
        world->backColour = currentPort->backColour;
        world->fontNumber = currentPort->fontNumber;
        world->fontSize = currentPort->fontSize;
        world->fontStyle = currentPort->fontStyle;
    }
}

bool AttachMemoryContext(WindowPtr world)
{
    world->dc = CreateCompatibleDC(shell.mapWindowDC);
    if (world->dc == nullptr) {
        return false;
    }
    SetTextAlign(world->dc, TA_BASELINE | TA_LEFT | TA_NOUPDATECP);
    world->initialPen = static_cast<HPEN>(GetCurrentObject(world->dc, OBJ_PEN));
    world->initialPalette = static_cast<HPALETTE>(GetCurrentObject(world->dc, OBJ_PAL));
    world->initialFont = static_cast<HFONT>(GetCurrentObject(world->dc, OBJ_FONT));
    const int width = world->portRect.right - world->portRect.left;
    const int height = world->portRect.bottom - world->portRect.top;
    if (width > 0 && height > 0) {
        world->offscreenBitmap = CreateCompatibleBitmap(shell.mapWindowDC, width, height);
    }
    if (world->offscreenBitmap == nullptr) {
        DeleteDC(world->dc);
        return false;
    }
    world->displacedBitmap = static_cast<HBITMAP>(SelectObject(world->dc, world->offscreenBitmap));
    return true;
}

} // namespace

int16_t NewGWorld(WindowPtr* world, int, const Rect* bounds, void*, void*, uint32_t)
{
    *world = nullptr;
    const WindowPtr surface = NewPortRecord();
    if (surface == nullptr) {
        return 1;
    }
    surface->portRect = *bounds;
    surface->contentRect = *bounds;
    CopyPortSettings(surface);
    if (!AttachMemoryContext(surface)) {
        FreePortRecord(surface);
        return 1;
    }
    *world = surface;
    return 0;
}

void DisposeGWorld(WindowPtr world)
{
    if (world == nullptr) {
        return;
    }
    PutBackObject(world->dc, world->initialPen);
    PutBackObject(world->dc, world->initialFont);
    SelectObject(world->dc, world->displacedBitmap);
    DeleteObject(world->offscreenBitmap);
    DeleteDC(world->dc);
    FreePortRecord(world);
}

// ---- use ----

void GetGWorld(WindowPtr* port, uintptr_t* device)
{
    *port = currentPort;
    *device = 0;
}

void SetGWorld(WindowPtr port, uintptr_t)
{
    if (port != nullptr) {
        SetPort(port);
    }
}

void CopyBits(HDC sourceDC, HDC destinationDC, const Rect* source, const Rect* destination, int, HRGN)
{
    BitBlt(destinationDC, destination->left, destination->top, destination->right - destination->left,
           destination->bottom - destination->top, sourceDC, source->left, source->top, SRCCOPY);
}

void CopyFromInterfaceBitmap(WindowPtr port, const Rect* source, const Rect* destination)
{
    CopyBits(shell.interfaceDC, port->dc, source, destination, 0, nullptr);
}
