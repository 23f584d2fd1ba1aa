// Which of the program's windows lies over which. Window managers raise windows as they like and tell nobody, so the
// server is asked each time.
#include "platform/host/qt/qt_internal.h"
#include "platform/host/qt/qt_server.h"

#include <QApplication>
#include <algorithm>
#include <utility>

namespace qthost {
namespace {

template <typename Condition>
HostWindow* FindShown(Condition condition)
{
    const auto found = std::find_if(windows.begin(), windows.end(), [&](const Window* window) {
        return window->top->isVisible() && window->top->windowHandle() != nullptr && condition(window->top);
    });
    return found != windows.end() ? ToHandle(*found) : nullptr;
}

} // namespace

void RaiseWindow(HostWindow* handle)
{
    constexpr uint32_t patience = 100;
    Window* window = FromHandle(handle);
    if (window->raising && Ticks() - window->raiseTime < patience) {
        return; // the window manager is at it
    }
    window->top->raise();
    if (window->raising) {
        window->top->activateWindow(); // some raise only what they give the keyboard to
    }
    window->raising = true;
    window->raiseTime = Ticks();
    FlushDisplay();
}

HostWindow* TopWindow()
{
    const std::vector<WId> stack = QueryStack();
    Window* top = nullptr;
    auto above = stack.end();
    for (Window* window : windows) {
        const QWindow* native = window->top->isVisible() ? window->top->windowHandle() : nullptr;
        const auto place = native != nullptr ? std::find(stack.begin(), above, QueryOutermost(native)) : above;
        if (place != above) {
            above = place;
            top = window;
        }
    }
    if (top != nullptr) {
        top->raising = false;
    }
    return ToHandle(top);
}

HostWindow* WindowAt(int x, int y)
{
    if (!HasServer()) {
        const QWidget* at = QApplication::topLevelAt(x, y);
        return FindShown([=](const QWidget* top) { return top == at; });
    }
    const QPoint place = ToServer(x, y);
    HostWindow* found = nullptr;
    WId id = 0;
    do {
        id = QueryChildAt(id, place.x(), place.y());
        found = FindShown([=](const QWidget* top) { return top->winId() == id; });
    } while (found == nullptr && id != 0);
    return found;
}

} // namespace qthost
