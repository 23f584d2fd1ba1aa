#include "platform/host/headless/headless.h"

#include "platform/host/headless/headless_internal.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <deque>

HeadlessState headless;

namespace headlesshost {
namespace {

constexpr uint32_t desktopColour = 0x00306070;
constexpr uint32_t frameColour = 0x00707070;
constexpr uint32_t menuColour = 0x00F0F0F0;
constexpr uint32_t barColour = 0x00C8C8C8;
constexpr uint32_t behindPicture = 0x00C0C0C0;
constexpr int defaultLeft = 60;
constexpr int defaultTop = 40;

std::deque<HostEvent> events;

HeadlessWindow* FromHandle(HostWindow* handle)
{
    return reinterpret_cast<HeadlessWindow*>(handle);
}

HeadlessBar* FromHandle(HostScrollBar* handle)
{
    return reinterpret_cast<HeadlessBar*>(handle);
}

bool Contains(const HostRect& rect, int x, int y)
{
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

void UpdateFrame(HeadlessWindow* window)
{
    window->frame = window->client;
    if (window->kind != hostFramedWindow) {
        return;
    }
    window->frame.left -= border;
    window->frame.right += border;
    window->frame.bottom += border;
    window->frame.top -= captionHeight + (window->hasMenu ? menuHeight : 0);
}

uint32_t PicturePixel(const HeadlessWindow* window, int x, int y)
{
    if ((window->picture == nullptr) || x >= window->pictureWidth || y >= window->pictureHeight) {
        return behindPicture;
    }
    return window->picture[static_cast<size_t>(y) * static_cast<size_t>(window->pictureStride) +
                           static_cast<size_t>(x)] &
           0x00FFFFFF;
}

void CopyPicture(HeadlessWindow* window, HostRect part)
{
    const int width = window->client.right - window->client.left;
    const int height = window->client.bottom - window->client.top;
    part.left = std::max(part.left, 0);
    part.top = std::max(part.top, 0);
    part.right = std::min(part.right, width);
    part.bottom = std::min(part.bottom, height);
    if (!headless.keepsPictures) {
        // Read nevertheless, so that the sanitizers notice a picture that is gone or too small.
        [[maybe_unused]] const volatile uint32_t ends[] = {PicturePixel(window, part.left, part.top),
                                                           PicturePixel(window, part.right - 1, part.bottom - 1)};
        return;
    }
    for (int y = part.top; y < part.bottom; y++) {
        for (int x = part.left; x < part.right; x++) {
            window->shown[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] =
                PicturePixel(window, x, y);
        }
    }
}

// A window that comes up or changes its size shows its picture anew.
void ShowAll(HeadlessWindow* window)
{
    const int width = window->client.right - window->client.left;
    const int height = window->client.bottom - window->client.top;
    if (headless.keepsPictures) {
        window->shown.assign(static_cast<size_t>(width) * static_cast<size_t>(height), behindPicture);
    }
    CopyPicture(window, {0, 0, width, height});
}

int Start()
{
    headless.started = 1;
    return 0;
}

void DestroyWindow(HostWindow* handle)
{
    HeadlessWindow* window = FromHandle(handle);
    std::erase_if(events, [window](const HostEvent& event) { return event.token == window->token; });
    std::erase(headless.windows, window);
    std::erase_if(headless.bars, [handle](HeadlessBar* bar) {
        if (bar->parent != handle) {
            return false;
        }
        delete bar;
        return true;
    });
    if (headless.captured == handle) {
        headless.captured = nullptr;
    }
    if (window->hasMenu) {
        headless.menuItems.clear();
    }
    ForgetPress(window);
    delete window;
}

void Stop()
{
    while (!headless.windows.empty()) {
        DestroyWindow(headless.windows.back()->handle);
    }
    events.clear();
    headless.started = 0;
}

void ScreenSize(int* width, int* height)
{
    *width = headless.screenWidth;
    *height = headless.screenHeight;
}

int NextEvent(HostEvent* event)
{
    if (events.empty()) {
        return 0;
    }
    *event = events.front();
    events.pop_front();
    return 1;
}

HostWindow* CreateWindow(const HostWindowRequest* request, void* token)
{
    HeadlessWindow* window = new HeadlessWindow{};
    window->handle = reinterpret_cast<HostWindow*>(window);
    window->token = token;
    window->kind = request->kind;
    window->owner = request->owner;
    window->title = request->title != nullptr ? request->title : "";
    window->noClose = request->noClose;
    int width = request->clientWidth;
    int height = request->clientHeight;
    if (width <= 0 && height <= 0) {
        width = headless.screenWidth * 2 / 3;
        height = headless.screenHeight * 2 / 3;
    }
    SetClientSize(window, width, height);
    const bool choose = request->left == hostDefaultPlace || request->top == hostDefaultPlace;
    SetFramePlace(window, choose ? defaultLeft : request->left, choose ? defaultTop : request->top);
    PutOnTop(window);
    return window->handle;
}

void PlaceWindow(HostWindow* handle, int left, int top, int clientWidth, int clientHeight)
{
    HeadlessWindow* window = FromHandle(handle);
    if (clientWidth != 0 || clientHeight != 0) {
        SetClientSize(window, clientWidth, clientHeight);
    }
    if (left != hostDefaultPlace && top != hostDefaultPlace) {
        SetFramePlace(window, left, top);
    }
}

void ShowWindow(HostWindow* handle, int how)
{
    HeadlessWindow* window = FromHandle(handle);
    const bool wasVisible = window->visible;
    window->visible = how != hostHide;
    if (!window->visible) {
        if (headless.captured == handle) {
            headless.captured = nullptr;
        }
        ForgetPress(window);
        return;
    }
    if (wasVisible) {
        return;
    }
    ShowAll(window);
    PutOnTop(window);
    if (window->kind == hostFramedWindow && how == hostShowActive) {
        HostEvent event = EventOfNow(hostActivate, window);
        event.code = 1;
        QueueEvent(event);
    }
}

void RaiseWindow(HostWindow* handle)
{
    headless.raises++;
    headless.covered = 0;
    if (!headless.refusesRaises) {
        PutOnTop(FromHandle(handle));
    }
}

HostWindow* TopWindow()
{
    const auto top = std::find_if(headless.windows.begin(), headless.windows.end(),
                                  [](const HeadlessWindow* window) { return window->visible != 0; });
    return top != headless.windows.end() ? (*top)->handle : nullptr;
}

HostWindow* WindowAt(int x, int y)
{
    const auto shown =
        std::find_if(headless.windows.begin(), headless.windows.end(), [=](const HeadlessWindow* window) {
            return window->visible != 0 && Contains(window->frame, x, y);
        });
    return shown != headless.windows.end() && !headless.covered ? (*shown)->handle : nullptr;
}

void WindowGeometry(HostWindow* handle, HostGeometry* geometry)
{
    const HeadlessWindow* window = FromHandle(handle);
    geometry->clientLeft = window->client.left;
    geometry->clientTop = window->client.top;
    geometry->clientWidth = window->client.right - window->client.left;
    geometry->clientHeight = window->client.bottom - window->client.top;
    geometry->frame = window->frame;
}

void LimitSize(HostWindow* handle, int minWidth, int minHeight, int maxWidth, int maxHeight)
{
    HeadlessWindow* window = FromHandle(handle);
    window->minWidth = minWidth;
    window->minHeight = minHeight;
    window->maxWidth = maxWidth;
    window->maxHeight = maxHeight;
}

void SetTitle(HostWindow* handle, const char* title)
{
    FromHandle(handle)->title = title != nullptr ? title : "";
}

void SetIcons(HostWindow* handle, const HostImage*, int count)
{
    FromHandle(handle)->iconCount = count;
}

void SetPicture(HostWindow* handle, const uint32_t* pixels, int width, int height, int stride)
{
    HeadlessWindow* window = FromHandle(handle);
    window->picture = pixels;
    window->pictureWidth = width;
    window->pictureHeight = height;
    window->pictureStride = stride;
}

void Present(HostWindow* handle, const HostRect* part)
{
    HeadlessWindow* window = FromHandle(handle);
    if (!window->visible) {
        return;
    }
    window->presentCount++;
    headless.presentCount++;
    window->presented = *part;
    CopyPicture(window, *part);
}

void BuildMenu(HostWindow* handle, const HostMenuItem* items, int count)
{
    HeadlessWindow* window = FromHandle(handle);
    if (window->kind != hostFramedWindow || window->hasMenu) {
        return;
    }
    const HostRect place = window->frame;
    for (int i = 0; i < count; i++) {
        headless.menuItems.push_back({items[i].menu, items[i].item, items[i].command, items[i].text, 1, 0});
    }
    window->hasMenu = 1;
    SetFramePlace(window, place.left, place.top);
}

void SetMenuItem(HostWindow*, int menu, int item, int enabled, int checked)
{
    for (HeadlessMenuItem& entry : headless.menuItems) {
        if (entry.menu == menu && entry.item == item) {
            entry.enabled = enabled != 0;
            entry.checked = checked != 0;
        }
    }
}

HostScrollBar* CreateScrollBar(HostWindow* parent, int vertical, const HostRect* place)
{
    HeadlessBar* bar = new HeadlessBar{};
    bar->bar = reinterpret_cast<HostScrollBar*>(bar);
    bar->parent = parent;
    bar->vertical = vertical;
    bar->place = *place;
    headless.bars.push_back(bar);
    return bar->bar;
}

void DestroyScrollBar(HostScrollBar* handle)
{
    std::erase_if(events, [handle](const HostEvent& event) { return event.bar == handle; });
    std::erase(headless.bars, FromHandle(handle));
    delete FromHandle(handle);
}

void SetScrollBar(HostScrollBar* handle, int minimum, int highestPosition, int page, int position)
{
    HeadlessBar* bar = FromHandle(handle);
    bar->minimum = minimum;
    bar->highestPosition = std::max(minimum, highestPosition);
    bar->page = page;
    bar->position = std::clamp(position, bar->minimum, bar->highestPosition);
}

void Pointer(int* x, int* y)
{
    Look();
    *x = headless.pointer.x;
    *y = headless.pointer.y;
}

unsigned Buttons()
{
    Look();
    return headless.sessionEnded ? 0 : headless.buttons;
}

unsigned Modifiers()
{
    Look();
    return headless.modifiers;
}

void WarpPointer(int x, int y)
{
    headless.warps++;
    MovePointer(std::clamp(x, 0, headless.screenWidth - 1), std::clamp(y, 0, headless.screenHeight - 1));
}

void CapturePointer(HostWindow* window)
{
    headless.captured = (window != nullptr) && FromHandle(window)->visible ? window : nullptr;
}

void SetCursor(int kind, const HostImage* image, int hotX, int hotY)
{
    headless.cursorKind = kind;
    headless.cursorHotX = hotX;
    headless.cursorHotY = hotY;
    headless.cursorChanges++;
    headless.cursorPixels.clear();
    if (kind == hostCursorImage) {
        headless.cursorPixels.assign(image->pixels,
                                     image->pixels + static_cast<std::ptrdiff_t>(image->width) * image->height);
    }
}

void ShowOutline(const HostSegment* segments, int count)
{
    headless.outline.assign(segments, segments + count);
    if (count > 0) {
        headless.outlineChanges++;
    }
}

int ChooseFile(const HostFileRequest* request, char* path, int size)
{
    std::string answer;
    const bool chosen = TakeFileAnswer(&answer);
    headless.fileDialogs.push_back({request->title, request->filterText, request->filterPattern,
                                    request->folder != nullptr ? request->folder : "", answer});
    if (!chosen || size <= 0 || answer.size() >= static_cast<size_t>(size)) {
        return 0;
    }
    std::memcpy(path, answer.c_str(), answer.size() + 1);
    return 1;
}

void PlaySound(const uint8_t*, uint32_t size)
{
    headless.sounds.push_back(size);
}

void Beep()
{
    headless.beeps++;
}

int OpenDocument(const char* path)
{
    headless.documents.emplace_back(path);
    return 0;
}

uint32_t Ticks()
{
    return headless.now;
}

bool OnSegment(const HostSegment& segment, int x, int y)
{
    return x >= std::min(segment.x0, segment.x1) && x <= std::max(segment.x0, segment.x1) &&
           y >= std::min(segment.y0, segment.y1) && y <= std::max(segment.y0, segment.y1);
}

uint32_t WindowPixel(const HeadlessWindow* window, int x, int y)
{
    if (!Contains(window->client, x, y)) {
        const bool inMenu = window->hasMenu && y < window->client.top && y >= window->client.top - menuHeight &&
                            x >= window->client.left && x < window->client.right;
        return inMenu ? menuColour : frameColour;
    }
    const int column = x - window->client.left;
    const int row = y - window->client.top;
    for (const HeadlessBar* bar : headless.bars) {
        if (bar->parent == window->handle && Contains(bar->place, column, row)) {
            return barColour;
        }
    }
    if (!headless.keepsPictures) {
        return PicturePixel(window, column, row);
    }
    const size_t width = static_cast<size_t>(window->client.right - window->client.left);
    return window->shown[static_cast<size_t>(row) * width + static_cast<size_t>(column)];
}

} // namespace

void QueueEvent(const HostEvent& event)
{
    events.push_back(event);
}

HostEvent EventOfNow(int kind, const HeadlessWindow* window)
{
    HostEvent event = {};
    event.kind = kind;
    event.token = window != nullptr ? window->token : nullptr;
    event.screenX = headless.pointer.x;
    event.screenY = headless.pointer.y;
    event.buttons = headless.buttons;
    event.modifiers = headless.modifiers;
    event.time = headless.now;
    return event;
}

void PutOnTop(HeadlessWindow* window)
{
    std::erase(headless.windows, window);
    auto place = headless.windows.begin();
    while (window->kind == hostFramedWindow && place != headless.windows.end() && (*place)->kind == hostPopupWindow) {
        ++place;
    }
    headless.windows.insert(place, window);
}

HeadlessWindow* WindowUnderPointer()
{
    const int x = headless.pointer.x;
    const int y = headless.pointer.y;
    for (HeadlessWindow* window : headless.windows) {
        if (!window->visible || !Contains(window->frame, x, y)) {
            continue;
        }
        if (!Contains(window->client, x, y)) {
            return nullptr; // the frame is the window manager's, the menu bar the host's
        }
        for (const HeadlessBar* bar : headless.bars) {
            if (bar->parent == window->handle &&
                Contains(bar->place, x - window->client.left, y - window->client.top)) {
                return nullptr;
            }
        }
        return window;
    }
    return nullptr;
}

HeadlessWindow* FirstFrame()
{
    for (auto window = headless.windows.rbegin(); window != headless.windows.rend(); ++window) {
        if ((*window)->kind == hostFramedWindow) {
            return *window;
        }
    }
    return nullptr;
}

HeadlessWindow* KeyboardWindow()
{
    HeadlessWindow* frame = FirstFrame();
    if ((frame != nullptr) && frame->visible) {
        return frame;
    }
    for (HeadlessWindow* window : headless.windows) {
        if (window->visible) {
            return window;
        }
    }
    return nullptr;
}

void SetClientSize(HeadlessWindow* window, int width, int height)
{
    const int right = window->client.left + std::max(width, 1);
    const int bottom = window->client.top + std::max(height, 1);
    if (window->client.right == right && window->client.bottom == bottom) {
        return;
    }
    window->client.right = right;
    window->client.bottom = bottom;
    UpdateFrame(window);
    ShowAll(window);
}

void SetFramePlace(HeadlessWindow* window, int left, int top)
{
    UpdateFrame(window);
    const int dx = left - window->frame.left;
    const int dy = top - window->frame.top;
    window->client.left += dx;
    window->client.right += dx;
    window->client.top += dy;
    window->client.bottom += dy;
    UpdateFrame(window);
}

bool EventsWaiting()
{
    return !events.empty();
}

} // namespace headlesshost

using namespace headlesshost;

void HeadlessReset(int screenWidth, int screenHeight)
{
    headlesshost::Stop();
    for (HeadlessBar* bar : headless.bars) {
        delete bar;
    }
    headless = {};
    headless.screenWidth = screenWidth;
    headless.screenHeight = screenHeight;
    headless.pointer = {screenWidth / 2, screenHeight / 2};
    ResetScript();
}

void HeadlessReport(const HostEvent& event)
{
    QueueEvent(event);
}

const HeadlessWindow* HeadlessFrame()
{
    return FirstFrame();
}

const HeadlessWindow* HeadlessPopup()
{
    for (const HeadlessWindow* window : headless.windows) {
        if (window->kind == hostPopupWindow && window->visible) {
            return window;
        }
    }
    return nullptr;
}

ScriptPoint HeadlessClientOrigin()
{
    const HeadlessWindow* frame = FirstFrame();
    return frame != nullptr ? ScriptPoint{frame->client.left, frame->client.top} : ScriptPoint{0, 0};
}

const HeadlessMenuItem* HeadlessMenuCommand(int command)
{
    for (const HeadlessMenuItem& item : headless.menuItems) {
        if (item.item >= 0 && item.command == command && command != 0) {
            return &item;
        }
    }
    return nullptr;
}

const HeadlessMenuItem* HeadlessMenuTitle(int menu)
{
    for (const HeadlessMenuItem& item : headless.menuItems) {
        if (item.item < 0 && item.menu == menu) {
            return &item;
        }
    }
    return nullptr;
}

const HeadlessBar* HeadlessScrollBar(int vertical)
{
    for (const HeadlessBar* bar : headless.bars) {
        if ((bar->vertical != 0) == (vertical != 0)) {
            return bar;
        }
    }
    return nullptr;
}

uint32_t HeadlessPixel(int x, int y)
{
    uint32_t colour = desktopColour;
    for (const HeadlessWindow* window : headless.windows) {
        if (window->visible && Contains(window->frame, x, y)) {
            colour = WindowPixel(window, x, y);
            break;
        }
    }
    for (const HostSegment& segment : headless.outline) {
        if (OnSegment(segment, x, y)) {
            return ~colour & 0x00FFFFFF;
        }
    }
    return colour;
}

int HeadlessScreenshot(const char* path)
{
    std::FILE* file = std::fopen(path, "wb");
    if (file == nullptr) {
        return 1;
    }
    std::fprintf(file, "P6\n%d %d\n255\n", headless.screenWidth, headless.screenHeight);
    for (int y = 0; y < headless.screenHeight; y++) {
        for (int x = 0; x < headless.screenWidth; x++) {
            const uint32_t colour = HeadlessPixel(x, y);
            for (int shift : {16, 8, 0}) {
                std::fputc(static_cast<int>(colour >> shift & 0xFF), file);
            }
        }
    }
    const bool failed = std::ferror(file) != 0;
    return std::fclose(file) != 0 || failed ? 1 : 0;
}

const Host headlessHost = {
    .start = Start,
    .stop = Stop,
    .screenSize = ScreenSize,
    .pump = Pump,
    .nextEvent = NextEvent,
    .createWindow = CreateWindow,
    .destroyWindow = DestroyWindow,
    .placeWindow = PlaceWindow,
    .showWindow = ShowWindow,
    .raiseWindow = RaiseWindow,
    .topWindow = TopWindow,
    .windowAt = WindowAt,
    .windowGeometry = WindowGeometry,
    .limitSize = LimitSize,
    .setTitle = SetTitle,
    .setIcons = SetIcons,
    .setPicture = SetPicture,
    .present = Present,
    .buildMenu = BuildMenu,
    .setMenuItem = SetMenuItem,
    .createScrollBar = CreateScrollBar,
    .destroyScrollBar = DestroyScrollBar,
    .setScrollBar = SetScrollBar,
    .pointer = Pointer,
    .buttons = Buttons,
    .modifiers = Modifiers,
    .warpPointer = WarpPointer,
    .capturePointer = CapturePointer,
    .setCursor = SetCursor,
    .showOutline = ShowOutline,
    .chooseFile = ChooseFile,
    .playSound = PlaySound,
    .beep = Beep,
    .openDocument = OpenDocument,
    .ticks = Ticks,
};
