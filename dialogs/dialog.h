// Dialogs that the program draws itself: their records, items, painting and edit fields.
#pragma once

#include "toolbox/windows.h"

enum DialogItemKindNumber {
    checkBoxItem = 3,
    staticTextItem = 5,
    closeBoxItem = 6,
    titleBarItem = 7,
    editTextItem = 8,
    rightTitleBoxItem = 26,
    pushButtonItem = 32,
};

enum DialogItemID { okItemID = 1, cancelItemID = 2 };

constexpr COLORREF dialogTextColour = 0x02CCFFFF; // pale yellow
constexpr COLORREF dialogBackColour = 0x02197A59; // olive
constexpr COLORREF editTextColour = 0x02000000;

struct DialogItem {
    DialogItem* next;
    WindowPtr dialog;
    HDC dc;
    Rect rect;       // in the dialog, for drawing and hit testing
    Rect images[4];  // check boxes: where the interface bitmap holds the images of states 0 to 3
    uint16_t number; // from 1, in the order of creation
    uint16_t sound;  // played when pressed; 0 for none
    uint8_t tracksMouse;
    uint8_t visible;
    uint8_t clickable;
    uint8_t state; // check boxes: 0 off, 1 on
    uint8_t kind;  // DialogItemKindNumber
    uint8_t digitsOnly;
    uint8_t textSize;
    uint8_t textStyle;
    COLORREF textColor;
    COLORREF backColor;
    int32_t itemID;
    int16_t textV; // baseline start of a check box's label
    int16_t textH;
    char text[256];
};

// A hidden pop-up of that content size at topLeft (screen), or centred on the screen when null. Null on failure.
WindowPtr NewMockDialog(int frameStyle, int width, int height, const char* title, const Point* topLeft);
// What AddItem is made of. rects: the item's, then up to four image rectangles (states 0, 2, 1, 3). More than two
// make the item track the mouse. colour: text colour of static and edit texts, the initial state of check boxes. Null
// when memory is short.
DialogItem* AddDialogItem(WindowPtr dialog, int rectCount, const Rect* rects, const char* text, int textH, int textV,
                          int visible, COLORREF colour, int kind, int32_t itemID, int textStyle, int textSize);

// An item as its dialog describes it. The kind settles what is not said here: text colour, style and size, the images
// of a check box, which begins off, and whether a press is tracked.
struct DialogItemSpec {
    int kind;              // DialogItemKindNumber
    Rect place = {};       // the kinds of the title bar have a place of their own
    const char* text = ""; // copied
    int32_t itemID = 0;
    bool digitsOnly = false; // of an edit text
};
// Appends the item. Null when memory is short.
DialogItem* AddItem(WindowPtr dialog, const DialogItemSpec& spec);
DialogItem* AddOKButton(WindowPtr dialog, int left, int top, int right, int bottom);
DialogItem* AddCancelButton(WindowPtr dialog, int left, int top, int right, int bottom);

// The height a static text of the default size needs in a rectangle of that width.
int StaticTextHeight(WindowPtr dialog, const char* text, int width);

void DrawMockDialog(WindowPtr dialog, bool inUpdate);
// Frees the items and the record and destroys the window. None is ignored.
void DisposeMockDialog(WindowPtr dialog);

DialogItem* FindItemByID(WindowPtr dialog, int32_t itemID);
DialogItem* FindItemByNumber(WindowPtr dialog, int number);
// These use the ID when it is not 0, otherwise the number; a missing item is ignored or counts as 0.
void SelectEditItem(WindowPtr dialog, int32_t itemID, int number);
int32_t GetItemValue(WindowPtr dialog, int32_t itemID, int number);
void SetItemState(WindowPtr dialog, int32_t itemID, int number, int state);
bool ItemStateIs(WindowPtr dialog, int32_t itemID, int number, int state);
int GetItemState(WindowPtr dialog, int32_t itemID, int number);
void ToggleItem(WindowPtr dialog, int32_t itemID, int number);

void ActivateEditItem(WindowPtr dialog, DialogItem* item);
void EditItemKey(WindowPtr dialog, int character, int32_t* itemHit, int32_t* itemID);
void PressItem(DialogItem* item);
int TrackButton(DialogItem* item); // 1 when the button was released inside the item

LRESULT CALLBACK DialogWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
