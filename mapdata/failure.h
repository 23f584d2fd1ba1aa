// A failure that no message is made for is told in the status strip: one sentence with what failed and why, and a
// beep. The command that failed tells it; whatever the strip shows next takes its place.
#pragma once

#include "generated/text_names.h"
#include "platform/platform.h"

// failed: a text that ends in a colon and a blank. reason: the system's error number.
void TellFailure(TextID failed, DWORD reason);
// The reason's sentence alone, behind a text.
void AppendReason(char* text, DWORD reason);
// A command begins: takes the last failure from the strip if it is still there.
void ClearFailure();
