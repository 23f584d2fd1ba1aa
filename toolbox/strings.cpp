#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <charconv>
#include <cstring>

namespace {

// A result that reaches this length is not made.
constexpr size_t lengthLimit = 255;

} // namespace

// ---- string lists ----

void GetIndString(char* text, int list, int index)
{
    constexpr int frenchOffset = 500;
    GetIndStringRaw(text, shell.language == 1 ? list : list + frenchOffset, index);
}

void GetIndStringRaw(char* text, int list, int index)
{
    text[0] = '\0';
    LoadStringA(shell.appInstance, static_cast<UINT>(list + index), text, static_cast<int>(lengthLimit));
}

void GetText(char* text, TextID id)
{
    GetIndString(text, ListOf(id), IndexOf(id));
}

// ---- conversions ----

void NumToString(int32_t number, char* text)
{
    *std::to_chars(text, text + textBufferSize - 1, number).ptr = '\0';
}

namespace {

bool IsWhiteSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

} // namespace

int32_t StringToNum(const char* text, int32_t* number)
{
    while (IsWhiteSpace(*text)) {
        text++;
    }
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') {
        text++;
    }
    uint32_t value = 0; // turns over where a number is too large
    for (; *text >= '0' && *text <= '9'; text++) {
        value = value * 10 + static_cast<uint32_t>(*text - '0');
    }
    *number = static_cast<int32_t>(negative ? 0 - value : value);
    return *number;
}

namespace {

char LowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

} // namespace

bool EqualString(const char* first, const char* second, int caseSensitive, int)
{
    if (caseSensitive) {
        return std::strcmp(first, second) == 0;
    }
    while (*first != '\0' && LowerCase(*first) == LowerCase(*second)) {
        first++;
        second++;
    }
    return LowerCase(*first) == LowerCase(*second);
}

// ---- building texts ----

void CopyText(const char* source, char* destination)
{
    const size_t length = std::strlen(source);
    if (length < lengthLimit) {
        std::memmove(destination, source, length + 1);
    }
}

void AppendText(char* destination, const char* source)
{
    const size_t length = std::strlen(destination);
    const size_t added = std::strlen(source);
    if (length + added < lengthLimit) {
        std::memmove(destination + length, source, added);
        destination[length + added] = '\0';
    }
}

void AppendIndString(char* destination, int list, int index)
{
    char text[textBufferSize];
    GetIndString(text, list, index);
    AppendText(destination, text);
}

void AppendText(char* destination, TextID id)
{
    AppendIndString(destination, ListOf(id), IndexOf(id));
}

void AppendNumber(char* destination, int32_t value)
{
    char text[textBufferSize];
    NumToString(value, text);
    AppendText(destination, text);
}

// One character more than the others is let in: the buffer holds 255 and the zero byte.
void AppendChar(char* destination, char character)
{
    const size_t length = std::strlen(destination);
    if (length < lengthLimit) {
        destination[length] = character;
        destination[length + 1] = '\0';
    }
}

void AppendBlank(char* destination)
{
    AppendText(destination, " ");
}

void AppendZero(char* destination)
{
    AppendText(destination, "0");
}

void AppendDash(char* destination)
{
    AppendText(destination, " - ");
}
