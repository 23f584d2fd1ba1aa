#include "toolbox/menus.h"

#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

namespace {

const struct BarMenu {
    MenuNumber number;
    HMENU ShellState::*handle;
} barMenus[] = {
    {fileMenuNumber, &ShellState::fileMenu},
    {editMenuNumber, &ShellState::editMenu},
    {viewMenuNumber, &ShellState::viewMenu},
    {helpMenuNumber, &ShellState::helpMenu},
};

constexpr UINT disabledFlags = MF_GRAYED | MF_DISABLED;

UINT PlaceInBar(MenuNumber menu)
{
    return static_cast<UINT>(menu - englishMenus - 1);
}

HMENU HandleOf(MenuNumber menu)
{
    for (const BarMenu& entry : barMenus) {
        if (entry.number == menu) {
            return shell.*entry.handle;
        }
    }
    return nullptr;
}

uint32_t MenuResult(int menuNumber, int item)
{
    return static_cast<uint32_t>(menuNumber) << 16 | static_cast<uint32_t>(item);
}

HWND MapWindowHandle()
{
    return shell.mapWindow != nullptr ? shell.mapWindow->window : nullptr;
}

} // namespace

// ---- choosing ----

void KeepMenus(HMENU bar)
{
    for (const BarMenu& entry : barMenus) {
        shell.*entry.handle = GetSubMenu(bar, static_cast<int>(PlaceInBar(entry.number)));
    }
}

uint32_t MenuSelect(Point)
{
    const Command command = static_cast<Command>(LOWORD(currentEvent.platformMessage.wParam));
    return MenuResult(MenuOf(command) + (shell.language == 1 ? 0 : frenchMenus), ItemOf(command));
}

uint32_t MenuKey(int character)
{
    for (const CommandKey& row : controlLetters) {
        if (row.key != character) {
            continue;
        }
        const HMENU menu = HandleOf(MenuOf(row.command));
        const UINT position = static_cast<UINT>(ItemOf(row.command) - 1);
        if ((GetMenuState(menu, position, MF_BYPOSITION) & disabledFlags) != 0) {
            return 0;
        }
        HiliteMenuItem(MapWindowHandle(), menu, position, MF_BYPOSITION | MF_UNHILITE);
        return MenuResult(MenuOf(row.command), ItemOf(row.command));
    }
    return 0;
}

// ---- enabling and checking ----

namespace {

void SetTitleState(HMENU menu, UINT state)
{
    for (const BarMenu& entry : barMenus) {
        if (menu != nullptr && shell.*entry.handle == menu) {
            EnableMenuItem(GetMenu(MapWindowHandle()), PlaceInBar(entry.number), MF_BYPOSITION | state);
            return;
        }
    }
}

void SetItemEnabling(HMENU menu, int item, UINT state)
{
    if (item == 0) {
        SetTitleState(menu, state);
    } else if (item > 0) {
        EnableMenuItem(menu, static_cast<UINT>(item - 1), MF_BYPOSITION | state);
    }
}

} // namespace

void EnableItem(HMENU menu, int item)
{
    SetItemEnabling(menu, item, MF_ENABLED);
}

void DisableItem(HMENU menu, int item)
{
    SetItemEnabling(menu, item, MF_GRAYED);
}

void CheckItem(HMENU menu, int item, int checked)
{
    if (item > 0) {
        CheckMenuItem(menu, static_cast<UINT>(item - 1), MF_BYPOSITION | (checked ? MF_CHECKED : MF_UNCHECKED));
    }
}

int IsItemDisabled(MenuNumber menu, int item)
{
    const UINT title = GetMenuState(GetMenu(MapWindowHandle()), PlaceInBar(menu), MF_BYPOSITION);
    const UINT state = GetMenuState(HandleOf(menu), static_cast<UINT>(item - 1), MF_BYPOSITION);
    return ((title | state) & disabledFlags) != 0 ? 1 : 0;
}

int IsCommandDisabled(Command command)
{
    return IsItemDisabled(MenuOf(command), ItemOf(command));
}

void EnableCommand(Command command)
{
    const HMENU menu = HandleOf(MenuOf(command));
    EnableItem(menu, 0);
    EnableItem(menu, ItemOf(command));
}

void CheckCommand(Command command, int checked)
{
    CheckItem(HandleOf(MenuOf(command)), ItemOf(command), checked);
}

void DisableAllMenus()
{
    for (const BarMenu& entry : barMenus) {
        const HMENU menu = shell.*entry.handle;
        const int itemCount = GetMenuItemCount(menu);
        for (int item = 0; item <= itemCount; item++) {
            DisableItem(menu, item);
        }
    }
}

void DisableMenuTitles()
{
    for (const BarMenu& entry : barMenus) {
        DisableItem(shell.*entry.handle, 0);
    }
    DrawMenuBar(MapWindowHandle());
}
