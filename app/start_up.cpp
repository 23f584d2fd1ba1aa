#include "app/application.h"
#include "app/map_window.h"
#include "dialogs/dialog.h"
#include "editing/editing.h"
#include "mapdata/map_record.h"
#include "toolbox/drawing.h"
#include "toolbox/menus.h"
#include "toolbox/offscreen.h"
#include "toolbox/resources.h"
#include "toolbox/windows.h"

#include <vector>

namespace {

constexpr int programIcon = 128;
constexpr int programSmallIcon = 1;
constexpr char programName[] = "Kestrel Map Tool";
constexpr int bitmapHeaderSize = 40;

struct ClassRow {
    const char* name;
    UINT style;
    WNDPROC procedure;
    bool isMapWindow;
};

// The classes draw their own background and set the cursor themselves; each window keeps its record in its extra
// word.
const ClassRow classTable[] = {
    {"KestrelWClass", CS_VREDRAW | CS_HREDRAW | CS_OWNDC | CS_NOCLOSE, MapWindowProcedure, true},
    {"WMockDialogClass", CS_OWNDC, DialogWindowProcedure, false},
    {"ScrollSubWindowClass", CS_OWNDC, ScrollSubWindowProcedure, false},
    {"WInfoWindowClass", CS_OWNDC, InfoWindowProcedure, false},
};

constexpr uint32_t startUpLanguage = KESTREL_LANGUAGE; // of the build; nothing changes it while the program runs

void SetStartValues()
{
    const HINSTANCE instance = shell.appInstance;
    shell = {};
    shell.appInstance = instance;
    shell.language = startUpLanguage;
    view = {};
    currentMap = {};
    editing = {};
    editing.gridColourItem = 208; // the red grid
    ReleaseSoundSlots();
}

const BITMAPINFO* FindBitmapResource(int number)
{
    const HRSRC resource = FindResourceA(shell.appInstance, MAKEINTRESOURCEA(number), RT_BITMAP);
    if (resource == nullptr) {
        return nullptr;
    }
    return static_cast<const BITMAPINFO*>(LockResource(LoadResource(shell.appInstance, resource)));
}

} // namespace

void SetNamedColours()
{
    const auto grey = [](int level) { return PALETTERGB(level, level, level); };
    colours.black = grey(0);
    colours.grey17 = grey(17);
    colours.grey34 = grey(34);
    colours.grey51 = grey(51);
    colours.grey85 = grey(85);
    colours.grey119 = grey(119);
    colours.grey128 = grey(128);
    colours.grey153 = grey(153);
    colours.grey170 = grey(170);
    colours.grey187 = grey(187);
    colours.grey192 = grey(192);
    colours.grey221 = grey(221);
    colours.grey238 = grey(238);
    colours.white = grey(255);
    colours.red = PALETTERGB(255, 0, 0);
    colours.green = PALETTERGB(0, 255, 0);
    colours.blue = PALETTERGB(0, 0, 255);
    colours.purple = PALETTERGB(122, 0, 122);
    colours.paleYellow = PALETTERGB(255, 255, 204);
    colours.tan = PALETTERGB(204, 154, 102);
    colours.olive = PALETTERGB(89, 122, 25);
    shell.windowBackground = colours.grey192;
}

int RegisterWindowClasses()
{
    shell.language = startUpLanguage;
    shell.programVersion = 105;
    for (const ClassRow& row : classTable) {
        WNDCLASSEXA record = {};
        record.cbSize = sizeof record;
        record.style = row.style;
        record.lpfnWndProc = row.procedure;
        record.cbWndExtra = sizeof(WindowPtr);
        record.hInstance = shell.appInstance;
        record.lpszClassName = row.name;
        if (row.isMapWindow) {
            record.hIcon = LoadIconA(shell.appInstance, MAKEINTRESOURCEA(programIcon));
            record.hIconSm = static_cast<HICON>(LoadImageA(shell.appInstance, MAKEINTRESOURCEA(programSmallIcon),
                                                           IMAGE_ICON, GetSystemMetrics(SM_CXSMICON),
                                                           GetSystemMetrics(SM_CYSMICON), LR_DEFAULTCOLOR));
            record.lpszMenuName = shell.language == 2 ? "F_WKestrelMainMenu" : "E_WKestrelMainMenu";
        }
        if (RegisterClassExA(&record) == 0) {
            return 0;
        }
    }
    return 1;
}

void InitApplication()
{
    SetStartValues();
    shell.screenRect = MakeRect(0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    shell.acceleratorTable = LoadAcceleratorsA(shell.appInstance, "KESTRELACCEL");
    CreateMapWindow();
    if (shell.mapWindow == nullptr) {
        shell.startUpFailed = 1;
        RequestQuit();
        return;
    }

    KeepMenus(GetMenu(shell.mapWindow->window));
    SetNamedColours();
    SetPort(shell.mapWindow);
    ForeColor(colours.black);
    BackColor(colours.white);
    view.viewRect = shell.mapWindow->portRect;
    FillRectColor(&shell.mapWindow->portRect, shell.windowBackground);
    ShowWindowInactive(shell.mapWindow);

    LoadProgramPalette();
    if (LoadInterfaceBitmap() != 0) {
        shell.startUpFailed = 1;
        RequestQuit();
        return;
    }
    InvalidateMapRect(nullptr);
    AdjustMenus();
    InitCursor();
}

void MakeVersionText(char* text)
{
    text[0] = 0;
    AppendChar(text, 'v');
    AppendNumber(text, shell.programVersion);
    AppendText(text, "AA");
}

void MakeProgramTitle(char* title)
{
    char version[textBufferSize];
    MakeVersionText(version);
    CopyText(programName, title);
    AppendBlank(title);
    AppendText(title, version);
}

void CreateMapWindow()
{
    char title[textBufferSize];
    MakeProgramTitle(title);
    const Rect anyPlace = {};
    shell.mapWindow = NewWindow("KestrelWClass", nullptr, &anyPlace, title, 0, 99, FRONT_WINDOW, 0, 0);
    if (shell.mapWindow == nullptr) {
        return;
    }
    shell.mapWindowDC = shell.mapWindow->dc;
    RefreshContentRect(shell.mapWindow);
    view.viewRect = shell.mapWindow->portRect;
}

HPALETTE PaletteFromBitmap(int bitmapResource)
{
    const BITMAPINFO* bitmap = FindBitmapResource(bitmapResource);
    if (bitmap == nullptr) {
        return nullptr;
    }
    const int bits = bitmap->bmiHeader.biBitCount;
    const int count = bits == 4 ? 16 : bits == 1 ? 2 : 256;
    std::vector<PALETTEENTRY> block(static_cast<size_t>(count) + 1); // the record's head takes one entry's room
    auto* palette = reinterpret_cast<LOGPALETTE*>(block.data());
    palette->palVersion = 0x300;
    palette->palNumEntries = static_cast<WORD>(count);
    for (int i = 0; i < count; i++) {
        const RGBQUAD& colour = bitmap->bmiColors[i];
        palette->palPalEntry[i] = {colour.rgbRed, colour.rgbGreen, colour.rgbBlue, 0};
    }
    return CreatePalette(palette);
}

void LoadProgramPalette()
{
    shell.programPalette = PaletteFromBitmap(interfaceBitmapResource);
    if (shell.programPalette != nullptr) {
        SelectPalette(shell.mapWindowDC, shell.programPalette, FALSE);
        RealizePalette(shell.mapWindowDC);
    }
}

namespace {

void DisposeInterfaceBitmap()
{
    if (shell.interfaceDC == nullptr) {
        return;
    }
    SelectObject(shell.interfaceDC, shell.interfaceDisplaced);
    SelectPalette(shell.interfaceDC, static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)), FALSE);
    DeleteDC(shell.interfaceDC);
    DeleteObject(shell.interfaceBitmap);
    shell.interfaceDC = nullptr;
    shell.interfaceBitmap = nullptr;
    shell.interfaceDisplaced = nullptr;
}

} // namespace

int LoadInterfaceBitmap()
{
    if (shell.interfaceDC != nullptr) {
        return 0;
    }
    const BITMAPINFO* resource = FindBitmapResource(interfaceBitmapResource);
    if (resource == nullptr) {
        return 1;
    }
    const BITMAPINFOHEADER& header = resource->bmiHeader;
    const int tableEntries = header.biBitCount == 4 ? 16 : 256;
    const BYTE* pixels = reinterpret_cast<const BYTE*>(resource) + bitmapHeaderSize +
                         static_cast<size_t>(tableEntries) * sizeof(RGBQUAD);
    const HBITMAP loaded = CreateDIBitmap(shell.mapWindowDC, &header, CBM_INIT, pixels, resource, DIB_RGB_COLORS);
    if (loaded == nullptr) {
        return 1;
    }
    shell.interfaceDC = CreateCompatibleDC(shell.mapWindowDC);
    shell.interfaceBitmap = CreateCompatibleBitmap(shell.mapWindowDC, header.biWidth, header.biHeight);
    if (shell.interfaceDC == nullptr || shell.interfaceBitmap == nullptr) {
        DeleteDC(shell.interfaceDC);
        DeleteObject(shell.interfaceBitmap);
        shell.interfaceDC = nullptr;
        shell.interfaceBitmap = nullptr;
        DeleteObject(loaded);
        return 1;
    }
    shell.interfaceDisplaced = SelectObject(shell.interfaceDC, shell.interfaceBitmap);
    if (shell.programPalette != nullptr) {
        SelectPalette(shell.interfaceDC, shell.programPalette, FALSE);
    }
    const HDC source = CreateCompatibleDC(shell.mapWindowDC);
    const HGDIOBJ displaced = SelectObject(source, loaded);
    const BOOL copied = source != nullptr && displaced != nullptr &&
                        BitBlt(shell.interfaceDC, 0, 0, header.biWidth, header.biHeight, source, 0, 0, SRCCOPY);
    SelectObject(source, displaced);
    DeleteDC(source);
    DeleteObject(loaded);
    if (!copied) {
        DisposeInterfaceBitmap();
    }
    return copied ? 0 : 1;
}

void ReleaseMapResources()
{
    DisposeGWorld(view.mapImage);
    view.mapImage = nullptr;
    shell.mapShown = 0;
    ReleaseCellColumns();
    DisposeInterfaceBitmap();
}

void RequestQuit()
{
    StopSound();
    shell.quitRequested = 1;
}

void ShutdownApplication()
{
    StopSound();
    if (shell.programPalette != nullptr) {
        if (shell.mapWindowDC != nullptr) {
            SelectPalette(shell.mapWindowDC, shell.mapWindow->initialPalette, FALSE);
        }
        if (shell.interfaceDC != nullptr) {
            SelectPalette(shell.interfaceDC, static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)), FALSE);
        }
        DeleteObject(shell.programPalette);
        shell.programPalette = nullptr;
    }
    ReleaseMapResources();
    ReleaseSoundSlots();
    DestroyMapWindow();
}
