// What a press on an item looks and sounds like, and following the pointer until the button is released.
#include "dialogs/item_drawing.h"
#include "toolbox/events.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

constexpr int textBaseline = 10; // below the top of a button's face, as in the button that is not pressed

void DrawPressedButton(const DialogItem* item)
{
    Rect outer = item->rect;
    OutsetRect(&outer, 1, 1);
    Rect face = item->rect;
    OutsetRect(&face, -2, -2);
    OffsetRect(&face, 0, 1);
    FillRectColor(&outer, PALETTERGB(0, 0, 0));
    FillRectColor(&item->rect, PALETTERGB(0x11, 0x11, 0x11));
    FillRectColor(&face, pressedFaceColour);
    // In one line: a bold text may be wider than the plain one that the button was made for.
    SetPortFont(fontArial, 10, styleBold);
    TextForeColor(PALETTERGB(0, 0, 0));
    MoveTo((face.left + face.right - StringWidth(item->text)) / 2, face.top + textBaseline);
    DrawString(item->text);
}

// The frame of a pressed button lies one pixel outside its rectangle.
void InvalidateItem(const DialogItem* item)
{
    Rect rect = item->rect;
    OutsetRect(&rect, 1, 1);
    InvalidateWindowRect(item->dialog, &rect);
}

} // namespace

void PressItem(DialogItem* item)
{
    if (item->dialog->window == nullptr) {
        return;
    }
    if (item->kind == pushButtonItem || item->kind == checkBoxItem) {
        const SavedDrawing saved = BeginDrawing(item->dialog);
        if (item->kind == pushButtonItem) {
            DrawPressedButton(item);
        } else {
            CopyItemImage(item);
        }
        EndDrawing(saved);
        InvalidateItem(item);
        GdiFlush();
    }
    if (item->sound != 0) {
        PlaySoundResource(item->sound);
    }
}

int TrackButton(DialogItem* item)
{
    const SavedPort saved = UsePort(item->dialog);
    PressItem(item);
    int inside = 1;
    Point point = {};
    BeginPointerTrail(&currentEvent);
    while (NextTrailPoint(&point)) {
        const int nowInside = PtInRect(point, &item->rect);
        if (nowInside == inside) {
            continue;
        }
        inside = nowInside;
        InvalidateItem(item);
        if (inside) {
            PressItem(item);
        } else {
            DrawMockDialog(item->dialog, false);
        }
    }
    RestorePort(saved);
    return inside;
}
