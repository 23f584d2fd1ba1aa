// The naming rule of a map's two files, and the alert that explains it.
#include "dialogs/modal.h"
#include "mapdata/map_commands.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"
#include "toolbox/shell_door.h"

#include <algorithm>
#include <cstring>

namespace {

void FileNameForID(int id, const char* ending, char* name)
{
    CopyText("Map", name);
    for (int limit = 100; limit > 1 && id < limit; limit /= 10) {
        AppendZero(name);
    }
    AppendNumber(name, id);
    AppendText(name, ending);
}

struct RuleLine {
    int top;
    int bottom;
    TextID dataFileText;
    TextID artFileText;
};

constexpr RuleLine ruleLines[] = {
    {35, 70, dataFileNameErrorText, artFileNameErrorText},
    {70, 105, dataFileNameRuleText, artFileNameRuleText},
    {105, 140, fileNumberRuleText, fileNumberRuleText},
    {125, 160, dataFileNameExampleText, artFileNameExampleText},
};

} // namespace

void DataFileNameForID(int id, char* name)
{
    FileNameForID(id, "c.dat", name);
}

void ArtFileNameForID(int id, char* name)
{
    FileNameForID(id, "c.bmp", name);
}

int MapNumberInName(const char* name)
{
    char digits[4] = "";
    for (size_t i = 0; i < 3 && strlen(name) > i + 3; i++) {
        digits[i] = name[i + 3];
    }
    int32_t number = 0;
    StringToNum(digits, &number);
    return number >= minMapID && number <= maxMapID ? number : 0;
}

void FileNameRuleAlert(int which, const char* name)
{
    constexpr int width = 400;
    constexpr int height = 190;
    const WindowPtr dialog = NewMockDialog(0, width, height, "", nullptr);
    if (dialog == nullptr) {
        return;
    }
    DisableMenuTitles();
    const bool isDataFile = which == 1;
    char text[textBufferSize] = "";
    CopyText(name, text);
    AppendText(text, " ?");
    // A long name takes more lines, and everything below moves down.
    constexpr int nameHeight = 17;
    const int more = std::max(0, StaticTextHeight(dialog, text, width - 20) - nameHeight);
    if (more > 0) {
        SizeWindow(dialog, width, height + more, 0);
    }
    dialog->defaultItem = AddOKButton(dialog, 340, 160 + more, 390, 180 + more);
    AddItem(dialog, {staticTextItem, MakeRect(10, 10, width - 10, 10 + nameHeight + more), text});
    for (const RuleLine& line : ruleLines) {
        GetText(text, isDataFile ? line.dataFileText : line.artFileText);
        AddItem(dialog, {staticTextItem, MakeRect(10, line.top + more, width - 10, line.bottom + more), text});
    }

    ShowWindowInactive(dialog);
    DrawMockDialog(dialog, true);
    PlaySoundResource(alertSound);
    int32_t itemHit = 0;
    int32_t itemID = 0;
    while (RunDialogStep(dialog, &itemHit, &itemID) && itemHit != 1) {
    }
    DisposeMockDialog(dialog);
    PaintMapWindow();
    AdjustMenus();
}
