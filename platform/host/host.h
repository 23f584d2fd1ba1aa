// What the platform layer asks of the window system: one record of plain functions with two fillings, the desktop's
// (host/qt) and a headless, scripted one for tests (host/headless). Plain C types only. The host never calls the
// program: everything that happens is queued inside the host and taken with nextEvent.
//
// Coordinates are logical pixels of the primary screen. Times are milliseconds of a clock that never goes back.
#pragma once

#include <cstdint>

struct HostWindow;    // owned by the host, made by createWindow
struct HostScrollBar; // owned by the host, made by createScrollBar

enum HostEventKind {
    hostPointerDown = 1, // button; a double click is a second pointer-down
    hostPointerUp,       // button
    hostPointerMove,     // every position that the system reported, none left out
    hostWheel,           // delta: 120 a notch, above 0 away from the user
    hostKeyDown,         // key, character; key repeats come as further key-downs
    hostKeyUp,           // key; the releases of key repeats are dropped
    hostMenuChoice,      // code: command number
    hostScroll,          // bar, code: SB_ number of the Windows API, position: for thumb tracking
    hostGeometry,        // the frame was moved or resized, by the user or the window manager
    hostCloseRequest,    // the window stays until destroyWindow
    hostActivate,        // code 1: a window of the program became active; 0: the program lost the focus
    hostSessionEnd,      // the user's session or the display ends and the program with it; of no window
};

enum HostModifiers { hostShift = 1, hostControl = 2, hostAlt = 4 }; // hostAlt: Alt or Super
enum HostButtons { hostLeftButton = 1, hostRightButton = 2 };

struct HostEvent {
    int kind;    // HostEventKind
    void* token; // of the window that it belongs to, as given to createWindow
    int screenX; // pointer at the time of the event
    int screenY;
    int button;         // HostButtons, one of them
    unsigned buttons;   // held after the event
    unsigned modifiers; // HostModifiers, held at the event
    int delta;
    int key;       // Windows virtual-key code
    int character; // 0 to 255; Ctrl+letter gives 1 to 26; 0 when the key has none
    int code;
    int position;
    HostScrollBar* bar;
    uint32_t time;
};

struct HostRect {
    int left;
    int top;
    int right;
    int bottom;
};

struct HostGeometry {
    int clientLeft; // screen position of the client area's top-left pixel
    int clientTop;
    int clientWidth;
    int clientHeight;
    HostRect frame; // the whole window on the screen, window manager's frame and menu bar included
};

enum HostWindowKind {
    hostFramedWindow, // native frame, sizable, with a menu bar when buildMenu is called
    hostPopupWindow,  // no frame at all, stays above its owner, never takes the focus when shown
};

struct HostWindowRequest {
    int kind;          // HostWindowKind
    HostWindow* owner; // of a pop-up
    int left;          // frame's top-left corner; hostDefaultPlace for the system's choice
    int top;
    int clientWidth;
    int clientHeight;
    int noClose; // take the close button from the frame where the window manager allows it
    const char* title;
};

constexpr int hostDefaultPlace = INT32_MIN;

struct HostMenuItem {
    int menu;         // position in the bar, from 0
    int item;         // position in the menu, from 0; -1 for the menu's title
    int command;      // 0 for titles and separators
    const char* text; // "New Map...\tCtrl+N": the part behind the tab is only shown; empty for a separator
};

struct HostImage { // 32 bits a pixel, 0xAARRGGBB, rows top-down without gaps
    int width;
    int height;
    const uint32_t* pixels;
};

struct HostSegment { // a horizontal or vertical line on the screen, one pixel thick, both ends included
    int x0;
    int y0;
    int x1;
    int y1;
};

struct HostFileRequest {
    HostWindow* owner;
    const char* title;
    const char* filterText;    // "Map dat file (*.dat)"
    const char* filterPattern; // "*.dat"
    const char* folder;        // where to begin
};

enum HostShow { hostHide, hostShowActive, hostShowInactive };
enum HostCursorKind { hostCursorArrow, hostCursorWait, hostCursorImage };

struct Host {
    // Opens the display. 0 on success; otherwise a line has gone to standard error. Stop releases everything.
    int (*start)();
    void (*stop)();
    void (*screenSize)(int* width, int* height);

    // Collects what has happened; when nothing waits, waits up to waitMilliseconds for the next event (0: not at
    // all).
    void (*pump)(int waitMilliseconds);
    // Takes the oldest collected event; 0 when there is none.
    int (*nextEvent)(HostEvent* event);

    HostWindow* (*createWindow)(const HostWindowRequest* request, void* token);
    void (*destroyWindow)(HostWindow* window);
    // Moves the frame's top-left corner (hostDefaultPlace: leave) and sizes the client area (0 x 0: leave).
    void (*placeWindow)(HostWindow* window, int left, int top, int clientWidth, int clientHeight);
    void (*showWindow)(HostWindow* window, int how); // HostShow
    void (*raiseWindow)(HostWindow* window);
    // Which of the program's own windows the window manager has above all others now, null when that is not known;
    // and which one shows at a place of the screen, null when none does or another program's lies there.
    HostWindow* (*topWindow)();
    HostWindow* (*windowAt)(int x, int y);
    void (*windowGeometry)(HostWindow* window, HostGeometry* geometry);
    // Client sizes that the window manager lets the user reach; a maximum of 0 means none.
    void (*limitSize)(HostWindow* window, int minWidth, int minHeight, int maxWidth, int maxHeight);
    void (*setTitle)(HostWindow* window, const char* title);
    void (*setIcons)(HostWindow* window, const HostImage* images, int count);
    // The pixels of the client area (0x00RRGGBB, rows top-down, stride in pixels), owned by the caller and readable
    // until replaced; the host reads them whenever the window has to show.
    void (*setPicture)(HostWindow* window, const uint32_t* pixels, int width, int height, int stride);
    // Brings a part of the picture (client coordinates) to the screen now.
    void (*present)(HostWindow* window, const HostRect* part);

    void (*buildMenu)(HostWindow* window, const HostMenuItem* items, int count);
    void (*setMenuItem)(HostWindow* window, int menu, int item, int enabled, int checked); // item -1: the title

    HostScrollBar* (*createScrollBar)(HostWindow* parent, int vertical, const HostRect* place); // client coordinates
    void (*destroyScrollBar)(HostScrollBar* bar);
    void (*setScrollBar)(HostScrollBar* bar, int minimum, int highestPosition, int page, int position);

    // The devices now, not as of the last event taken. Neither loses nor delivers an event. Once the session has
    // ended no button is held, so that whatever follows the pointer comes to its end.
    void (*pointer)(int* x, int* y);
    unsigned (*buttons)();
    unsigned (*modifiers)();
    void (*warpPointer)(int x, int y);
    void (*capturePointer)(HostWindow* window);                              // null releases
    void (*setCursor)(int kind, const HostImage* image, int hotX, int hotY); // HostCursorKind
    // Shows these lines above everything, instead of the ones before; none hides them.
    void (*showOutline)(const HostSegment* segments, int count);

    // Runs the file dialog to its end; 1 and the path when a file was chosen, 0 when cancelled. The end of the
    // session cancels it.
    int (*chooseFile)(const HostFileRequest* request, char* path, int size);
    // Plays a RIFF WAVE file in memory to its end, which may be heard a little after the call has returned; at once
    // where there is no device.
    void (*playSound)(const uint8_t* wave, uint32_t size);
    void (*beep)();
    // Hands a document to the desktop's opener; 0 when an opener was started.
    int (*openDocument)(const char* path);

    uint32_t (*ticks)();
};

// The filling in use, set once before anything else of the platform is called.
extern const Host* host;
