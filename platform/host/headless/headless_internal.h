// What the script and the desktop of the headless host share.
#pragma once

#include "platform/host/headless/headless.h"

namespace headlesshost {

constexpr int border = 4;
constexpr int captionHeight = 24;
constexpr int menuHeight = 22;

// ---- headless.cpp: windows and the event queue ----

void QueueEvent(const HostEvent& event);
// An event of now with the devices as they are.
HostEvent EventOfNow(int kind, const HeadlessWindow* window);
// The window whose client area is topmost under the pointer, null where there is none.
HeadlessWindow* WindowUnderPointer();
void PutOnTop(HeadlessWindow* window); // framed windows stay below pop-ups
HeadlessWindow* KeyboardWindow();
HeadlessWindow* FirstFrame();
void SetClientSize(HeadlessWindow* window, int width, int height);
void SetFramePlace(HeadlessWindow* window, int left, int top);
bool EventsWaiting();

// ---- script.cpp: the clock and the steps ----

void ResetScript();
// Moves the clock and runs the steps that are due.
void Advance(uint32_t milliseconds);
// A look at a device: a millisecond passes.
void Look();
void Pump(int waitMilliseconds);
// What a window took the press of goes elsewhere when it is hidden.
void ForgetPress(const HeadlessWindow* window);
void MovePointer(int x, int y);
// The next answer for a file dialog; false when there is none or it says to cancel.
bool TakeFileAnswer(std::string* path);

} // namespace headlesshost
