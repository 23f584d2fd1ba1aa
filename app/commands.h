// The commands of the four menus, the function keys, and which items are enabled when. DoMenuCommand, DoFunctionKey
// and AdjustMenus are declared in toolbox/shell_door.h.
#pragma once

#include "toolbox/shell_door.h"

void DoFileMenu(int item);
void DoEditMenu(int item);
void DoViewMenu(int item);
void DoHelpMenu(int item);
int IsViewItemDisabled(int item); // 1 when the View menu's title or the item is disabled

// View menu items, by position from 1.
enum ViewItem { redrawItem = 1, gridItem = 2, gridLabelsItem = 3, analysisItem = 4, readoutItem = 5 };
