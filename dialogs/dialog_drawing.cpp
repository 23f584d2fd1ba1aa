#include "dialogs/item_drawing.h"
#include "toolbox/resources.h"

#include <algorithm>

namespace {

constexpr COLORREF Grey(int level)
{
    return PALETTERGB(level, level, level);
}

constexpr COLORREF edgeGrey = Grey(0x11);
constexpr COLORREF boxGrey = Grey(0xAA);
constexpr COLORREF silver = 0x02C0C0C0;
constexpr int titleBaseline = 14;

void HorizontalLine(int left, int right, int v, COLORREF colour)
{
    const Rect line = MakeRect(left, v, right + 1, v + 1);
    FillRectColor(&line, colour);
}

void VerticalLine(int h, int top, int bottom, COLORREF colour)
{
    const Rect line = MakeRect(h, top, h + 1, bottom + 1);
    FillRectColor(&line, colour);
}

Rect Inset(Rect rect, int distance)
{
    OutsetRect(&rect, -distance, -distance);
    return rect;
}

// Two colours around a rectangle's outermost pixels; the bottom-left and top-right corners belong to the second.
void DrawBevel(const Rect& rect, COLORREF topLeft, COLORREF bottomRight)
{
    const int right = rect.right - 1;
    const int bottom = rect.bottom - 1;
    HorizontalLine(rect.left, right, rect.top, topLeft);
    VerticalLine(rect.left, rect.top, bottom, topLeft);
    HorizontalLine(rect.left, right, bottom, bottomRight);
    VerticalLine(right, rect.top, bottom, bottomRight);
}

void DrawTitleText(const char* text, int textLeft)
{
    SetPortFont(fontTimesBold, 12, styleBold);
    TextForeColor(dialogTextColour);
    MoveTo(textLeft, titleBaseline);
    DrawString(text);
}

// Where a title begins and ends that is centred in the port.
void MeasureTitle(const Rect& port, const char* text, int* left, int* right)
{
    SetPortFont(fontTimesBold, 12, styleBold);
    const int width = StringWidth(text);
    *left = (port.left + port.right - width) / 2;
    *right = *left + width;
}

void DrawDialogFrame(WindowPtr dialog)
{
    const Rect& port = dialog->portRect;
    FillRectColor(&port, dialogBackColour);
    DrawBevel(port, Grey(0xBB), edgeGrey);
    if (dialog->frameStyle == 0) {
        DrawBevel(Inset(port, 1), Grey(0x77), Grey(0x77));
        DrawBevel(Inset(port, 3), edgeGrey, Grey(0xBB));
        return;
    }
    DrawBevel(Inset(port, 1), Grey(0x77), Grey(0x33));
    const Rect body = MakeRect(port.left + 3, port.top + 18, port.right - 3, port.bottom - 3);
    DrawBevel(body, Grey(0x33), Grey(0xAA));
    HorizontalLine(body.left, body.right - 1, body.top, Grey(0x33));

    char title[textBufferSize] = "";
    GetWTitle(dialog, title);
    if (title[0] != 0) {
        int left = 0;
        int right = 0;
        MeasureTitle(port, title, &left, &right);
        DrawTitleText(title, left);
    }
}

void DrawCheckBox(const DialogItem* item)
{
    CopyItemImage(item);
    if (item->text[0] != 0) {
        SetPortFont(fontArial, item->textSize, item->textStyle);
        TextForeColor(item->textColor);
        MoveTo(item->textH, item->textV);
        DrawString(item->text);
    }
}

// A square of 10 pixels with a shadow above and left of it and one along its inner bottom and right.
void DrawTitleBox(int left, int top)
{
    const int right = left + 9;
    const int bottom = top + 9;
    HorizontalLine(left - 1, right, top - 1, edgeGrey);
    VerticalLine(left - 1, top - 1, bottom, edgeGrey);
    DrawBevel(MakeRect(left, top, right + 1, bottom + 1), boxGrey, boxGrey);
    HorizontalLine(left + 1, right - 1, bottom - 1, edgeGrey);
    VerticalLine(right - 1, top + 1, bottom - 1, edgeGrey);
}

void DrawGrooves(int left, int right)
{
    for (int v = 6; v <= 12 && left <= right; v += 3) {
        HorizontalLine(left, right, v, boxGrey);
    }
}

void DrawTitleBar(const DialogItem* item)
{
    const Rect& port = item->dialog->portRect;
    const int grooveLeft = port.left + 21;
    const int grooveRight = port.right - 22;
    if (item->text[0] == 0) {
        if (item->clickable) {
            DrawGrooves(grooveLeft, grooveRight);
        }
        return;
    }
    int left = 0;
    int right = 0;
    MeasureTitle(port, item->text, &left, &right);
    DrawTitleText(item->text, left);
    if (item->clickable) {
        DrawGrooves(grooveLeft, left - 8);
        DrawGrooves(right + 8, grooveRight);
    }
}

void DrawEditText(const DialogItem* item)
{
    const bool active = item->dialog->activeEditItem == item;
    DrawBevel(item->rect, edgeGrey, Grey(0xBB));
    const Rect inside = Inset(item->rect, 1);
    DrawTextInBox(item->text, &inside, active ? PALETTERGB(255, 255, 255) : item->textColor,
                  active ? editActiveColour : editIdleColour, item->textSize, item->textStyle, 1);
}

void DrawPushButton(const DialogItem* item)
{
    const Rect& rect = item->rect;
    FillRectColor(&rect, edgeGrey);
    for (int depth = 1; depth <= 2; depth++) {
        const Rect ring = Inset(rect, depth);
        DrawBevel(ring, Grey(0xEE), Grey(0x55));
        HorizontalLine(ring.right - 1, ring.right - 1, ring.top, Grey(0x99));
        HorizontalLine(ring.left, ring.left, ring.bottom - 1, Grey(0x99));
    }
    const Rect face = Inset(rect, 3);
    DrawTextInBox(item->text, &face, PALETTERGB(0, 0, 0), silver, 10, stylePlain, 1);
}

void DrawItem(const DialogItem* item)
{
    const Rect& port = item->dialog->portRect;
    switch (item->kind) {
    case checkBoxItem:
        DrawCheckBox(item);
        break;
    case staticTextItem:
        DrawTextInBox(item->text, &item->rect, item->textColor, item->backColor, item->textSize, item->textStyle, 0);
        break;
    case closeBoxItem:
        DrawTitleBox(port.left + 8, port.top + 5);
        break;
    case rightTitleBoxItem:
        DrawTitleBox(port.right - 17, port.top + 5);
        break;
    case titleBarItem:
        DrawTitleBar(item);
        break;
    case editTextItem:
        DrawEditText(item);
        break;
    case pushButtonItem:
        DrawPushButton(item);
        break;
    default:
        break;
    }
}

void DrawDefaultFrame(const DialogItem* item)
{
    for (int distance = 1; distance <= 2; distance++) {
        DrawBevel(Inset(item->rect, -distance), editActiveColour, editActiveColour);
    }
}

} // namespace

void DrawTextInBox(const char* text, const Rect* rect, COLORREF textColour, COLORREF backColour, int size, int style,
                   int justification)
{
    SetPortFont(fontArial, size, style);
    TextForeColor(textColour);
    BackColor(backColour);
    TextBox(text + 1, 0, rect, justification);
}

void CopyItemImage(const DialogItem* item)
{
    const Rect* image = &item->images[std::min<int>(item->state, 3)];
    if (!EmptyRect(image)) {
        CopyFromInterfaceBitmap(item->dialog, image, &item->rect);
    }
}

int StaticTextHeight(WindowPtr dialog, const char* text, int width)
{
    const SavedDrawing saved = BeginDrawing(dialog);
    SetPortFont(fontArial, 10, styleBold);
    const int height = TextBoxHeight(text, width);
    EndDrawing(saved);
    return height;
}

int ButtonTextWidth(WindowPtr dialog, const char* text)
{
    const SavedDrawing saved = BeginDrawing(dialog);
    SetPortFont(fontArial, 10, stylePlain);
    const int width = StringWidth(text);
    EndDrawing(saved);
    return width;
}

void DrawMockDialog(WindowPtr dialog, bool inUpdate)
{
    if (dialog == nullptr || dialog->window == nullptr) {
        return;
    }
    const SavedDrawing saved = BeginDrawing(dialog);
    if (inUpdate) {
        BeginUpdate(dialog);
    }
    DrawDialogFrame(dialog);
    for (const DialogItem* item = dialog->firstItem; item != nullptr; item = item->next) {
        if (item->visible) {
            DrawItem(item);
        }
    }
    const DialogItem* defaultItem = dialog->defaultItem;
    if (defaultItem != nullptr && defaultItem->kind != closeBoxItem && defaultItem->kind != rightTitleBoxItem) {
        DrawDefaultFrame(defaultItem);
    }
    if (inUpdate) {
        EndUpdate(dialog);
    }
    EndDrawing(saved);
}
