#include "app/commands.h"

#include "app/map_views.h"
#include "app/map_window.h"
#include "editing/palettes.h"
#include "mapdata/map_commands.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <initializer_list>

namespace {

constexpr char guideName[] = "Guide - Map Tool.pdf";
constexpr int viewMenuPosition = 2;

// Which items AdjustMenus enables in a state; bit n for item n, bit 0 for the title.
struct MenuState {
    uint32_t file;
    uint32_t edit;
    uint32_t view;
    uint32_t help;
};

constexpr uint32_t Items(std::initializer_list<int> items)
{
    uint32_t bits = 1; // the title
    for (const int item : items) {
        bits |= 1u << item;
    }
    return bits;
}

constexpr MenuState paletteState = {Items({4, 6}), 0, Items({1, 2, 3, 4, 5}), Items({1})};
constexpr MenuState noMapState = {Items({1, 2, 6}), 0, 0, Items({1})};
constexpr MenuState mapState = {Items({4, 6}), Items({1, 2, 3, 4, 5}), Items({1, 2, 3, 4, 5}), Items({1})};

void EnableItems(HMENU menu, uint32_t bits)
{
    for (int item = 0; bits != 0; item++, bits >>= 1) {
        if (bits & 1) {
            EnableItem(menu, item);
        }
    }
}

void OpenGuide()
{
    char path[MAX_PATH] = "";
    char folder[MAX_PATH] = "";
    char drive[_MAX_DRIVE] = "";
    GetModuleFileNameA(shell.appInstance, path, sizeof path);
    _splitpath(path, drive, folder, nullptr, nullptr);
    char start[MAX_PATH];
    CopyText(drive, start);
    AppendText(start, folder);
    ShellExecuteA(shell.mapWindow->window, "open", guideName, nullptr, start, SW_SHOWNORMAL);
}

} // namespace

void DoMenuCommand(uint32_t menuResult)
{
    const int menu = static_cast<int>(menuResult >> 16);
    const int item = static_cast<int>(menuResult & 0xFFFF);
    switch (menu) {
    case 201:
    case 301:
        DoFileMenu(item);
        break;
    case 202:
    case 302:
        DoEditMenu(item);
        break;
    case 203:
    case 303:
        DoViewMenu(item);
        break;
    case 204:
    case 304:
        DoHelpMenu(item);
        break;
    default:
        break;
    }
}

void DoFileMenu(int item)
{
    switch (item) {
    case 1:
        NewMapCommand();
        break;
    case 2:
        OpenMapCommand();
        break;
    case 4:
        if (SaveMap(true) == 0) {
            currentMap.mapModified = 0;
        }
        break;
    case 6:
        QuitCommand();
        break;
    default:
        break;
    }
}

void DoEditMenu(int item)
{
    switch (item) {
    case 1:
        RunFeaturesPalette();
        break;
    case 2:
        RunMoveCostPalette();
        break;
    case 3:
        VersionDialog();
        break;
    case 4:
        UTMDialog();
        break;
    case 5:
        MapIDDialog();
        break;
    default:
        break;
    }
}

void DoViewMenu(int item)
{
    switch (item) {
    case redrawItem:
        InvalidateMapRect(nullptr);
        break;
    case gridItem:
        ToggleUTMGrid();
        break;
    case gridLabelsItem:
        ToggleUTMCoordinates();
        break;
    case analysisItem:
        ToggleTerrainAnalysis();
        break;
    case readoutItem:
        ToggleCursorReadout();
        break;
    default:
        break;
    }
}

void DoHelpMenu(int item)
{
    if (item == 1) {
        OpenGuide();
    }
}

void DoFunctionKey(uint32_t message)
{
    if (message == f8Key && !IsViewItemDisabled(analysisItem)) {
        ToggleTerrainAnalysis();
    } else if (message == f9Key && !IsViewItemDisabled(readoutItem)) {
        ToggleCursorReadout();
    }
}

int IsViewItemDisabled(int item)
{
    constexpr UINT disabled = MF_GRAYED | MF_DISABLED;
    if (!MapWindowExists()) {
        return 1;
    }
    const UINT title = GetMenuState(GetMenu(shell.mapWindow->window), viewMenuPosition, MF_BYPOSITION);
    const UINT state = GetMenuState(shell.viewMenu, static_cast<UINT>(item - 1), MF_BYPOSITION);
    return (title & disabled) != 0 || (state & disabled) != 0 ? 1 : 0;
}

void AdjustMenus()
{
    if (!MapWindowExists()) {
        return;
    }
    DisableAllMenus();
    const MenuState& state = shell.featuresPaletteOpen || shell.moveCostPaletteOpen ? paletteState
                             : shell.mapShown                                       ? mapState
                                                                                    : noMapState;
    EnableItems(shell.fileMenu, state.file);
    EnableItems(shell.editMenu, state.edit);
    EnableItems(shell.viewMenu, state.view);
    EnableItems(shell.helpMenu, state.help);

    const HWND window = shell.mapWindow->window;
    DrawMenuBar(window);
    SetWindowPos(window, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    DrawMenuBar(window);
}
