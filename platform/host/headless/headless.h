// A host without a screen, driven by a script, for tests. Its clock is virtual: it moves by a millisecond with every
// look at the pointer, the buttons or the modifiers, and by jumps to the next step of the script when the program
// waits in pump. A program that goes on after the end of its script is asked to close and, if it does not, ended with
// a message.
//
// The desktop: framed windows have a border of 4 pixels at the left, right and bottom, a caption of 24 pixels and,
// when they have a menu, a menu bar of 22; pop-ups have no frame and stay above framed windows. The window manager
// raises what is pressed, and says nothing. All coordinates of the script are screen coordinates.
#pragma once

#include "platform/host/host.h"

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

extern const Host headlessHost;

// ---- the script ----

constexpr int scriptDelay = 5; // milliseconds between a step and the one before it

struct ScriptPoint {
    int x;
    int y;
};

void ScriptMove(int x, int y, int delay = scriptDelay);
void ScriptPress(int x, int y, int button = hostLeftButton, int delay = scriptDelay);
void ScriptRelease(int delay = scriptDelay); // every button that is held
void ScriptClick(int x, int y, int button = hostLeftButton, int delay = scriptDelay);
// Presses the left button at the first point, moves through the others and releases at the last.
void ScriptDrag(std::initializer_list<ScriptPoint> points, int delay = scriptDelay);
void ScriptWheel(int delta, int delay = scriptDelay); // where the pointer is
// A key by its Windows virtual-key code, pressed and released with whatever ScriptKeyDown holds.
void ScriptKey(int virtualKey, int delay = scriptDelay);
void ScriptKey(char, int = 0) = delete; // a character is typed with ScriptText
void ScriptKeyDown(int virtualKey, int delay = scriptDelay);
void ScriptKeyUp(int virtualKey, int delay = scriptDelay);
void ScriptControl(char letter, int delay = scriptDelay);   // Control and the letter, as in ScriptControl('s')
void ScriptText(const char* text, int delay = scriptDelay); // with Shift where a US keyboard needs it
// Chooses a menu command as a user would; where the item or its title is disabled the choice counts as refused.
void ScriptMenu(int command, int delay = scriptDelay);
// The user sizes the first framed window's client area, as far as its limits let him, or moves its frame.
void ScriptResize(int clientWidth, int clientHeight, int delay = scriptDelay);
void ScriptMoveFrame(int left, int top, int delay = scriptDelay);
void ScriptClose(int delay = scriptDelay); // the first framed window
void ScriptSessionEnd(int delay = scriptDelay);
void ScriptActivate(int active, int delay = scriptDelay);
// A scroll request of the vertical or horizontal bar; ignored while there is none.
void ScriptScroll(int vertical, int code, int position, int delay = scriptDelay);
// Runs a check in the middle of the script. It may read the state and append steps, which then follow at once.
void ScriptCall(std::function<void()> call, int delay = scriptDelay);
void ScriptWait(int milliseconds);
// Queues at once what no script does, for the window of its token.
void HeadlessReport(const HostEvent& event);
// Answers for the coming file dialogs, in their order; without one a dialog is cancelled.
void ScriptFile(const char* path);
void ScriptFileCancel();

// ---- what can be seen ----

struct HeadlessMenuItem {
    int menu;
    int item; // -1 for a title
    int command;
    std::string text;
    int enabled;
    int checked;
};

struct HeadlessBar {
    HostScrollBar* bar;
    HostWindow* parent;
    int vertical;
    HostRect place; // client coordinates
    int minimum;
    int highestPosition;
    int page;
    int position;
};

struct HeadlessWindow {
    HostWindow* handle;
    void* token;
    int kind; // HostWindowKind
    HostWindow* owner;
    std::string title;
    int noClose;
    int visible;
    int hasMenu;
    HostRect client; // screen coordinates
    HostRect frame;
    int minWidth;
    int minHeight;
    int maxWidth;
    int maxHeight;
    int iconCount;
    int presentCount;
    HostRect presented;      // at the last time
    const uint32_t* picture; // the program's pixels
    int pictureWidth;
    int pictureHeight;
    int pictureStride;
    std::vector<uint32_t> shown; // the client area as it was last presented; empty where pictures are not kept
};

struct HeadlessFileDialog {
    std::string title;
    std::string filterText;
    std::string filterPattern;
    std::string folder;
    std::string answer; // empty: cancelled
};

struct HeadlessState {
    int started = 0;
    int screenWidth = 1280;
    int screenHeight = 1024;
    uint32_t now = 1000;
    ScriptPoint pointer = {640, 512};
    unsigned buttons = 0;
    unsigned modifiers = 0;
    int sessionEnded = 0;
    std::vector<HeadlessWindow*> windows; // topmost first
    std::vector<HeadlessMenuItem> menuItems;
    std::vector<HeadlessBar*> bars;
    HostWindow* captured = nullptr;
    int refusedChoices = 0;
    int impatience = 0; // requests to close because the script had ended and the program had not
    int presentCount = 0;
    std::vector<uint32_t> sounds; // sizes of the files played
    int beeps = 0;
    std::vector<std::string> documents;
    std::vector<HeadlessFileDialog> fileDialogs;
    int cursorKind = hostCursorArrow;
    int cursorHotX = 0;
    int cursorHotY = 0;
    std::vector<uint32_t> cursorPixels;
    int cursorChanges = 0;
    std::vector<HostSegment> outline;
    int outlineChanges = 0; // calls that showed an outline
    int warps = 0;
    int raises = 0;
    int refusesRaises = 0; // the window manager leaves the order as it is
    int covered = 0;       // another program's window lies over all of ours, until one of them is raised
    int keepsPictures = 1; // what is presented is copied; where not, a look at the screen sees the program's pixels
};

// For reading; a test may set what the user holds, what the desktop does and, before there are windows, whether
// pictures are kept.
extern HeadlessState headless;

// Forgets everything, windows and script included, and begins with a fresh screen.
void HeadlessReset(int screenWidth = 1280, int screenHeight = 1024);
// The first framed window, and the topmost visible pop-up; null when there is none.
const HeadlessWindow* HeadlessFrame();
const HeadlessWindow* HeadlessPopup();
ScriptPoint HeadlessClientOrigin(); // of the first framed window
// Null when there is no such command.
const HeadlessMenuItem* HeadlessMenuCommand(int command);
const HeadlessMenuItem* HeadlessMenuTitle(int menu);
const HeadlessBar* HeadlessScrollBar(int vertical);
// What a user sees at this place of the screen, 0x00RRGGBB. Window contents are what was presented, not what the
// program drew since. An outline inverts what is under it.
uint32_t HeadlessPixel(int x, int y);
// Writes the whole screen as a binary PPM; 0 on success.
int HeadlessScreenshot(const char* path);
int HeadlessStepsLeft();
