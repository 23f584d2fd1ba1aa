#include "app/commands.h"

#include "app/map_views.h"
#include "app/map_window.h"
#include "editing/palettes.h"
#include "mapdata/map_commands.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <iterator>

namespace {

constexpr char guideName[] = "Guide - Map Tool.pdf";

void SaveMapAsAsked()
{
    if (SaveMap(true) == 0) {
        currentMap.mapModified = 0;
    }
}

void RedrawMap()
{
    InvalidateMapRect(nullptr);
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

// The program's state, as far as it enables commands: one bit.
enum ProgramState : unsigned { noMap = 1, mapAlone = 2, paletteOpen = 4 };
constexpr unsigned never = 0;
constexpr unsigned withMap = mapAlone | paletteOpen;
constexpr unsigned always = noMap | withMap;

ProgramState CurrentState()
{
    if (shell.featuresPaletteOpen || shell.moveCostPaletteOpen) {
        return paletteOpen;
    }
    return shell.mapShown ? mapAlone : noMap;
}

} // namespace

const CommandRow commandTable[] = {
    {newMapCommand, noMap, NewMapCommand},
    {openMapCommand, noMap, OpenMapCommand},
    {saveMapCommand, withMap, SaveMapAsAsked},
    {quitCommand, always, QuitCommand},
    {terrainCommand, mapAlone, RunFeaturesPalette},
    {moveCostCommand, mapAlone, RunMoveCostPalette},
    {mapVersionCommand, mapAlone, VersionDialog},
    {mapUTMCommand, mapAlone, UTMDialog},
    {mapIDCommand, mapAlone, MapIDDialog},
    {redrawMapCommand, withMap, RedrawMap},
    {utmGridCommand, withMap, ToggleUTMGrid},
    {utmCoordinatesCommand, withMap, ToggleUTMCoordinates},
    {terrainAnalysisCommand, withMap, ToggleTerrainAnalysis},
    {cursorReadoutCommand, withMap, ToggleCursorReadout},
    {userGuideCommand, always, OpenGuide},
    {aboutCommand, never, nullptr},
};
const int commandCount = std::size(commandTable);

namespace {

void RunItem(MenuNumber menu, int item)
{
    for (const CommandRow& row : commandTable) {
        if (MenuOf(row.command) == menu && ItemOf(row.command) == item && row.run != nullptr) {
            row.run();
        }
    }
}

} // namespace

void DoMenuCommand(uint32_t menuResult)
{
    const int item = static_cast<int>(menuResult & 0xFFFF);
    switch (menuResult >> 16) {
    case fileMenuNumber:
    case fileMenuNumber + frenchMenus:
        DoFileMenu(item);
        break;
    case editMenuNumber:
    case editMenuNumber + frenchMenus:
        DoEditMenu(item);
        break;
    case viewMenuNumber:
    case viewMenuNumber + frenchMenus:
        DoViewMenu(item);
        break;
    case helpMenuNumber:
    case helpMenuNumber + frenchMenus:
        DoHelpMenu(item);
        break;
    default:
        break;
    }
}

void DoFileMenu(int item)
{
    RunItem(fileMenuNumber, item);
}

void DoEditMenu(int item)
{
    RunItem(editMenuNumber, item);
}

void DoViewMenu(int item)
{
    RunItem(viewMenuNumber, item);
}

void DoHelpMenu(int item)
{
    RunItem(helpMenuNumber, item);
}

void DoFunctionKey(uint32_t message)
{
    for (const CommandKey& row : functionKeys) {
        if (static_cast<uint32_t>(row.key) == message && !IsCommandDisabled(row.command)) {
            RunItem(MenuOf(row.command), ItemOf(row.command));
        }
    }
}

int IsViewItemDisabled(int item)
{
    return IsItemDisabled(viewMenuNumber, item);
}

void AdjustMenus()
{
    if (!MapWindowExists()) {
        return;
    }
    DisableAllMenus();
    const ProgramState state = CurrentState();
    for (const CommandRow& row : commandTable) {
        if (row.states & state) {
            EnableCommand(row.command);
        }
    }

    const HWND window = shell.mapWindow->window;
    DrawMenuBar(window);
    SetWindowPos(window, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    DrawMenuBar(window);
}
