// The one door upwards. The Toolbox, the dialogs, the map files and the editing tools call back into the shell: a
// window procedure scrolls the map, a modal dialog dispatches a menu command, a palette repaints the map window.
// Those calls, and the shell's state that all layers read, are declared here and defined in app/; nothing else is
// called upwards.
#pragma once

#include "generated/text_names.h"
#include "toolbox/events.h"
#include "toolbox/types.h"

struct ShellState {
    HINSTANCE appInstance = nullptr;
    uint32_t language = 1; // 1 English, else French
    int16_t programVersion = 105;
    uint32_t quitRequested = 0;
    int startUpFailed = 0;
    WindowPtr mapWindow = nullptr;
    HDC mapWindowDC = nullptr; // the map window's own; logical coordinates are map coordinates
    HPALETTE programPalette = nullptr;
    HDC interfaceDC = nullptr; // the interface bitmap
    HBITMAP interfaceBitmap = nullptr;
    HGDIOBJ interfaceDisplaced = nullptr;
    HMENU fileMenu = nullptr;
    HMENU editMenu = nullptr;
    HMENU viewMenu = nullptr;
    HMENU helpMenu = nullptr;
    HACCEL acceleratorTable = nullptr;
    int16_t mapShown = 0; // the map image holds the art
    uint32_t cursorReadoutOn = 0;
    Point lastReadoutPoint = {};
    uint32_t featuresPaletteOpen = 0;
    uint32_t moveCostPaletteOpen = 0;
    Rect screenRect = {}; // the primary screen
    COLORREF windowBackground = 0;
};

struct ViewState {
    Rect viewRect = {}; // the part of the map shown, in map coordinates; (left, top) is the scroll position
    int hasScrollBars = 0;
    HWND verticalScrollBar = nullptr;
    HWND horizontalScrollBar = nullptr;
    WindowPtr mapImage = nullptr; // the art, with grid or analysis drawn in
    char statusText[256] = {};
    int32_t frameLeft = 0; // window frame widths, menu bar included, measured when the window is fitted to a map
    int32_t frameTop = 0;
    int32_t frameBottom = 0;
    HCURSOR currentCursor = nullptr;
    int currentCursorIsOwn = 0; // loaded from the program's resources
    int8_t utmGridMode = 0;     // 0 no grid, 1 lines, 2 lines with kilometre numbers
    int16_t terrainAnalysisOn = 0;
};

// Set once at start-up; palette-relative values.
struct Colours {
    COLORREF black, grey17, grey34, grey51, grey85, grey119, grey128, grey153, grey170, grey187, grey192, grey221;
    COLORREF grey238, white, red, green, blue, purple, paleYellow, tan, olive;
};

extern ShellState shell;
extern ViewState view;
extern Colours colours;

// ---- commands ----

void DoMenuCommand(uint32_t menuResult);
void DoFunctionKey(uint32_t message);
void AdjustMenus(); // brings every menu in line with the program's state
void RequestQuit();
void MakeVersionText(char* text);

// ---- the map window ----

void PaintMapWindow();                                         // the invalid part, now
void InvalidateMapRect(const Rect* rect);                      // map coordinates; null for everything
void InvalidateWindowRect(WindowPtr window, const Rect* rect); // map coordinates for the map window
void ScrollMap(int updateBars, int dh, int dv);                // clamped to the map
int HandleMapKey(uint32_t key);                                // 1 when the key was one of its own
int HandleContentClick();                                      // the current event; 1 when it took the click
void CopyMapImageToView();                                     // and the background where the map ends
void DrawStatusStrip();
void SetStatusText(int redraw, int list, int index, const char* text);
void SetStatusText(int redraw, TextID text);
void ClearStatusText();

// ---- loading a map ----

void FitWindowToMap();
void CreateScrollBarsIfNeeded();
void ReleaseMapResources(); // map image, cell columns and interface bitmap
int LoadInterfaceBitmap();  // 0 on success, also when it is there already

void KeepRescueCopy(); // of work that is not in the map's file, where a change was noted; by every loop's next event

// ---- the map image and the views drawn into it ----

// Draws the whole map image anew: the art, or the terrain analysis while that is on, and over it the UTM grid when it
// is shown. The window is not repainted. 0, or LoadMapArt's status, with the image as it was. Whoever changes what
// the image shows calls this; the four below are its parts.
int16_t ComposeMapImage();
int16_t LoadMapArt();         // art or analysis; 0 when the map image holds it
void RenderTerrainAnalysis(); // with the grid over it
void DrawUTMGrid();           // over what is there, in the mode that is set
void RedrawUTMGridIfShown();
void UpdateCursorReadout(); // the idle step of every loop that shows the map

// ---- dialogs ----

// The clickable dialog item under a point of the dialog, for the part finder. 1 when there is one.
int FindItemAt(Point point, WindowPtr dialog, DialogItem** item);
int DialogItemKind(const DialogItem* item);
