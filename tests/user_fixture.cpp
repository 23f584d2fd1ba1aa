#include "tests/user_fixture.h"

#include <algorithm>
#include <cstring>

namespace usertest {

FakeState fake;
std::vector<Seen> seen;
std::function<LRESULT(HWND, UINT, WPARAM, LPARAM, bool*)> react;

FakeWindow* Fake(HostWindow* window)
{
    return reinterpret_cast<FakeWindow*>(window);
}

FakeWindow* Fake(HWND handle)
{
    for (const std::unique_ptr<FakeWindow>& window : fake.windows) {
        if (window->token == handle) {
            return window.get();
        }
    }
    return nullptr;
}

namespace {

bool HasFrame(const FakeWindow* window)
{
    return window->request.kind == hostFramedWindow && window->shown != hostHide;
}

void PlaceFrame(FakeWindow* window, int left, int top)
{
    window->left = left + (HasFrame(window) ? frameLeft : 0);
    window->top = top + (HasFrame(window) ? frameTop : 0);
}

Host MakeFakeHost()
{
    Host filled = {};
    filled.start = [] { return 0; };
    filled.stop = [] {};
    filled.screenSize = [](int* width, int* height) {
        *width = 1280;
        *height = 1024;
    };
    filled.pump = [](int wait) {
        fake.waits.push_back(wait);
        if (fake.onPump) {
            fake.onPump();
        }
        if (fake.events.empty()) {
            fake.clock += static_cast<uint32_t>(wait);
        }
    };
    filled.nextEvent = [](HostEvent* event) {
        if (fake.events.empty()) {
            return 0;
        }
        *event = fake.events.front();
        fake.events.pop_front();
        return 1;
    };
    filled.createWindow = [](const HostWindowRequest* request, void* token) {
        fake.windows.push_back(std::make_unique<FakeWindow>());
        FakeWindow* window = fake.windows.back().get();
        window->request = *request;
        window->token = token;
        window->width = request->clientWidth;
        window->height = request->clientHeight;
        PlaceFrame(window, request->left == hostDefaultPlace ? 100 : request->left,
                   request->left == hostDefaultPlace ? 120 : request->top);
        return reinterpret_cast<HostWindow*>(window);
    };
    filled.destroyWindow = [](HostWindow* window) {
        std::erase_if(fake.windows, [&](const auto& live) { return live.get() == Fake(window); });
    };
    filled.placeWindow = [](HostWindow* handle, int left, int top, int width, int height) {
        FakeWindow* window = Fake(handle);
        window->placed++;
        if (left != hostDefaultPlace) {
            PlaceFrame(window, left, top);
        }
        if (width != 0 || height != 0) {
            window->width = width;
            window->height = height;
        }
    };
    filled.showWindow = [](HostWindow* window, int how) { Fake(window)->shown = how; };
    filled.raiseWindow = [](HostWindow* window) { Fake(window)->raised++; };
    filled.windowGeometry = [](HostWindow* handle, HostGeometry* geometry) {
        const FakeWindow* window = Fake(handle);
        const bool frame = HasFrame(window);
        const int right = window->left + window->width;
        const int bottom = window->top + window->height;
        *geometry = {window->left,
                     window->top,
                     window->width,
                     window->height,
                     {window->left - (frame ? frameLeft : 0), window->top - (frame ? frameTop : 0),
                      right + (frame ? frameRight : 0), bottom + (frame ? frameBottom : 0)}};
    };
    filled.limitSize = [](HostWindow* window, int minWidth, int minHeight, int maxWidth, int maxHeight) {
        Fake(window)->limits = {minWidth, minHeight, maxWidth, maxHeight};
    };
    filled.setTitle = [](HostWindow*, const char*) {};
    filled.setIcons = [](HostWindow*, const HostImage*, int) {};
    filled.setPicture = [](HostWindow* window, const uint32_t* pixels, int width, int height, int) {
        Fake(window)->pixels = pixels;
        Fake(window)->pictureWidth = width;
        Fake(window)->pictureHeight = height;
    };
    filled.present = [](HostWindow* window, const HostRect* part) { Fake(window)->presented.push_back(*part); };
    filled.buildMenu = [](HostWindow* window, const HostMenuItem* items, int count) {
        Fake(window)->menu.assign(items, items + count);
    };
    filled.setMenuItem = [](HostWindow* window, int menu, int item, int enabled, int checked) {
        Fake(window)->menuStates[{menu, item}] = {enabled, checked};
    };
    filled.createScrollBar = [](HostWindow*, int vertical, const HostRect* place) {
        fake.bars.push_back(std::make_unique<FakeBar>());
        fake.bars.back()->place = *place;
        fake.bars.back()->vertical = vertical;
        return reinterpret_cast<HostScrollBar*>(fake.bars.back().get());
    };
    filled.destroyScrollBar = [](HostScrollBar* bar) {
        std::erase_if(fake.bars, [&](const auto& live) { return live.get() == reinterpret_cast<FakeBar*>(bar); });
    };
    filled.setScrollBar = [](HostScrollBar* handle, int minimum, int highest, int page, int position) {
        FakeBar* bar = reinterpret_cast<FakeBar*>(handle);
        bar->minimum = minimum;
        bar->highest = highest;
        bar->page = page;
        bar->position = position;
    };
    filled.pointer = [](int* x, int* y) {
        *x = fake.pointerX;
        *y = fake.pointerY;
    };
    filled.buttons = [] { return fake.buttons; };
    filled.modifiers = [] { return fake.modifiers; };
    filled.warpPointer = [](int x, int y) {
        fake.pointerX = x;
        fake.pointerY = y;
    };
    filled.capturePointer = [](HostWindow* window) { fake.captured = window; };
    filled.setCursor = [](int kind, const HostImage* image, int hotX, int hotY) {
        fake.cursorCalls++;
        fake.cursorKind = kind;
        fake.hotX = hotX;
        fake.hotY = hotY;
        if (image) {
            fake.cursorPixels.assign(image->pixels, image->pixels + image->width * image->height);
        }
    };
    filled.showOutline = [](const HostSegment* segments, int count) {
        fake.outlineCalls++;
        fake.outline.assign(segments, segments + count);
    };
    filled.chooseFile = [](const HostFileRequest* request, char* path, int size) {
        fake.askedPattern = request->filterPattern;
        fake.askedFolder = request->folder;
        strncpy(path, fake.chosenFile.c_str(), static_cast<size_t>(size) - 1);
        return fake.chosenFile.empty() ? 0 : 1;
    };
    filled.playSound = [](const uint8_t*, uint32_t size) { fake.soundSize = size; };
    filled.beep = [] {};
    filled.openDocument = [](const char* path) {
        fake.openedDocument = path;
        return 0;
    };
    filled.ticks = [] { return fake.clock; };
    return filled;
}

} // namespace

const Host fakeHost = MakeFakeHost();

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_GETMINMAXINFO && message != WM_SIZING) {
        seen.push_back({window, message, wParam, lParam});
    }
    bool answered = false;
    const LRESULT answer = react ? react(window, message, wParam, lParam, &answered) : 0;
    return answered ? answer : DefWindowProcA(window, message, wParam, lParam);
}

std::vector<UINT> SeenMessages(HWND window)
{
    std::vector<UINT> messages;
    for (const Seen& entry : seen) {
        if (entry.window == window) {
            messages.push_back(entry.message);
        }
    }
    return messages;
}

} // namespace usertest
