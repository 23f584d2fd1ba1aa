// Asked of the X server directly, over a connection of our own: on Qt's each answer takes five times as long, because
// Qt's reader thread waits there too. Without an X server (Qt's offscreen platform) the questions have no answer and
// the rest does nothing.
#pragma once

#include <QWindow>
#include <vector>

namespace qthost {

struct ServerPointer {
    int x; // the server's pixels, not scaled
    int y;
    unsigned mask; // buttons and modifiers as the X protocol has them
};

// 0 when the X server answers; otherwise the application object must not be made, since Qt would end the program.
int OpenServer();
void CloseServer();
bool HasServer();
// Whether the X server has gone away. What was asked of it since was for nothing.
bool DisplayIsLost();
bool QueryServerPointer(ServerPointer* pointer);
// Whether the key with this X11 code is down now.
bool KeyIsDown(unsigned scanCode);
// The number of the server's input extension in its events; 0 where it has none.
uint8_t InputExtension();
// Whether the layout that this key event's state names has any; true when unknown.
bool LayoutHasLatinLetters(unsigned state);
// False where there is no X server. The query after it sees the pointer there.
bool WarpServerPointer(int x, int y);
// Where the window's top-left pixel is on the screen, in the server's pixels.
bool QueryServerPlace(const QWindow* window, int* x, int* y);
// Its size there, without the window manager's frame.
bool QueryServerSize(const QWindow* window, int* width, int* height);
// The child of the screen that holds the window: itself, or the window manager's frame around it; 0 when unknown.
WId QueryOutermost(const QWindow* window);
// The screen's children, topmost first.
std::vector<WId> QueryStack();
// The child of the window (0: of the screen) that lies at this place of the screen, in the server's pixels, and lets
// no press through; 0 for none.
WId QueryChildAt(WId parent, int x, int y);
// Returns when Qt holds every event that the server sent it before; they are still to be processed.
void WaitForServer();
// Sends on what Qt has drawn and asked for.
void FlushDisplay();
// Window managers take their frame off a hidden window some time later, and what happens to the window's place
// meanwhile is lost. Waits until it is off, but not for long.
void WaitUntilWithdrawn(const QWindow* window);
// Takes the name off a window to which Qt gives the program's for want of a title.
void ClearServerTitle(const QWindow* window);
// Gives a window diagonal dashes of black and white, which show on every ground, as what the server itself fills it
// with.
void SetDashedGround(WId window);

} // namespace qthost
