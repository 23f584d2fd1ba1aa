// Texts from the string table, conversions, cursors and sounds.
#pragma once

#include "generated/text_names.h"
#include "toolbox/types.h"

// Texts are zero-terminated, at most 255 characters, in buffers of 256 bytes.
constexpr int textBufferSize = 256;

// A text's number is list + index. Where a list and an index are asked for, these are a named text's.
constexpr int textListSize = 1000;
constexpr int ListOf(TextID id)
{
    return id / textListSize * textListSize;
}
constexpr int IndexOf(TextID id)
{
    return id % textListSize;
}

// Text list + index in the program's language; Raw takes the number as it is.
void GetIndString(char* text, int list, int index);
void GetIndStringRaw(char* text, int list, int index);
void GetText(char* text, TextID id);
void NumToString(int32_t number, char* text);
int32_t StringToNum(const char* text, int32_t* number);
bool EqualString(const char* first, const char* second, int caseSensitive, int diacritics);

// Each of these is skipped whole, never cut, when the result would reach 255 characters.
void CopyText(const char* source, char* destination);
void AppendText(char* destination, const char* source);
void AppendIndString(char* destination, int list, int index);
void AppendText(char* destination, TextID id);
void AppendNumber(char* destination, int32_t value);
void AppendChar(char* destination, char character);
void AppendBlank(char* destination);
void AppendZero(char* destination);
void AppendDash(char* destination); // " - "

enum CursorId { arrowCursor = 32512, waitCursor = 32514, moveWindowCursor = 11776 };
void InitCursor(); // the arrow
void SetCursorById(int id);
// Sets the current cursor again; every window procedure does so when the pointer moves.
void RestoreCursor();

enum SoundId { refusalSound = 128, alertSound = 13071, readoutSound = 13616 };
void PlaySoundResource(int id); // returns when it has ended; silent when there is none
void StopSound();
void ReleaseSoundSlots();
void RefusalSound();
void SystemBeep();
