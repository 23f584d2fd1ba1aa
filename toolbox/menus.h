// Menus by menu number and item number. A menu result is (menu number << 16) | item number, 0 for no choice.
#pragma once

#include "toolbox/types.h"

enum MenuNumber { fileMenuNumber = 201, editMenuNumber = 202, viewMenuNumber = 203, helpMenuNumber = 204 };

uint32_t MenuSelect(Point where); // of the current event; the point is not used
uint32_t MenuKey(int character);  // 0 for characters without an item and for disabled items
// Item 0 is the menu's title in the bar.
void EnableItem(HMENU menu, int item);
void DisableItem(HMENU menu, int item);
void CheckItem(HMENU menu, int item, int checked);
void DisableAllMenus();
void DisableMenuTitles(); // and redraws the bar
