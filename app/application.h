// The program's spine: start-up, main loop, shutdown.
#pragma once

#include "toolbox/shell_door.h"

// The platform's entry point. Only the instance is used. Returns 0, or 1 when the start-up failed, after one line on
// standard error.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previousInstance, LPSTR commandLine, int showCommand);

int RegisterWindowClasses(); // 1 when all four were registered, 0 at the first failure
void InitApplication();
void SetNamedColours(); // and the background around a map
void CreateMapWindow();
void LoadProgramPalette();
HPALETTE PaletteFromBitmap(int bitmapResource); // null when there is no such bitmap
void RunMainLoop();
void ShutdownApplication();

// Routers of the main loop, for the current event.
void DoMouseDown();
void DoKeyDown();
void DoUpdate();

// The interface bitmap, which is also the source of the program's palette.
constexpr int interfaceBitmapResource = 24965;
