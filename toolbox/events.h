// Event records made from the platform's messages, at most one a call, never waiting; and the program's clock.
#pragma once

#include "toolbox/types.h"

enum EventCode {
    nullEvent = 0,
    mouseDown = 1,
    mouseUp = 2,
    keyDown = 3,
    updateEvt = 6,
    mouseMovedEvt = 15,
    wheelUpEvt = -914,
    wheelDownEvt = -915,
};

enum EventModifier { shiftKey = 0x0200, optionKey = 0x0800, controlKey = 0x1000 };
enum EventMask { mDownMask = 2, mUpMask = 4, keyDownMask = 8, everyEvent = -1 };

// Characters that keyDown carries for keys without one of their own, and function keys (code in bits 8 to 15).
enum KeyMessage {
    enterKey = 3,
    backspaceKey = 8,
    tabKey = 9,
    returnKey = 13,
    escapeKey = 27,
    leftArrowKey = 28,
    rightArrowKey = 29,
    upArrowKey = 30,
    downArrowKey = 31,
    f8Key = 0x6400,
    f9Key = 0x6500,
};

struct EventRecord {
    int16_t what;       // EventCode
    uintptr_t message;  // character or key; WindowPtr of update and wheel events; 250 for mouseMovedEvt
    uint32_t when;      // GetTickCount
    Point where;        // screen coordinates
    uint16_t modifiers; // EventModifier bits
    MSG platformMessage;
};

// The program-wide current event, which FindWindow and MenuSelect read.
extern EventRecord currentEvent;

// Fills the record and returns its code; 0 when nothing happened, after a wait of a hundredth of a second, or of a
// fifth when nothing had for a while and nothing is polled; what happens ends the wait. mask: only mDownMask, mUpMask
// and keyDownMask are looked at. sleep is not used. A mouse region (screen coordinates) makes moves outside it
// events.
int32_t WaitNextEvent(int32_t mask, EventRecord* event, uint32_t sleep, HRGN mouseRegion);
uint32_t TickCount(); // sixtieths of a second

// 1 while the left mouse button is held, read from the device and not from the queue.
int StillDown();

// Decides when a press that is followed has ended; whoever follows one begins with an empty watch and asks every
// turn. held: as StillDown said. releaseSeen: the release was found in the queue, which ends the press at once.
// Without it the press ends when the button has been up for longer than a release takes to arrive: somebody else took
// it.
struct PressWatch {
    bool graceBegun;  // the button is up, but its release has not been seen
    uint32_t upSince; // valid while graceBegun
};
bool PressHasEnded(PressWatch* watch, bool held, bool releaseSeen);

// Follows the pointer while a button press lasts: every position that the system reported since the press, also those
// between two polls, and none after the release. BeginPointerTrail with the press's event; each NextTrailPoint stores
// the next position in the current port's coordinates and returns 1; when nothing new was reported it stores the last
// one again; 0 when the button is up and every position was given. A press of the right button acts on one place
// only: 0 at once.
void BeginPointerTrail(const EventRecord* press);
int NextTrailPoint(Point* point);
