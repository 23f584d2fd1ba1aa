// Offscreen surfaces: ports over a memory device context with a bitmap of the windows' format.
#pragma once

#include "toolbox/drawing.h"

// Makes a surface of the bounds' size and stores it; its device context is compatible with the map window's. 0 on
// success, 1 with *world null otherwise. depth, and the three words behind the bounds, are not used.
int16_t NewGWorld(WindowPtr* world, int depth, const Rect* bounds, void* colours, void* device, uint32_t flags);
// Takes the surface apart: displaced objects back, bitmap, device context and record freed. None is ignored.
void DisposeGWorld(WindowPtr world);
void GetGWorld(WindowPtr* port, uintptr_t* device);
void SetGWorld(WindowPtr port, uintptr_t device);
// Copies destination's size from source's top-left corner, unscaled. mode and mask are not used.
void CopyBits(HDC sourceDC, HDC destinationDC, const Rect* source, const Rect* destination, int mode, HRGN mask);
