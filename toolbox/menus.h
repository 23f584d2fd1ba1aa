// Menus by menu number and item number, or by command. A menu result is (menu number << 16) | item number, 0 for no
// choice. The numbers, the commands' names and their keys come from resources/menu.txt.
#pragma once

#include "generated/menu_commands.h"
#include "toolbox/types.h"

constexpr int frenchMenus = 100; // a menu's number in French is the English one + this

constexpr MenuNumber MenuOf(Command command)
{
    return static_cast<MenuNumber>(englishMenus + command / commandsPerMenu);
}

constexpr int ItemOf(Command command)
{
    return command % commandsPerMenu;
}

void KeepMenus(HMENU bar);        // in shell.fileMenu and its like
uint32_t MenuSelect(Point where); // of the current event; the point is not used
uint32_t MenuKey(int character);  // 0 for characters without an item and for disabled items
// Item 0 is the menu's title in the bar.
void EnableItem(HMENU menu, int item);
void DisableItem(HMENU menu, int item);
void CheckItem(HMENU menu, int item, int checked);
int IsItemDisabled(MenuNumber menu, int item); // 1 when the item or its menu's title is disabled or not there
int IsCommandDisabled(Command command);
void EnableCommand(Command command); // and its menu's title
void CheckCommand(Command command, int checked);
void DisableAllMenus();
void DisableMenuTitles(); // and redraws the bar
