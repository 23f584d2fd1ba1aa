// Dialogs, their items and the alerts, in the running program.
#include "platform/kernel/test_hooks.h"
#include "tests/editor_session.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"

#include <cstring>

namespace {

constexpr COLORREF olive = RGB(89, 122, 25);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF tan = RGB(204, 154, 102);

// The colours of a row or column of pixels, a letter each: a grey by its level's first digit, c the face of a button.
std::string Scan(WindowPtr window, MapPoint from, MapPoint to)
{
    const std::pair<COLORREF, char> letters[] = {{olive, 'o'}, {red, 'r'}, {tan, 't'}, {RGB(0xC0, 0xC0, 0xC0), 'c'}};
    std::string text;
    for (MapPoint place = from; place.h <= to.h && place.v <= to.v;) {
        const COLORREF colour = PixelOf(window, place.h, place.v);
        const int level = GetRValue(colour);
        char letter = colour == RGB(level, level, level) && level % 17 == 0 ? "0123456789ABCDEF"[level / 17] : '?';
        for (const auto& [known, name] : letters) {
            letter = colour == known ? name : letter;
        }
        text += letter;
        (from.v == to.v ? place.h : place.v)++;
    }
    return text;
}

class DialogsTest : public StartedProgram {
  protected:
    void TearDown() override
    {
        DisposeMockDialog(dialog);
        dialog = nullptr;
        StartedProgram::TearDown();
    }

    WindowPtr MakeDialog(int frameStyle = 0) // in place of the one before
    {
        DisposeMockDialog(dialog);
        const Point place = {40, 60};
        dialog = NewMockDialog(frameStyle, 200, 120, "", &place);
        return dialog;
    }

    DialogItem* AddEditField(int left, const char* text, int32_t id, bool digitsOnly)
    {
        Rect rect;
        SetRect(&rect, left, 30, left + 60, 45);
        DialogItem* item =
            AddDialogItem(dialog, 1, &rect, text, 0, 0, 1, editTextColour, editTextItem, id, styleBold, 10);
        item->digitsOnly = digitsOnly;
        return item;
    }

    DialogItem* AddCheckBox(int top, int32_t id, int state)
    {
        const Rect rects[] = {{static_cast<int16_t>(top), 10, static_cast<int16_t>(top + 14), 28},
                              {225, 344, 239, 362},
                              {238, 344, 252, 362},
                              {225, 325, 239, 343},
                              {238, 325, 252, 343}};
        return AddDialogItem(dialog, 5, rects, "", 0, 0, 1, static_cast<COLORREF>(state), checkBoxItem, id, 0, 10);
    }

    void ShowDialog()
    {
        ShowWindowInactive(dialog);
        DrawMockDialog(dialog, true);
    }

    void AddTitleItems(std::initializer_list<int> kinds)
    {
        for (const int kind : kinds) {
            AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, kind, 0, 0, 0);
        }
    }

    // The first report of the modal step that is neither nothing nor a repaint, once the script was played. {0, 0}
    // for none.
    std::pair<int32_t, int32_t> NextReport()
    {
        std::pair<int32_t, int32_t> report = {0, 0};
        for (int stillTurns = 0; stillTurns < 5;) {
            int32_t itemHit = 0;
            int32_t itemID = 0;
            ModalDialogStep(dialog, &itemHit, &itemID, nullptr);
            if (itemHit == mapUpdateCode) {
                PaintMapWindow();
            } else if (report.first == 0 && itemHit != dialogUpdateCode && itemHit != mouseUpCode) {
                report = {itemHit, itemID};
            }
            stillTurns = HeadlessStepsLeft() > 0 || itemHit != 0 ? 0 : stillTurns + 1;
        }
        return report;
    }

    std::pair<int32_t, int32_t> ReportOfPress(Point pressed, Point released)
    {
        ScriptPressAndRelease(dialog, pressed, released);
        return NextReport();
    }

    WindowPtr dialog = nullptr;
};

using Report = std::pair<int32_t, int32_t>;

// ---- records ----

TEST_F(DialogsTest, ItemsAreNumberedFoundAndRead)
{
    MakeDialog();
    AddOKButton(dialog, 140, 90, 190, 110);
    AddItem(dialog, {staticTextItem, MakeRect(10, 10, 190, 25), "text"});
    DialogItem* field = AddEditField(10, "  -12x", 105, true);
    DialogItem* box = AddCheckBox(60, 201, 1);
    EXPECT_STREQ(FindItemByID(dialog, okItemID)->text, "OK");
    EXPECT_EQ(FindItemByNumber(dialog, 3), field);
    EXPECT_EQ(FindItemByNumber(dialog, 5), nullptr);
    EXPECT_EQ(GetItemValue(dialog, 105, 1), -12) << "the ID counts before the number";
    EXPECT_EQ(GetItemValue(dialog, 0, 3), -12);
    EXPECT_EQ(GetItemValue(dialog, 999, 3), 0);
    ToggleItem(dialog, 201, 0);
    EXPECT_EQ(box->state, 0);
    ToggleItem(dialog, 0, 4);
    EXPECT_TRUE(ItemStateIs(dialog, 201, 0, 1));
    EXPECT_FALSE(ItemStateIs(dialog, 999, 0, 0)) << "an item that is not there has no state";
    EXPECT_TRUE(box->textH == 32 && box->textV == 72);

    DialogItem* found = nullptr;
    EXPECT_EQ(FindItemAt({17, 20}, dialog, &found), 0) << "static texts take no clicks";
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(FindItemAt({90, 140}, dialog, &found), 1);
    EXPECT_EQ(FindItemAt({110, 140}, dialog, &found), 0) << "the bottom is exclusive";
}

TEST_F(DialogsTest, ADialogStandsWhereItIsAskedForAndElseInTheMiddle)
{
    Rect frame;
    GetWindowFrameRect(MakeDialog(), &frame);
    EXPECT_TRUE(frame.left == 60 && frame.top == 40);
    EXPECT_TRUE(dialog->portRect.right == 200 && dialog->portRect.bottom == 120);
    EXPECT_EQ(TopDialog(), nullptr) << "not shown yet";
    DisposeMockDialog(dialog);
    dialog = NewMockDialog(0, 201, 121, "", nullptr);
    GetWindowFrameRect(dialog, &frame);
    EXPECT_EQ(frame.left, (shell.screenRect.right - 201) / 2);
    EXPECT_EQ(frame.top, (shell.screenRect.bottom - 121) / 2);
}

TEST_F(DialogsTest, ShortMemoryLeavesNothingBehind)
{
    const int before = GlobalBlocksInUse();
    const WindowPtr port = currentPort;
    FailAllocationAfter(0);
    EXPECT_EQ(MakeDialog(), nullptr);
    for (int record = 0; record < 2; record++) { // of the dialog and of its first button
        FailAllocationAfter(record);
        MessageAlert(0, 0, 0, 0, 0, "x");
    }
    for (int record = 0; record < 3; record++) {
        FailAllocationAfter(record);
        EXPECT_EQ(YesNoAlert(0, 0, 0, 0, "x"), 0);
    }
    EXPECT_EQ(currentPort, port);
    FailAllocationAfter(-1);
    MakeDialog();
    FailAllocationAfter(0);
    EXPECT_EQ(AddItem(dialog, {staticTextItem, MakeRect(0, 0, 10, 10), "x"}), nullptr);
    FailAllocationAfter(-1);
    DisposeMockDialog(dialog);
    dialog = nullptr;
    DisposeMockDialog(nullptr);
    EXPECT_EQ(GlobalBlocksInUse(), before);
}

// ---- drawing ----

TEST_F(DialogsTest, FramesHaveTheirLines)
{
    MakeDialog(0);
    ShowDialog();
    EXPECT_EQ(Scan(dialog, {100, 0}, {100, 5}), "B7o1oo") << "from the top";
    EXPECT_EQ(Scan(dialog, {0, 60}, {5, 60}), "B7o1oo") << "from the left";
    EXPECT_EQ(Scan(dialog, {100, 115}, {100, 119}), "oBo71") << "to the bottom";
    EXPECT_EQ(Scan(dialog, {195, 60}, {199, 60}), "oBo71") << "to the right";
    MakeDialog(1);
    ShowDialog();
    EXPECT_EQ(Scan(dialog, {100, 0}, {100, 19}), "B7" + std::string(16, 'o') + "3o")
        << "a line under the title strip";
    EXPECT_EQ(Scan(dialog, {0, 60}, {5, 60}), "B7o3oo");
    EXPECT_EQ(Scan(dialog, {100, 115}, {100, 119}), "oAo31");
    EXPECT_EQ(Scan(dialog, {195, 60}, {199, 60}), "oAo31");
    EXPECT_EQ(Scan(dialog, {3, 10}, {196, 10}), std::string(194, 'o')) << "no line beside the strip";
}

TEST_F(DialogsTest, ButtonsAndTheDefaultFrameHaveTheirEdges)
{
    MakeDialog();
    dialog->defaultItem = AddItem(dialog, {pushButtonItem, MakeRect(100, 80, 150, 100), "", 1});
    AddItem(dialog, {pushButtonItem, MakeRect(20, 80, 70, 100), "", 2});
    ShowDialog();
    for (int left : {100, 20}) {
        EXPECT_EQ(Scan(dialog, {left, 90}, {left + 49, 90}), "1EE" + std::string(44, 'c') + "551");
        EXPECT_EQ(Scan(dialog, {left + 25, 80}, {left + 25, 99}), "1EE" + std::string(14, 'c') + "551");
        EXPECT_EQ(Scan(dialog, {left + 46, 81}, {left + 49, 81}), "EE91") << "the ends of the edges";
        EXPECT_EQ(Scan(dialog, {left + 46, 82}, {left + 49, 82}), "E951");
        EXPECT_EQ(Scan(dialog, {left, 97}, {left + 3, 97}), "1E95");
        EXPECT_EQ(Scan(dialog, {left, 98}, {left + 3, 98}), "1955");
    }
    // The red frame is two pixels wide and lies right outside the button.
    EXPECT_EQ(CountPixels(dialog, {76, 96, 104, 154}, red), 54 * 24 - 50 * 20);
    EXPECT_EQ(Scan(dialog, {97, 78}, {152, 78}), "o" + std::string(54, 'r') + "o");
}

TEST_F(DialogsTest, TitleItemsStandInTheStrip)
{
    MakeDialog(1);
    AddTitleItems({closeBoxItem, rightTitleBoxItem, titleBarItem});
    ShowDialog();
    const std::string groove(178 - 21 + 1, 'A');
    const auto row = [&](int v) { return Scan(dialog, {7, v}, {192, v}); };
    EXPECT_EQ(row(4), std::string(11, '1') + std::string(164, 'o') + std::string(11, '1'));
    for (int v : {6, 9, 12}) {
        EXPECT_EQ(row(v), "1A" + row(v).substr(2, 12) + groove + row(v).substr(172))
            << "the whole way without a text";
    }
    EXPECT_EQ(row(13).substr(0, 11), "1A" + std::string(8, '1') + "A");
    EXPECT_EQ(row(14).substr(175), "1" + std::string(10, 'A'));
    CopyText("Kestrel", FindItemByNumber(dialog, 3)->text);
    DrawMockDialog(dialog, false);
    EXPECT_GT(CountPixels(dialog, {2, 60, 18, 140}, dialogTextColour), 40) << "the title";
    EXPECT_EQ(row(9).substr(0, 20), "1A" + row(9).substr(2, 12) + groove.substr(0, 6));
    EXPECT_EQ(row(9).substr(93 - 10, 20).find('A'), std::string::npos) << "no groove through the title";
}

TEST_F(DialogsTest, ACheckBoxShowsTheImageOfItsState)
{
    MakeDialog();
    AddCheckBox(60, 201, 0);
    AddCheckBox(80, 202, 1);
    ShowDialog();
    for (int v = 0; v < 14; v++) {
        for (int h = 0; h < 18; h++) {
            ASSERT_EQ(PixelOf(dialog, 10 + h, 60 + v), GetPixel(shell.interfaceDC, 344 + h, 225 + v));
            ASSERT_EQ(PixelOf(dialog, 10 + h, 80 + v), GetPixel(shell.interfaceDC, 325 + h, 225 + v));
        }
    }
}

TEST_F(DialogsTest, DrawingLeavesThePortAsItWas)
{
    MakeDialog(1);
    AddTitleItems({titleBarItem});
    AddEditField(10, "1", 105, true);
    AddOKButton(dialog, 100, 80, 150, 100);
    SetPort(dialog);
    ForeColor(PALETTERGB(1, 2, 3));
    SetPortFont(fontCourier, 14, styleItalic);
    SetPort(shell.mapWindow);
    const HGDIOBJ pen = GetCurrentObject(dialog->dc, OBJ_PEN);
    const HGDIOBJ font = GetCurrentObject(dialog->dc, OBJ_FONT);
    const COLORREF back = GetBkColor(dialog->dc);
    ShowDialog();
    EXPECT_EQ(currentPort, shell.mapWindow);
    EXPECT_TRUE(GetCurrentObject(dialog->dc, OBJ_PEN) == pen && GetCurrentObject(dialog->dc, OBJ_FONT) == font);
    EXPECT_TRUE(GetBkColor(dialog->dc) == back && dialog->foreColour == PALETTERGB(1, 2, 3));
    EXPECT_TRUE(dialog->fontNumber == fontCourier && dialog->fontSize == 14);
}

// ---- edit fields ----

TEST_F(DialogsTest, KeysEditTheActiveField)
{
    constexpr char back = backspaceKey;
    const std::string full(63, 'k');
    const struct {
        std::string start;
        bool digitsOnly;
        std::string keys;
        std::string result;
    } cases[] = {
        {"100", true, "7x5", "75"},
        {"100", true, "x", "100"},
        {"100", true, {back}, ""},
        {"", true, {'1', '2', '3', back}, "12"},
        {"100", true, {'1', back, back}, ""},
        {"100", true, {'4', back, '5'}, "5"},
        {"old", false, "New1", "New1"},
        {"old", false, std::string(70, 'k'), full},
        {full, false, {'\n', back, 'x'}, full}, // it takes no key at all, nor does Return end the editing
    };
    for (const auto& test : cases) {
        MakeDialog();
        DialogItem* field = AddEditField(10, test.start.c_str(), 105, test.digitsOnly);
        ShowDialog();
        EXPECT_EQ(ReportOfPress(CentreOf(field->rect), CentreOf(field->rect)), Report(0, 0));
        for (char key : test.keys) {
            ScriptText(std::string(1, key).c_str());
            EXPECT_EQ(NextReport(), Report(1, 105));
        }
        EXPECT_EQ(field->text, test.result) << test.start << " and " << test.keys;
    }
}

TEST_F(DialogsTest, AFieldThatTheProgramSelectsKeepsTheTypedCountOfTheOneBefore)
{
    MakeDialog();
    DialogItem* first = AddEditField(10, "1", 105, true);
    DialogItem* second = AddEditField(100, "100", 106, true);
    ShowDialog();
    ActivateEditItem(dialog, first);
    ScriptText("5");
    NextReport();
    SelectEditItem(dialog, 106, 0);
    ScriptKey(VK_BACK);
    NextReport();
    EXPECT_STREQ(second->text, "10") << "one key counts as typed";
    ScriptKey(VK_BACK);
    NextReport();
    EXPECT_STREQ(second->text, "") << "and now none does";
}

TEST_F(DialogsTest, TheActiveFieldIsRedAndTheOthersTan)
{
    MakeDialog();
    DialogItem* first = AddEditField(10, "1", 105, true);
    DialogItem* second = AddEditField(100, "2", 106, true);
    ShowDialog();
    const auto faces = [&] { return Scan(dialog, {13, 33}, {13, 33}) + Scan(dialog, {103, 33}, {103, 33}); };
    EXPECT_EQ(faces(), "tt");
    ReportOfPress(CentreOf(first->rect), CentreOf(first->rect));
    EXPECT_EQ(faces(), "rt");
    ReportOfPress(CentreOf(second->rect), CentreOf(second->rect));
    EXPECT_EQ(faces(), "tr");
    EXPECT_GT(CountPixels(dialog, second->rect, RGB(255, 255, 255)), 0) << "white while active";
    SelectEditItem(dialog, 105, 0);
    NextReport();
    EXPECT_EQ(faces(), "rt");
}

// ---- the modal step ----

TEST_F(DialogsTest, KeysWithoutAnActiveFieldAreReported)
{
    MakeDialog();
    AddOKButton(dialog, 140, 90, 190, 110);
    ShowDialog();
    const std::pair<int, Report> keys[] = {{'A', {keyCode, keyCode}},
                                           {VK_BACK, {keyCode, keyCode}},
                                           {VK_TAB, {0, 0}},
                                           {VK_ESCAPE, {0, 0}},
                                           {VK_RETURN, {0, 0}}}; // no default item
    for (const auto& [key, report] : keys) {
        ScriptKey(key);
        EXPECT_EQ(NextReport(), report) << "key " << key;
    }
    DialogItem* field = AddEditField(10, "1", 105, true);
    dialog->defaultItem = dialog->firstItem;
    ActivateEditItem(dialog, field);
    ScriptKey(VK_RETURN);
    EXPECT_EQ(NextReport(), Report(2, 105)) << "the first Return ends the editing";
    ScriptKey(VK_RETURN);
    EXPECT_EQ(NextReport(), Report(1, okItemID)) << "and the second chooses the default item";
    for (int kind : {closeBoxItem, rightTitleBoxItem}) {
        MakeDialog(1);
        AddTitleItems({kind});
        ShowDialog();
        ScriptKey(VK_ESCAPE);
        EXPECT_EQ(NextReport(), Report(1, 1));
    }
}

TEST_F(DialogsTest, ClicksAreReportedByWhatTheyHit)
{
    MakeDialog(1);
    AddTitleItems({closeBoxItem, titleBarItem});
    AddItem(dialog, {pushButtonItem, MakeRect(100, 80, 150, 100), "Go", 77});
    DialogItem* plain = AddItem(dialog, {pushButtonItem, MakeRect(20, 80, 70, 100), "Once", 78});
    plain->tracksMouse = 0;
    AddCheckBox(60, 201, 0);
    AddItem(dialog, {staticTextItem, MakeRect(20, 25, 150, 40), "text"});
    ShowDialog();
    const struct {
        const char* what;
        Point pressed;
        Point released;
        Report report;
    } clicks[] = {
        {"close box", {9, 12}, {9, 12}, {1, 1}},
        {"title bar", {9, 60}, {9, 60}, {dragCode, dragCode}},
        {"button", {90, 120}, {85, 110}, {3, 77}},
        {"button, released outside", {90, 120}, {101, 120}, {0, 0}},
        {"button that is not tracked", {90, 30}, {10, 10}, {4, 78}},
        {"check box", {65, 15}, {65, 15}, {5, 201}},
        {"check box, released outside", {65, 15}, {75, 15}, {0, 0}},
        {"static text", {30, 40}, {30, 40}, {missedClickCode, missedClickCode}},
        {"nothing", {110, 10}, {110, 10}, {missedClickCode, missedClickCode}},
    };
    for (const auto& click : clicks) {
        EXPECT_EQ(ReportOfPress(click.pressed, click.released), click.report) << click.what;
    }
    ScriptPressAndRelease(shell.mapWindow, {250, 350}, {250, 350});
    EXPECT_EQ(NextReport(), Report(mapClickCode, mapClickCode));
}

TEST_F(DialogsTest, APressedButtonLooksPressedUntilTheNextPaint)
{
    MakeDialog();
    DialogItem* button = AddItem(dialog, {pushButtonItem, MakeRect(100, 80, 150, 100), "", 1});
    ShowDialog();
    PressItem(button);
    EXPECT_EQ(Scan(dialog, {98, 90}, {150, 90}), "o011" + std::string(46, 'B') + "110");
    EXPECT_EQ(Scan(dialog, {125, 79}, {125, 100}), "0111" + std::string(16, 'B') + "10") << "one pixel down";
    EXPECT_EQ(NextReport(), Report(0, 0));
    EXPECT_EQ(Scan(dialog, {98, 90}, {150, 90}), "oo1EE" + std::string(44, 'c') + "551o");
}

TEST_F(DialogsTest, UpdatesOfTheMapWindowAreTheCallers)
{
    MakeDialog();
    dialog->defaultItem = AddOKButton(dialog, 140, 90, 190, 110);
    ShowDialog();
    NextReport();
    InvalidateMapRect(nullptr);
    int32_t itemHit = 0;
    int32_t itemID = 0;
    ModalDialogStep(dialog, &itemHit, &itemID, nullptr);
    EXPECT_EQ(Report(itemHit, itemID), Report(mapUpdateCode, mapUpdateCode));
    InvalidateMapRect(nullptr);
    EXPECT_TRUE(RunDialogStep(dialog, &itemHit, &itemID));
    MSG request;
    EXPECT_FALSE(PeekMessageA(&request, nullptr, WM_PAINT, WM_PAINT, PM_NOREMOVE)) << "painted";
    ScriptWheel(120);
    EXPECT_EQ(NextReport(), Report(wheelUpCode, wheelUpCode));
    ScriptWheel(-120);
    EXPECT_EQ(NextReport(), Report(wheelDownCode, wheelDownCode));
}

// ---- alerts ----

TEST_F(DialogsTest, AMessageStaysUntilOKAndIsOfItsDefaultSize)
{
    ScriptKey(VK_ESCAPE);
    ScriptText("x");
    ScriptCall([] {
        ASSERT_NE(TopDialog(), nullptr);
        EXPECT_TRUE(TopDialog()->portRect.right == 240 && TopDialog()->portRect.bottom == 138);
        EXPECT_EQ(TextsOf(TopDialog()), "Map ID number error. Limits are 100 through 999.");
        EXPECT_NE(GetMenuState(GetMenu(shell.mapWindow->window), 0, MF_BYPOSITION) & MF_GRAYED, 0u);
        EXPECT_TRUE(TopDialog()->defaultItem->rect.left == 180 && TopDialog()->defaultItem->rect.bottom == 128);
    });
    ScriptButton("OK");
    MessageAlert(0, 0, alertSound, 15000, 123, nullptr);
    EXPECT_EQ(TopDialog(), nullptr);
    EXPECT_EQ(GetMenuState(GetMenu(shell.mapWindow->window), 0, MF_BYPOSITION) & MF_GRAYED, 0u);
}

TEST_F(DialogsTest, ALongTextMakesItsAlertGrow)
{
    std::string text;
    while (text.size() < 245) {
        text += "WWWWWWWW ";
    }
    const auto check = [] {
        const DialogItem* button = TopDialog()->firstItem;
        const DialogItem* message = button;
        while (message->kind != staticTextItem) {
            message = message->next;
        }
        SetPort(TopDialog());
        SetPortFont(fontArial, 10, styleBold);
        const int bottom = message->rect.top + TextBoxHeight(message->text, message->rect.right - message->rect.left);
        EXPECT_GT(bottom, 70);
        EXPECT_TRUE(bottom <= message->rect.bottom && message->rect.bottom <= button->rect.top);
        EXPECT_LE(button->rect.bottom + 4, TopDialog()->portRect.bottom);
        Rect lastLine = message->rect;
        lastLine.top = static_cast<int16_t>(bottom - 13);
        EXPECT_GT(CountPixels(TopDialog(), lastLine, dialogTextColour), 5) << "the last line shows";
        ScriptKey(VK_RETURN);
    };
    ScriptCall(check);
    MessageAlert(0, 0, 0, 0, 0, text.c_str());
    ScriptCall(check);
    EXPECT_EQ(YesNoAlert(240, 100, 0, 0, text.c_str()), 1);
    ScriptCall(check);
    EXPECT_EQ(TwoButtonAlert(text.c_str(), "Quit", "Continue"), 1);
}

TEST_F(DialogsTest, QuestionsAreAnsweredByTheirButtonsOnly)
{
    ScriptButton("Yes");
    EXPECT_EQ(YesNoAlert(200, 70, 4000, 17, nullptr), 1);
    ScriptButton("No");
    EXPECT_EQ(YesNoAlert(0, 0, 4000, 17, nullptr), 0);
    ScriptKey(VK_ESCAPE);
    ScriptCall([] {
        const Rect yes = TopDialog()->firstItem->rect;
        ScriptPressAndRelease(TopDialog(), CentreOf(yes), {2, 2});
    });
    ScriptCall([] { EXPECT_EQ(TextsOf(TopDialog()), "Do you really want to quit? "); });
    ScriptKey(VK_RETURN);
    EXPECT_EQ(YesNoAlert(200, 70, 4000, 17, nullptr), 1);

    ScriptButton("Second");
    EXPECT_EQ(TwoButtonAlert("Which?", "A first one with a long text", "Second"), 2);
    ScriptButton("Quit");
    MemoryAlert();
    EXPECT_EQ(shell.quitRequested, 1u);
    shell.quitRequested = 0;
    ScriptButton("Continue");
    MemoryAlert();
    EXPECT_EQ(shell.quitRequested, 0u);

    // The end of the program declines.
    ScriptCall([] { RequestQuit(); });
    EXPECT_EQ(YesNoAlert(0, 0, 4000, 17, nullptr), 0);
    MessageAlert(0, 0, 0, 0, 0, "x");
    EXPECT_EQ(TopDialog(), nullptr);
}

TEST_F(DialogsTest, DialogsSurviveThatTheMapWindowIsClosedUnderThem)
{
    MakeDialog();
    AddOKButton(dialog, 140, 90, 190, 110);
    DialogItem* field = AddEditField(10, "1", 105, true);
    ShowDialog();
    ScriptCall([] { DestroyWindow(shell.mapWindow->window); });
    MessageAlert(0, 0, alertSound, 15000, 123, nullptr);
    EXPECT_EQ(shell.quitRequested, 1u);
    EXPECT_EQ(dialog->window, nullptr);
    SelectEditItem(dialog, 105, 0);
    PressItem(field);
    DrawMockDialog(dialog, true);
    int32_t itemHit = 0;
    int32_t itemID = 0;
    EXPECT_FALSE(RunDialogStep(dialog, &itemHit, &itemID));
}

} // namespace
