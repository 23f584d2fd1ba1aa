// What tests may do to the kernel layer.
#pragma once

// Lets this many calls of GlobalAlloc succeed, makes the one after them fail, and those behind it succeed again. -1:
// none fails.
void FailAllocationAfter(int successes);
// Blocks that GlobalAlloc has given and GlobalFree not taken back.
int GlobalBlocksInUse();
