// What the sources of the desktop host share. Everything that Qt reports ends in QueueEvent; nothing here calls the
// program.
#pragma once

#ifndef QT_NO_KEYWORDS
#define QT_NO_KEYWORDS
#endif

#include "platform/host/host.h"

#include <QEventLoop>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPoint>
#include <QRect>
#include <QScrollBar>
#include <QWidget>
#include <vector>

namespace qthost {

// A framed window is an outer widget with a menu bar and the client area in it; a pop-up is its client area.
struct Window {
    void* token = nullptr;
    int kind = hostFramedWindow;
    QWidget* top = nullptr; // the widget that is a window of its own
    QWidget* client = nullptr;
    QMenuBar* menuBar = nullptr;
    int menuHeight = 0;
    std::vector<std::vector<QAction*>> menuItems; // by position in the bar and in the menu
    std::vector<QMenu*> menus;
    QImage picture; // over the program's own pixels
    int minWidth = 0;
    int minHeight = 0;
    int maxWidth = 0;
    int maxHeight = 0;
    int wheelRest = 0;    // what high-resolution wheels turned short of a whole notch
    bool placing = false; // the program itself moves or sizes it: no hostGeometry
    bool raising = false; // it was not seen at the top since it was to be raised
    uint32_t raiseTime = 0;
    bool sizeRefused = false; // the window manager did not give it the size that was asked for last
};

inline Window* FromHandle(HostWindow* window)
{
    return reinterpret_cast<Window*>(window);
}

inline HostWindow* ToHandle(Window* window)
{
    return reinterpret_cast<HostWindow*>(window);
}

// ---- qt_host.cpp: the event queue and the wait ----

extern std::vector<Window*> windows; // in the order of their making

// An event of now, with the pointer, the buttons and the modifiers as the devices have them.
HostEvent EventOfNow(int kind, const Window* window);
void QueueEvent(const HostEvent& event);
void QueueGeometry(Window* window);
// Removes what waits for a window or a scroll bar that goes away.
void ForgetEvents(const Window* window, const HostScrollBar* bar);
// Lets Qt handle what has arrived; when that queued nothing, waits up to this long for something to be queued.
void Pump(int waitMilliseconds);
uint32_t Ticks();

// ---- qt_session.cpp ----

// From here on SIGTERM, SIGHUP and SIGINT end the session.
void WatchSession(QObject* owner);
void UnwatchSession();
bool SessionEnded();
// Lets Qt handle events, unless the display is gone: then Qt would end the process on the spot, and the session ends
// instead, and the answer is false. Qt finds out first when it sleeps while that happens; what must not be lost then
// is kept by std::atexit.
bool HandleQtEvents(QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents);

// ---- qt_windows.cpp ----

HostWindow* CreateWindow(const HostWindowRequest* request, void* token);
void DestroyWindow(HostWindow* handle);
void PlaceWindow(HostWindow* handle, int left, int top, int clientWidth, int clientHeight);
void ShowWindow(HostWindow* handle, int how);
void WindowGeometry(HostWindow* handle, HostGeometry* geometry);
void LimitSize(HostWindow* handle, int minWidth, int minHeight, int maxWidth, int maxHeight);
void SetTitle(HostWindow* handle, const char* title);
void SetIcons(HostWindow* handle, const HostImage* images, int count);
void SetPicture(HostWindow* handle, const uint32_t* pixels, int width, int height, int stride);
void Present(HostWindow* handle, const HostRect* part);
// Sets the outer widget so that the client area has this size, whatever limits the user's sizing has.
void SizeClient(Window* window, int clientWidth, int clientHeight);

// ---- qt_order.cpp ----

void RaiseWindow(HostWindow* handle);
HostWindow* TopWindow();
HostWindow* WindowAt(int x, int y);

// ---- qt_keys.cpp ----

void QueueKey(Window* window, const QKeyEvent* event);
// Qt's key; with Control, Alt or Super on a keyboard that has no Latin letters the letter that others have in its
// place.
int CommandKeyOf(const QKeyEvent* event);
// Queues the releases of all keys that are down, for when their real releases will go elsewhere.
void ReleaseHeldKeys();
unsigned HostModifiersOf(Qt::KeyboardModifiers modifiers);

// ---- qt_menus.cpp ----

void BuildMenu(HostWindow* handle, const HostMenuItem* items, int count);
void SetMenuItem(HostWindow* handle, int menu, int item, int enabled, int checked);
// F10 opens the first menu that is enabled, Alt and the first letter of a title that menu. True when it was such a
// key.
bool OpenMenuWithKey(const QKeyEvent* event);

// ---- qt_scroll_bars.cpp ----

HostScrollBar* CreateScrollBar(HostWindow* parent, int vertical, const HostRect* place);
void DestroyScrollBar(HostScrollBar* handle);
void SetScrollBar(HostScrollBar* handle, int minimum, int highestPosition, int page, int position);
void QueueWheel(Window* window, const QWheelEvent* event);

// ---- qt_motion.cpp ----

// From here on Qt reports every position of the pointer while a button is held, and else the newest.
void WatchMotion();

// ---- qt_pointer.cpp ----

unsigned HostButtonsOf(Qt::MouseButtons buttons);
struct Devices {
    QPoint pointer;
    unsigned buttons;
    unsigned modifiers;
};

// The server's pixels as logical ones, and back.
QPoint ToLogical(int x, int y);
QPoint ToServer(int x, int y);
Devices QueryDevices();
void Pointer(int* x, int* y);
unsigned Buttons();
unsigned Modifiers();
void WarpPointer(int x, int y);
void CapturePointer(HostWindow* handle);
void ReleaseCaptureOf(const Window* window);
void SetCursor(int kind, const HostImage* image, int hotX, int hotY);
void ApplyCursor(Window* window);
// Cursors hold server objects: given back before the application object goes.
void ForgetCursor();

// ---- qt_outline.cpp ----

void ShowOutline(const HostSegment* segments, int count);
void DestroyOutline();

// ---- qt_desktop.cpp ----

int ChooseFile(const HostFileRequest* request, char* path, int size);
void Beep();
int OpenDocument(const char* path);

} // namespace qthost
