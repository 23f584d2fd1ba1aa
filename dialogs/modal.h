// The modal step that runs every dialog and palette, and the ready-made alerts.
#pragma once

#include "dialogs/dialog.h"
#include "toolbox/resources.h"

// What a step reports besides an item's number and ID: the same code in both values.
enum ModalCode {
    mapUpdateCode = -900,
    dialogUpdateCode = -902,
    mapClickCode = -903,
    keyCode = -904,
    mouseMovedCode = -906,
    missedClickCode = -907,
    mouseUpCode = -908,
    dragCode = -911,
    wheelUpCode = -914,
    wheelDownCode = -915,
};

// One turn: takes at most one event, handles what belongs to the dialog, reports the rest. 0 and 0 for nothing. The
// current port is the dialog during the step and restored after it. A key that would answer or close a dialog which
// the user does not see only brings it up.
void ModalDialogStep(WindowPtr dialog, int32_t* itemHit, int32_t* itemID, HRGN mouseRegion);

// A step of the loop of an alert or dialog that only waits for its items: the map window's updates are painted, and
// the dialog comes back to the top when another window was raised over it. False
// when the program is to end, or short memory left the dialog without the button that ends it; the loop then ends as
// if the user had declined.
bool RunDialogStep(WindowPtr dialog, int32_t* itemHit, int32_t* itemID);

// The alerts leave the current port as it was.
//
// A message with OK. Text list + index when index is not 0, else text. 0 x 0 is the default size; the alert grows
// downwards when its text needs more room. sound 0 for none.
void MessageAlert(int width, int height, int sound, int list, int index, const char* text);
void MessageAlert(int width, int height, int sound, TextID text);
// 1 for Yes, 0 for No or when the dialog could not be made. Text list + index when list is not 0, else text.
int YesNoAlert(int width, int height, int list, int index, const char* text);
int YesNoAlert(int width, int height, TextID text);
// 1 for the first button, 2 for the second, 0 when the dialog could not be made.
int TwoButtonAlert(const char* message, const char* firstText, const char* secondText);
void MemoryAlert();
