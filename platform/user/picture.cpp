// The retained picture of every window, its device context, and the points at which pictures reach the screen.
#include "platform/kernel/heap.h"
#include "platform/user/state.h"

#include <algorithm>
#include <cstring>

namespace {

// What a part of a window shows before the program has painted it: never black, never stale.
constexpr uint32_t unpaintedPixel = 0x00C0C0C0;

void PresentWindow(Window& window)
{
    RECT dirty = window.picture.dirty;
    if (!window.visible || (window.hostWindow == nullptr) || dirty.left >= dirty.right || dirty.top >= dirty.bottom) {
        return;
    }
    window.picture.dirty = {};
    HostRect part = {std::max(dirty.left, 0), std::max(dirty.top, 0), std::min(dirty.right, window.picture.width),
                     std::min(dirty.bottom, window.picture.height)};
    if (part.left < part.right && part.top < part.bottom) {
        host->present(window.hostWindow, &part);
    }
}

} // namespace

// Keeps the old content where both sizes have it; all of the old picture where there is no memory for the new one.
void ResizePicture(Window& window)
{
    if ((window.hostWindow == nullptr) ||
        ((window.picture.pixels != nullptr) && window.picture.width == window.width &&
         window.picture.height == window.height)) {
        return;
    }
    size_t width = static_cast<size_t>(window.width);
    size_t height = static_cast<size_t>(window.height);
    std::vector<uint32_t> pixels;
    if (!WithMemory([&] { pixels.assign(width * height, unpaintedPixel); })) {
        return;
    }
    size_t keptWidth = static_cast<size_t>(std::min(window.width, window.picture.width));
    int keptHeight = std::min(window.height, window.picture.height);
    for (int row = 0; row < keptHeight && keptWidth > 0; row++) {
        memcpy(pixels.data() + static_cast<size_t>(row) * width,
               window.picture.pixels + static_cast<ptrdiff_t>(row) * window.picture.stride,
               keptWidth * sizeof(uint32_t));
    }
    window.picture = {pixels.data(), window.width, window.height, window.width, {0, 0, window.width, window.height}};
    // The host reads the old pixels until it is told of the new ones.
    host->setPicture(window.hostWindow, pixels.data(), window.width, window.height, window.width);
    window.pixels = std::move(pixels);
}

HDC DCOfWindow(Window& window)
{
    if (window.dc == nullptr) {
        window.dc = CreateSurfaceDC(window.hostWindow != nullptr ? &window.picture : nullptr);
    }
    return window.dc;
}

void ReleasePicture(Window& window)
{
    if (window.dc != nullptr) {
        DeleteSurfaceDC(window.dc);
    }
    window.dc = nullptr;
    window.picture = {};
    window.pixels.clear();
}

void PresentAll()
{
    for (const std::unique_ptr<Window>& window : user.windows) {
        PresentWindow(*window);
    }
    ShowPendingOutline();
    user.lastPresent = host->ticks();
}

HDC WINAPI GetDC(HWND handle)
{
    if (handle == nullptr) {
        return ScreenDC();
    }
    Window* window = Lookup(handle);
    return window != nullptr ? DCOfWindow(*window) : nullptr;
}

// Every window keeps its device context, so nothing is given back.
int WINAPI ReleaseDC(HWND handle, HDC dc)
{
    if (dc == nullptr) {
        return 0;
    }
    if (handle == nullptr) {
        return dc == ScreenDC();
    }
    const Window* window = Lookup(handle);
    return (window != nullptr) && window->dc == dc;
}

BOOL WINAPI GdiFlush()
{
    PresentAll();
    return TRUE;
}
