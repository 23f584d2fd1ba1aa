#include "toolbox/menus.h"

#include "toolbox/shell_door.h"
#include "toolbox/windows.h"

// The bar's menus by their position, with the number of their items.
static const struct {
    HMENU ShellState::*menu;
    int itemCount;
} barMenus[] = {
    {&ShellState::fileMenu, 6},
    {&ShellState::editMenu, 5},
    {&ShellState::viewMenu, 5},
    {&ShellState::helpMenu, 2},
};

static const struct {
    int character;
    HMENU ShellState::*menu;
    int menuNumber;
    int item;
} keyEquivalents[] = {
    {'n', &ShellState::fileMenu, fileMenuNumber, 1}, {'o', &ShellState::fileMenu, fileMenuNumber, 2},
    {'s', &ShellState::fileMenu, fileMenuNumber, 4}, {'q', &ShellState::fileMenu, fileMenuNumber, 6},
    {'t', &ShellState::editMenu, editMenuNumber, 1}, {'m', &ShellState::editMenu, editMenuNumber, 2},
    {'r', &ShellState::viewMenu, viewMenuNumber, 1},
};

static uint32_t MenuResult(int menuNumber, int item)
{
    return static_cast<uint32_t>(menuNumber) << 16 | static_cast<uint32_t>(item);
}

static HWND MapWindowHandle()
{
    return shell.mapWindow != nullptr ? shell.mapWindow->window : nullptr;
}

// ---- choosing ----

uint32_t MenuSelect(Point)
{
    const int command = LOWORD(currentEvent.platformMessage.wParam);
    const int menuBase = shell.language == 1 ? 200 : 300;
    return MenuResult(command / 100 + menuBase, command % 100);
}

uint32_t MenuKey(int character)
{
    for (const auto& key : keyEquivalents) {
        if (key.character != character) {
            continue;
        }
        const HMENU menu = shell.*key.menu;
        const UINT position = static_cast<UINT>(key.item - 1);
        const UINT state = GetMenuState(menu, position, MF_BYPOSITION);
        if ((state & (MF_GRAYED | MF_DISABLED)) != 0) {
            return 0;
        }
        HiliteMenuItem(MapWindowHandle(), menu, position, MF_BYPOSITION | MF_UNHILITE);
        return MenuResult(key.menuNumber, key.item);
    }
    return 0;
}

// ---- enabling and checking ----

static void SetTitleState(HMENU menu, UINT state)
{
    UINT position = 0;
    for (const auto& entry : barMenus) {
        if (menu != nullptr && shell.*entry.menu == menu) {
            EnableMenuItem(GetMenu(MapWindowHandle()), position, MF_BYPOSITION | state);
            return;
        }
        position++;
    }
}

static void SetItemEnabling(HMENU menu, int item, UINT state)
{
    if (item == 0) {
        SetTitleState(menu, state);
    } else if (item > 0) {
        EnableMenuItem(menu, static_cast<UINT>(item - 1), MF_BYPOSITION | state);
    }
}

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

void DisableAllMenus()
{
    for (const auto& entry : barMenus) {
        for (int item = 0; item <= entry.itemCount; item++) {
            DisableItem(shell.*entry.menu, item);
        }
    }
}

void DisableMenuTitles()
{
    for (const auto& entry : barMenus) {
        DisableItem(shell.*entry.menu, 0);
    }
    DrawMenuBar(MapWindowHandle());
}
