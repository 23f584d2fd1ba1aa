// Dialogs, their items and the alerts, in the running program.
#include "platform/kernel/test_hooks.h"
#include "tests/dialog_driver.h"
#include "toolbox/menus.h"
#include "toolbox/resources.h"

#include <cstring>

namespace {

constexpr COLORREF olive = RGB(89, 122, 25);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF tan = RGB(204, 154, 102);

constexpr COLORREF Grey(int level)
{
    return RGB(level, level, level);
}

class DialogsTest : public DialogDriver {
  protected:
    void TearDown() override
    {
        DisposeMockDialog(dialog);
        dialog = nullptr;
        DialogDriver::TearDown();
    }

    WindowPtr MakeDialog(int frameStyle = 0)
    {
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
    AddStaticText(dialog, 10, 10, 190, 25, "text");
    DialogItem* field = AddEditField(10, "  -12x", 105, true);
    DialogItem* box = AddCheckBox(60, 201, 1);
    EXPECT_EQ(FindItemByNumber(dialog, 1)->itemID, okItemID);
    EXPECT_STREQ(FindItemByID(dialog, okItemID)->text, "OK");
    EXPECT_EQ(FindItemByNumber(dialog, 3), field);
    EXPECT_EQ(FindItemByNumber(dialog, 5), nullptr);
    EXPECT_EQ(dialog->itemCount, 4);
    EXPECT_EQ(GetItemValue(dialog, 105, 1), -12) << "the ID counts before the number";
    EXPECT_EQ(GetItemValue(dialog, 0, 3), -12);
    EXPECT_EQ(GetItemValue(dialog, 999, 3), 0);
    EXPECT_TRUE(ItemStateIs(dialog, 201, 0, 1));
    ToggleItem(dialog, 201, 0);
    EXPECT_EQ(box->state, 0);
    ToggleItem(dialog, 0, 4);
    EXPECT_EQ(GetItemState(dialog, 201, 0), 1);
    EXPECT_FALSE(ItemStateIs(dialog, 999, 0, 0)) << "an item that is not there has no state";
    EXPECT_EQ(box->images[1].top, 225);
    EXPECT_EQ(box->images[1].left, 325) << "the fourth rectangle is the image of state 1";
    EXPECT_EQ(box->textH, 32);
    EXPECT_EQ(box->textV, 72);

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
    EXPECT_EQ(frame.left, 60);
    EXPECT_EQ(frame.top, 40);
    EXPECT_EQ(dialog->portRect.right, 200);
    EXPECT_EQ(dialog->portRect.bottom, 120);
    EXPECT_FALSE(IsWindowVisible(dialog->window));
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
    EXPECT_EQ(AddStaticText(dialog, 0, 0, 10, 10, "x"), nullptr);
    FailAllocationAfter(-1);
    DisposeMockDialog(dialog);
    dialog = nullptr;
    DisposeMockDialog(nullptr);
    EXPECT_EQ(GlobalBlocksInUse(), before);
}

// ---- drawing ----

struct Probe {
    int h;
    int v;
    COLORREF colour;
    const char* what;
};

void ExpectProbes(WindowPtr window, const std::vector<Probe>& probes)
{
    for (const Probe& probe : probes) {
        EXPECT_EQ(PixelOf(window, probe.h, probe.v), probe.colour) << probe.what;
    }
}

TEST_F(DialogsTest, FramesHaveTheirLines)
{
    MakeDialog(0);
    ShowDialog();
    ExpectProbes(dialog, {{100, 0, Grey(0xBB), "top, inset 0"},
                          {0, 60, Grey(0xBB), "left, inset 0"},
                          {100, 1, Grey(0x77), "top, inset 1"},
                          {100, 2, olive, "top, inset 2"},
                          {100, 3, Grey(0x11), "top, inset 3"},
                          {3, 60, Grey(0x11), "left, inset 3"},
                          {100, 119, Grey(0x11), "bottom, inset 1"},
                          {199, 60, Grey(0x11), "right, inset 1"},
                          {100, 118, Grey(0x77), "bottom, inset 2"},
                          {100, 117, olive, "bottom, inset 3"},
                          {100, 116, Grey(0xBB), "bottom, inset 4"},
                          {196, 60, Grey(0xBB), "right, inset 4"},
                          {100, 60, olive, "face"}});
    DisposeMockDialog(dialog);
    MakeDialog(1);
    ShowDialog();
    ExpectProbes(dialog, {{100, 0, Grey(0xBB), "top, inset 0"},
                          {100, 1, Grey(0x77), "top, inset 1"},
                          {100, 18, Grey(0x33), "line under the title strip"},
                          {3, 60, Grey(0x33), "left, inset 3"},
                          {3, 10, olive, "no line beside the title strip"},
                          {196, 10, olive, "nor at its right"},
                          {196, 19, Grey(0xAA), "right, inset 4, from 19 down"},
                          {100, 116, Grey(0xAA), "bottom, inset 4"},
                          {198, 60, Grey(0x33), "right, inset 2"},
                          {199, 60, Grey(0x11), "right, inset 1"}});
}

TEST_F(DialogsTest, ButtonsAndTheDefaultFrameHaveTheirEdges)
{
    MakeDialog();
    dialog->defaultItem = AddPushButton(dialog, 100, 80, 150, 100, "", 1);
    AddPushButton(dialog, 20, 80, 70, 100, "", 2);
    ShowDialog();
    for (int left : {100, 20}) {
        ExpectProbes(dialog, {{left, 90, Grey(0x11), "frame"},
                              {left + 49, 90, Grey(0x11), "frame, right"},
                              {left + 1, 90, Grey(0xEE), "left edge 1"},
                              {left + 2, 90, Grey(0xEE), "left edge 2"},
                              {left + 25, 81, Grey(0xEE), "top edge 1"},
                              {left + 25, 82, Grey(0xEE), "top edge 2"},
                              {left + 48, 81, Grey(0x99), "top-right end 1"},
                              {left + 47, 82, Grey(0x99), "top-right end 2"},
                              {left + 1, 98, Grey(0x99), "bottom-left end 1"},
                              {left + 2, 97, Grey(0x99), "bottom-left end 2"},
                              {left + 48, 90, Grey(0x55), "right edge"},
                              {left + 47, 90, Grey(0x55), "right edge, inner"},
                              {left + 25, 98, Grey(0x55), "bottom edge"},
                              {left + 25, 97, Grey(0x55), "bottom edge, inner"},
                              {left + 3, 83, RGB(192, 192, 192), "face"},
                              {left + 46, 96, RGB(192, 192, 192), "face, last pixel"}});
    }
    // The red frame is two pixels wide and lies right outside the button.
    const Rect around = {76, 96, 104, 154};
    EXPECT_EQ(CountPixels(dialog, around, red), 54 * 24 - 50 * 20);
    ExpectProbes(dialog, {{98, 78, red, "corner"}, {151, 101, red, "far corner"}, {97, 90, olive, "outside"}});
}

TEST_F(DialogsTest, TitleItemsStandInTheStrip)
{
    MakeDialog(1);
    AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, closeBoxItem, 0, 0, 0);
    AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, rightTitleBoxItem, 0, 0, 0);
    DialogItem* bar = AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, titleBarItem, 0, 0, 0);
    ShowDialog();
    const std::vector<Probe> boxes = {{8, 5, Grey(0xAA), "close box"},    {17, 14, Grey(0xAA), "its far corner"},
                                      {7, 8, Grey(0x11), "its shadow"},   {12, 4, Grey(0x11), "shadow above"},
                                      {12, 13, Grey(0x11), "its tick"},   {183, 5, Grey(0xAA), "right box"},
                                      {192, 14, Grey(0xAA), "far corner"}};
    ExpectProbes(dialog, boxes);
    for (int v : {6, 9, 12}) {
        const Rect groove = {static_cast<int16_t>(v), 19, static_cast<int16_t>(v + 1), 181};
        EXPECT_EQ(CountPixels(dialog, groove, Grey(0xAA)), 178 - 21 + 1) << "the whole way without a text";
    }
    CopyText("Kestrel", bar->text);
    DrawMockDialog(dialog, false);
    ExpectProbes(dialog, boxes);
    const Rect strip = {2, 60, 18, 140};
    EXPECT_GT(CountPixels(dialog, strip, dialogTextColour), 40) << "the title";
    EXPECT_EQ(PixelOf(dialog, 100, 9) == Grey(0xAA), false) << "no groove through the title";
    ExpectProbes(dialog, {{21, 9, Grey(0xAA), "groove, left"}, {178, 9, Grey(0xAA), "groove, right"}});
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
    AddDialogItem(dialog, 0, nullptr, "Title", 0, 0, 1, 0, titleBarItem, 0, 0, 0);
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
    EXPECT_EQ(GetCurrentObject(dialog->dc, OBJ_PEN), pen);
    EXPECT_EQ(GetCurrentObject(dialog->dc, OBJ_FONT), font);
    EXPECT_EQ(GetBkColor(dialog->dc), back);
    EXPECT_EQ(dialog->foreColour, PALETTERGB(1, 2, 3));
    EXPECT_EQ(dialog->fontNumber, fontCourier);
    EXPECT_EQ(dialog->fontSize, 14);
}

// ---- edit fields ----

TEST_F(DialogsTest, KeysEditTheActiveField)
{
    constexpr char back = backspaceKey;
    const struct {
        const char* start;
        bool digitsOnly;
        std::string keys;
        const char* result;
    } cases[] = {
        {"100", true, "7x5", "75"},
        {"100", true, "x", "100"},
        {"100", true, {back}, ""},
        {"", true, {'1', '2', '3', back}, "12"},
        {"100", true, {'1', back, back}, ""},
        {"100", true, {'4', back, '5'}, "5"},
        {"old", false, "New1", "New1"},
        {"old", false, std::string(70, 'k'), "kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk"},
    };
    for (const auto& test : cases) {
        MakeDialog();
        DialogItem* field = AddEditField(10, test.start, 105, test.digitsOnly);
        ShowDialog();
        EXPECT_EQ(ReportOfPress(CentreOf(field->rect), CentreOf(field->rect)), Report(0, 0));
        for (char key : test.keys) {
            const char typed[] = {key, 0};
            ScriptText(typed);
            EXPECT_EQ(NextReport(), Report(1, 105));
        }
        EXPECT_STREQ(field->text, test.result) << test.start << " and " << test.keys;
        DisposeMockDialog(dialog);
        dialog = nullptr;
    }
}

TEST_F(DialogsTest, AFullFieldTakesNoKeyAtAll)
{
    MakeDialog();
    DialogItem* field = AddEditField(10, std::string(63, '1').c_str(), 105, true);
    ShowDialog();
    ActivateEditItem(dialog, field);
    for (int key : {VK_RETURN, VK_BACK, int{'2'}}) {
        ScriptKey(key);
        NextReport();
    }
    EXPECT_EQ(strlen(field->text), 63u);
    EXPECT_EQ(dialog->activeEditItem, field);
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
    const auto face = [&](const DialogItem* item) {
        return PixelOf(dialog, item->rect.left + 3, item->rect.top + 3);
    };
    EXPECT_EQ(face(first), tan);
    ReportOfPress(CentreOf(first->rect), CentreOf(first->rect));
    EXPECT_EQ(face(first), red);
    ReportOfPress(CentreOf(second->rect), CentreOf(second->rect));
    EXPECT_EQ(face(first), tan);
    EXPECT_EQ(face(second), red);
    EXPECT_GT(CountPixels(dialog, second->rect, RGB(255, 255, 255)), 0) << "white while active";
    SelectEditItem(dialog, 105, 0);
    NextReport();
    EXPECT_EQ(face(first), red);
    EXPECT_EQ(face(second), tan);
}

TEST_F(DialogsTest, TheFirstReturnEndsEditingAndTheSecondChoosesTheDefaultItem)
{
    MakeDialog();
    dialog->defaultItem = AddOKButton(dialog, 140, 90, 190, 110);
    DialogItem* field = AddEditField(10, "1", 105, true);
    ShowDialog();
    ActivateEditItem(dialog, field);
    ScriptKey(VK_RETURN);
    EXPECT_EQ(NextReport(), Report(2, 105));
    EXPECT_EQ(dialog->activeEditItem, nullptr);
    ScriptKey(VK_RETURN);
    EXPECT_EQ(NextReport(), Report(1, okItemID));
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
    DisposeMockDialog(dialog);
    for (int kind : {closeBoxItem, rightTitleBoxItem}) {
        MakeDialog(1);
        AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, kind, 0, 0, 0);
        ShowDialog();
        ScriptKey(VK_ESCAPE);
        EXPECT_EQ(NextReport(), Report(1, 1));
        DisposeMockDialog(dialog);
        dialog = nullptr;
    }
}

TEST_F(DialogsTest, ClicksAreReportedByWhatTheyHit)
{
    MakeDialog(1);
    AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, closeBoxItem, 0, 0, 0);
    AddDialogItem(dialog, 0, nullptr, "", 0, 0, 1, 0, titleBarItem, 0, 0, 0);
    AddPushButton(dialog, 100, 80, 150, 100, "Go", 77);
    DialogItem* plain = AddPushButton(dialog, 20, 80, 70, 100, "Once", 78);
    plain->tracksMouse = 0;
    AddCheckBox(60, 201, 0);
    AddStaticText(dialog, 20, 25, 150, 40, "text");
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
    DialogItem* button = AddPushButton(dialog, 100, 80, 150, 100, "", 1);
    ShowDialog();
    PressItem(button);
    ExpectProbes(dialog, {{99, 90, 0, "black outside"},
                          {100, 90, Grey(0x11), "frame"},
                          {101, 90, Grey(0x11), "inner frame"},
                          {125, 83, Grey(0xBB), "face, one pixel down"},
                          {125, 98, Grey(0xBB), "face, last row"}});
    EXPECT_EQ(NextReport(), Report(0, 0));
    ExpectProbes(dialog,
                 {{99, 90, olive, "outside"}, {101, 90, Grey(0xEE), "edge"}, {125, 90, RGB(192, 192, 192), "face"}});
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
    EXPECT_FALSE(GetUpdateRect(shell.mapWindow->window, nullptr, FALSE)) << "painted";
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
        EXPECT_EQ(TopDialog()->portRect.right, 240);
        EXPECT_EQ(TopDialog()->portRect.bottom, 138);
        EXPECT_EQ(TextsOf(TopDialog()), "Map ID number error. Limits are 100 through 999.");
        EXPECT_NE(GetMenuState(GetMenu(shell.mapWindow->window), 0, MF_BYPOSITION) & MF_GRAYED, 0u);
        const DialogItem* button = TopDialog()->defaultItem;
        EXPECT_EQ(button->rect.left, 180);
        EXPECT_EQ(button->rect.bottom, 128);
    });
    ScriptButton("OK");
    MessageAlert(0, 0, alertSound, 15000, 123, nullptr);
    EXPECT_EQ(TopDialog(), nullptr);
    EXPECT_EQ(GetMenuState(GetMenu(shell.mapWindow->window), 0, MF_BYPOSITION) & MF_GRAYED, 0u);
}

TEST_F(DialogsTest, ALongTextMakesItsAlertGrow)
{
    const std::string text = [] {
        std::string words;
        while (words.size() < 245) {
            words += "WWWWWWWW ";
        }
        return words;
    }();
    const auto check = [] {
        const WindowPtr alert = TopDialog();
        ASSERT_NE(alert, nullptr);
        const DialogItem* message = alert->firstItem;
        while (message->kind != staticTextItem) {
            message = message->next;
        }
        SetPort(alert);
        SetPortFont(fontArial, 10, styleBold);
        const int needed = TextBoxHeight(message->text, message->rect.right - message->rect.left);
        EXPECT_GE(message->rect.bottom - message->rect.top, needed);
        EXPECT_GT(needed, 60);
        EXPECT_GE(alert->firstItem->rect.top, message->rect.bottom) << "the buttons stand below";
        EXPECT_LE(alert->firstItem->rect.bottom + 4, alert->portRect.bottom);
        // The last line shows.
        const Rect lastLine = {static_cast<int16_t>(message->rect.top + needed - 13), message->rect.left,
                               static_cast<int16_t>(message->rect.top + needed), message->rect.right};
        EXPECT_GT(CountPixels(alert, lastLine, dialogTextColour), 5);
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
}

TEST_F(DialogsTest, AnAlertUnderAQuitIsDeclined)
{
    ScriptCall([] { RequestQuit(); });
    EXPECT_EQ(YesNoAlert(0, 0, 4000, 17, nullptr), 0);
    shell.quitRequested = 0;
    ScriptCall([] { RequestQuit(); });
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
