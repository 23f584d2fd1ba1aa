// Puts the window layer back to its beginning.
#pragma once

// Destroys all windows, window classes, menus, cursors and icons and empties the queue, without sending any message,
// as the end of a process does on Windows. host may be null. Files, memory blocks and drawing objects are left alone.
void PlatformReset();
