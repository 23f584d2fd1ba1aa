#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

namespace {

bool IsOwnCursor(int id)
{
    constexpr int firstOwnCursor = 11775;
    constexpr int lastOwnCursor = 11778;
    constexpr int framedBoxCursor = 16403;
    return (id >= firstOwnCursor && id <= lastOwnCursor) || id == framedBoxCursor;
}

} // namespace

void SetCursorById(int id)
{
    const bool own = IsOwnCursor(id);
    ShowCursor(FALSE);
    const HCURSOR cursor = LoadCursorA(own ? shell.appInstance : nullptr, MAKEINTRESOURCEA(id));
    SetCursor(cursor);
    if (view.currentCursorIsOwn && view.currentCursor != cursor) {
        DestroyCursor(view.currentCursor);
    }
    view.currentCursor = cursor;
    view.currentCursorIsOwn = own ? 1 : 0;
    ShowCursor(TRUE);
}

void InitCursor()
{
    SetCursorById(arrowCursor);
}

void RestoreCursor()
{
    SetCursor(view.currentCursor);
}
