// Every dialog, question and message of the program: declined, it changes nothing, and a user who wants to leave the
// program from within it either can, without harm to the file, or is not heard.
#include "mapdata/map_record.h"
#include "platform/kernel/test_hooks.h"
#include "tests/editor_session.h"

#include <cstring>

namespace {

// How far the menus work under a dialog. Keys ask the items, all else also the titles.
enum Menus { allGrey, titlesGrey, menusWork };

struct DialogRow {
    const char* name;
    bool withMap; // whether the map is open before
    std::function<void()> open;
    std::string text;                 // of the dialog, as far as it tells it from the others
    std::vector<const char*> refusal; // the buttons that decline, none for the close box
    Menus menus;
};

constexpr const char* quitQuestion = "Do you really want to quit? ";
constexpr const char* saveQuestion = "Save map work before quitting?";
const std::string longFileName = std::string(150, 'W') + " of a map.dat";
const char* const longName = longFileName.c_str();
constexpr const char* versionLabel = ": Map version number (100 to 999)";

std::vector<DialogRow> EveryDialog()
{
    const auto command = [](int id) { return [=] { ScriptMenu(id); }; };
    const auto commandOnFile = [](int id, const char* file) {
        return [=] {
            ScriptFile(file);
            ScriptMenu(id);
        };
    };
    const auto question = [](char palette, int item) {
        return [=] {
            OpenPalette(palette, 202);
            ClickItem(item);
        };
    };
    const auto band = [](char palette) {
        return [=] {
            OpenPalette(palette, 202);
            AltDragOnMap({{15, 15}, {44, 33}});
        };
    };
    const auto wrongNumber = [] {
        ScriptMenu(203);
        ClickItem(105);
        ScriptText("99");
        ClickButton("OK");
    };
    const auto unsavedWork = [] {
        ThenCheck([] { currentMap.mapModified = 1; });
        ScriptMenu(106);
    };
    const auto shortMemory = [] {
        ThenCheck([] { FailAllocationAfter(0); });
        ScriptFile("Map101c.dat");
        ScriptMenu(102);
    };
    return {
        {"quit without a map", false, command(106), quitQuestion, {"No"}, allGrey},
        {"message", false, commandOnFile(102, "nowhere.dat"), "nowhere.dat ?", {"OK"}, titlesGrey},
        {"long name", false, commandOnFile(102, longName), longName, {"OK"}, titlesGrey},
        {"short memory", false, shortMemory, "Memory Allocation Error!", {"Continue"}, menusWork},
        {"new map", false, commandOnFile(101, "Map102c.bmp"), "Map102c.dat and Map102c.bmp", {"Cancel"}, titlesGrey},
        {"quit", true, command(106), quitQuestion, {"No"}, allGrey},
        {"unsaved work", true, unsavedWork, saveQuestion, {"Cancel"}, menusWork},
        {"save", true, command(104), "Do you really want to permanently change", {"No"}, allGrey},
        {"version", true, command(203), versionLabel, {"Cancel"}, titlesGrey},
        {"wrong number", true, wrongNumber, "Map version error. ", {"OK", "Cancel"}, titlesGrey},
        {"UTM numbers", true, command(204), ": UTM Grid Easting", {"Cancel"}, titlesGrey},
        {"identity", true, command(205), ": Map ID number", {"Cancel"}, titlesGrey},
        {"remove features", true, question('t', 214), "Do you really want to remove all", {"No"}, allGrey},
        {"zero move costs", true, question('m', 216), "Do you really want to zero all", {"No"}, allGrey},
        {"slow woods", true, question('m', 217), "Do you really want to set all woods", {"No"}, allGrey},
        {"fill features", true, band('t'), "", {"Cancel"}, menusWork},
        {"fill move costs", true, band('m'), "", {"Cancel"}, menusWork},
        {"features palette", true, [] { OpenPalette('t'); }, "Primary Terrain Settings", {}, menusWork},
        {"move-cost palette", true, [] { OpenPalette('m'); }, "Create:", {}, menusWork},
    };
}

class EveryDialogTest : public EditorSession {
  protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        MapFile map(101, 600, 400);
        map.Cell(3, 3) = 0x1748;
        map.Cell(4, 3) = 0x0040;
        WriteMap(map);
        WriteMap(MapFile(102, 600, 400));
        ASSERT_EQ(remove("Map102c.dat"), 0); // art without a map
        files = Files();
        original = Read("Map101c.dat");
    }

    void BringUp(const DialogRow& row)
    {
        if (row.withMap) {
            OpenMap();
        }
        ThenCheck([this] {
            keptScreen = Screen();
            cells = MarkedCells();
            record = currentMap.record;
        });
        row.open();
        ExpectDialog(row);
    }

    static void ExpectDialog(const DialogRow& row)
    {
        ThenCheck([=] {
            ASSERT_NE(TopDialog(), nullptr);
            EXPECT_EQ(TextsOf(TopDialog()).substr(0, row.text.size()), row.text);
        });
    }

    static void Decline(const DialogRow& row)
    {
        for (const char* button : row.refusal) {
            ClickButton(button);
        }
        ThenCheck([] {
            if (TopDialog() != nullptr) {
                ClosePalette();
            }
        });
    }

    void ExpectNothingChanged()
    {
        ThenCheck([this] {
            EXPECT_EQ(TopDialog(), nullptr);
            EXPECT_EQ(Difference(keptScreen, Screen()), "");
            EXPECT_EQ(MarkedCells(), cells);
            EXPECT_TRUE(!shell.mapShown || memcmp(&record, &currentMap.record, sizeof record) == 0);
            EXPECT_EQ(editing.selectionRect.right, 0);
            EXPECT_EQ(IsCommandEnabled(106), true);
        });
    }

    void DeclineAndQuit(const DialogRow& row)
    {
        if (!row.refusal.empty()) {
            ScriptKey(VK_ESCAPE); // only a palette has a close box that it could stand for
            ThenCheck([] { SendMessageA(TopDialog()->window, WM_CLOSE, 0, 0); });
        }
        ExpectDialog(row);
        Decline(row);
        ExpectNothingChanged();
        Quit();
    }

    void RunWithoutTouchingFiles()
    {
        Run();
        EXPECT_EQ(Files(), files);
        EXPECT_TRUE(Read("Map101c.dat") == original);
    }

    std::string cells;
    MapRecord record;
    std::vector<std::string> files;
    std::string original;
};

// The close box of the map window: without a question, as Quit is enabled or not.
TEST_F(EveryDialogTest, ClosingTheWindowEndsTheProgramOnlyWhereQuitIsEnabled)
{
    for (const DialogRow& row : EveryDialog()) {
        SCOPED_TRACE(row.name);
        BringUp(row);
        ScriptClose();
        if (row.menus != menusWork) {
            DeclineAndQuit(row);
        }
        RunWithoutTouchingFiles();
    }
}

TEST_F(EveryDialogTest, QuitAsksOverTheDialogOnlyWhereItIsEnabled)
{
    enum Way { byMenu, byKey, byKeyDeclined };
    for (const DialogRow& row : EveryDialog()) {
        for (const Way way : {byMenu, byKey, byKeyDeclined}) {
            SCOPED_TRACE(row.name + std::to_string(way));
            BringUp(row);
            if (way == byMenu) {
                ScriptMenu(106);
            } else {
                ScriptControl('q');
            }
            const bool heard = row.menus == menusWork || (row.menus == titlesGrey && way != byMenu);
            if (heard) {
                ThenCheck([=] {
                    EXPECT_EQ(TextsOf(TopDialog()), currentMap.mapModified ? saveQuestion : quitQuestion);
                    const bool declined = way == byKeyDeclined;
                    ClickButton(currentMap.mapModified ? (declined ? "Cancel" : "No Save")
                                                       : (declined ? "No" : "Yes"));
                });
            }
            if (!heard || way == byKeyDeclined) {
                DeclineAndQuit(row);
            }
            RunWithoutTouchingFiles();
        }
    }
}

// What a dialog shows that is cut, overlapped or outside of it.
std::string LayoutFaults(WindowPtr dialog)
{
    std::string faults;
    const Rect& port = dialog->portRect;
    const SavedDrawing saved = BeginDrawing(dialog);
    for (const DialogItem* item = dialog->firstItem; item != nullptr; item = item->next) {
        const Rect& rect = item->rect;
        const int width = rect.right - rect.left;
        bool fits =
            rect.left >= port.left && rect.top >= port.top && rect.right <= port.right && rect.bottom <= port.bottom;
        SetPortFont(fontArial, item->textSize, item->textStyle);
        if (item->kind == staticTextItem) {
            fits = fits && TextBoxHeight(item->text, width) <= rect.bottom - rect.top;
        } else if (item->kind == checkBoxItem) {
            fits = fits && (item->text[0] == 0 || item->textH + StringWidth(item->text) <= port.right);
        } else if (item->kind == pushButtonItem) {
            SetPortFont(fontArial, 10, stylePlain);
            fits = fits && StringWidth(item->text) <= width - 6;
            for (const DialogItem* other = item->next; other != nullptr; other = other->next) {
                const bool apart = other->rect.left >= rect.right || other->rect.right <= rect.left ||
                                   other->rect.top >= rect.bottom || other->rect.bottom <= rect.top;
                fits = fits && (other->kind != pushButtonItem || apart);
            }
        }
        if (!fits) {
            faults += std::string(item->text) + "\n";
        }
    }
    EndDrawing(saved);
    return faults;
}

TEST_F(EveryDialogTest, NoTextIsCutInEitherLanguage)
{
    for (const uint32_t language : {1u, 2u}) {
        for (const DialogRow& row : EveryDialog()) {
            SCOPED_TRACE(row.name + std::to_string(language));
            ThenCheck([=] { shell.language = language; });
            if (row.withMap) {
                OpenMap();
            }
            row.open();
            ThenCheck([] {
                ASSERT_NE(TopDialog(), nullptr);
                EXPECT_EQ(LayoutFaults(TopDialog()), "");
                shell.quitRequested = 1;
            });
            Run();
        }
    }
}

} // namespace
