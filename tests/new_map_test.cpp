// New Map from art, and the dialogs of a map's properties.
#include "tests/editor_session.h"

#include <iterator>

namespace {

const char widthError[] = "Map width error.  Limits are 450 to 3100. Change width of map art file.";
const char heightError[] = "Map height error. Limits are 220 to 3100. Change height of map art file.";
const char versionError[] = "Map version error. Limits are 100 through 999.";
const char eastingError[] = "UTM Easting error. Limits are 0 through 99.";
const char northingError[] = "UTM Northing error. Limits are 0 through 99.";
const char idError[] = "Map ID number error. Limits are 100 through 999.";

class NewMapTest : public EditorSession {
  protected:
    void ChooseArt(const std::string& name)
    {
        ScriptFile(Path(name).c_str());
        ScriptControl('n');
    }
};

void TypeInto(int itemID, const std::string& text)
{
    ClickItem(itemID);
    if (text.empty()) {
        ScriptKey(VK_BACK);
    }
    ScriptText(text.c_str());
}

// OK brings that message, and the field is active afterwards; 0 for none.
void ExpectRefusal(const char* message, int activeField)
{
    ClickButton("OK");
    ExpectMessage(message);
    ThenCheck([=] {
        ASSERT_NE(TopDialog(), nullptr);
        const DialogItem* active = TopDialog()->activeEditItem;
        EXPECT_EQ(active != nullptr ? active->itemID : 0, activeField) << message;
        EXPECT_FALSE(IsCommandEnabled(106)) << "the menu titles are gray again";
    });
}

void ExpectNoMap()
{
    EXPECT_EQ(TextsOf(TopDialog()), "");
    EXPECT_FALSE(shell.mapShown);
    EXPECT_EQ(Title(), "Kestrel Map Tool v105AA");
    EXPECT_TRUE(IsCommandEnabled(101) && IsCommandEnabled(102));
    EXPECT_EQ(currentMap.mapModified, 0);
    EXPECT_EQ(currentMap.allocatedColumns, 0);
}

TEST_F(NewMapTest, ANewMapHasTheSizeOfItsArtAndTheNumbersOfItsDialog)
{
    Write("map345C.BMP", ArtBytes(455, 225));
    ChooseArt("map345C.BMP");
    ThenCheck([] {
        EXPECT_EQ(
            TextsOf(TopDialog()),
            "map345C.dat and map345C.BMP\n345\n: Map ID number (100 to 999)\n455\n: Width of map in pixels (450 "
            "to 3100)\n225\n: Height of map in pixels (220 to 3100)\n: Map version number (100 to 999)\n: UTM "
            "Grid Easting number for bottom left corner of map (0 to 99)\n: UTM Grid Northing number for bottom "
            "left corner of map (0 to 99)");
        EXPECT_EQ(headless.fileDialogs.at(0).title + "|" + headless.fileDialogs.at(0).filterText + "|" +
                      headless.fileDialogs.at(0).filterPattern,
                  "Select a bmp file...|Map bmp file (*.bmp)|*.bmp");
    });
    TypeInto(105, "250");
    TypeInto(106, "98");
    TypeInto(107, "7");
    ClickButton("OK");
    ThenCheck([] {
        EXPECT_EQ(Title(), "Kestrel Map Tool v105AA - map345C.dat");
        const MapRecord& record = currentMap.record;
        EXPECT_EQ(record.mapID, 345);
        EXPECT_EQ(currentMap.loadedMapID, 345);
        EXPECT_EQ(record.columnCount, 46);
        EXPECT_EQ(record.rowCount, 23);
        EXPECT_EQ(record.versionNumber, 250);
        EXPECT_EQ(record.utmEasting, 98);
        EXPECT_EQ(record.utmNorthing, 7);
        EXPECT_EQ(currentMap.editableRect.right, 445);
        EXPECT_EQ(currentMap.mapModified, 1);
        EXPECT_EQ(MarkedCells(), "");
        ExpectArt("of a new map");
        EXPECT_FALSE(IsCommandEnabled(101) || IsCommandEnabled(102));
    });
    Quit();
    Run();
}

TEST_F(NewMapTest, ChecksComeInTheirOrder)
{
    Write("Map101c.bmp", ArtBytes(600, 400));
    ChooseArt("Map101c.bmp");
    TypeInto(105, "99");
    TypeInto(106, "100");
    TypeInto(107, "100");
    ExpectRefusal(versionError, 105);
    // The field that was made active is replaced as a whole once another one was.
    ClickItem(106);
    TypeInto(105, "1000");
    ExpectRefusal(versionError, 105);
    ClickItem(106);
    TypeInto(105, "");
    ExpectRefusal(versionError, 105);
    ClickItem(106);
    TypeInto(105, "x1y0z0"); // digits only
    ExpectRefusal(eastingError, 106);
    ClickItem(105);
    TypeInto(106, "99");
    ExpectRefusal(northingError, 107);
    ClickItem(105);
    TypeInto(107, "-5"); // the sign is no digit
    ClickButton("OK");
    ThenCheck([] {
        EXPECT_EQ(currentMap.record.versionNumber, 100);
        EXPECT_EQ(currentMap.record.utmEasting, 99);
        EXPECT_EQ(currentMap.record.utmNorthing, 5);
        EXPECT_EQ(shell.mapShown, 1);
    });
    Quit();
    Run();
}

TEST_F(NewMapTest, AFieldThatIsFullTakesNothingMore)
{
    Write("Map101c.bmp", ArtBytes(600, 400));
    ChooseArt("Map101c.bmp");
    TypeInto(105, std::string(70, '9'));
    ThenCheck([] { EXPECT_EQ(FindItemByID(TopDialog(), 105)->text, std::string(63, '9')); });
    ExpectRefusal(versionError, 105);
    ScriptKey(VK_BACK);
    ExpectRefusal(versionError, 105);
    ClickButton("Cancel");
    ThenCheck([] { ExpectNoMap(); });
    Quit();
    Run();
}

TEST_F(NewMapTest, ArtOfAWrongSizeCanOnlyBeCancelled)
{
    struct Row {
        int width;
        int height;
        const char* message; // null when it is right
    };
    const Row rows[] = {
        {449, 300, widthError},   {3101, 219, widthError}, {500, 219, heightError},
        {500, 3101, heightError}, {1, 1, widthError},      {450, 220, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.width) + "x" + std::to_string(row.height));
        Write("Map101c.bmp", ArtBytes(row.width, row.height));
        ChooseArt("Map101c.bmp");
        if (row.message != nullptr) {
            ExpectRefusal(row.message, 0);
            ExpectRefusal(row.message, 0);
            ClickButton("Cancel");
            ThenCheck([] { ExpectNoMap(); });
        } else {
            ClickButton("OK");
            ThenCheck([] { EXPECT_EQ(shell.mapShown, 1); });
        }
        Quit();
        Run();
    }
}

TEST_F(NewMapTest, WhatStopsANewMapLeavesNoneAndTheNextAttemptWorks)
{
    const std::string rule =
        "There seems to be an error in the file name of the file containing the background art for this map.\n"
        "The file name for the background art for a Type 2 map must use this convention: 'Map' + 3 digit number + "
        "'c.bmp'.\n"
        "The 3 digit number must be in the range from 100 to 999.\n"
        "Example:  Map101c.bmp";
    const char* const badNames[] = {"Map10c.bmp",  "Map101c.bmpx", "Map099c.bmp", "Mop101c.bmp",
                                    "Map1x1c.bmp", "Map101d.bmp",  "M.bmp",       "Map+99c.bmp"};
    ScriptFileCancel();
    ScriptControl('n');
    ThenCheck([] { ExpectNoMap(); });
    for (const char* name : badNames) {
        Write(name, ArtBytes(600, 400));
        ChooseArt(name);
        ExpectMessage(std::string(name) + " ?\n" + rule);
        ThenCheck([] { ExpectNoMap(); });
    }
    Write("Map102c.bmp", "BM no bitmap");
    ChooseArt("Map102c.bmp"); // stops without a word
    ThenCheck([] { ExpectNoMap(); });
    ChooseArt("Map103c.bmp"); // there is none
    ThenCheck([] { ExpectNoMap(); });
    Write("Map101c.bmp", ArtBytes(600, 400));
    ChooseArt("Map101c.bmp");
    ClickButton("Cancel");
    ThenCheck([] { ExpectNoMap(); });
    ScriptFileCancel();
    ScriptMenu(102);
    ThenCheck([] { ExpectNoMap(); });
    ChooseArt("Map101c.bmp");
    ClickButton("OK");
    ThenCheck([] { ExpectArt("after all of these"); });
    Quit();
    Run();
}

TEST_F(NewMapTest, AMapOpenedUnderTheDialogStays)
{
    Write("Map102c.bmp", ArtBytes(500, 300));
    WriteMap(MapFile(101, 600, 400));
    ChooseArt("Map102c.bmp");
    ThenCheck([this] {
        ScriptFile(Path("Map101c.dat").c_str());
        ScriptControl('o');
    });
    ClickButton("OK");
    ThenCheck([] {
        EXPECT_EQ(TopDialog(), nullptr);
        EXPECT_TRUE(shell.mapShown);
        EXPECT_EQ(currentMap.record.mapRect.right, 600);
        ExpectArt("of the opened map");
    });
    Quit();
    Run();
}

// ---- properties ----

TEST_F(NewMapTest, PropertiesChangeWithOKWhenTheyAreInTheirLimits)
{
    struct Entry {
        int field;
        const char* text;
    };
    struct Row {
        int command;
        std::vector<Entry> entries;
        const char* refusal; // null when OK takes it
        int activeField;
    };
    const Row rows[] = {
        {203, {{105, "99"}}, versionError, 105},
        {203, {{105, "1000"}}, versionError, 105},
        {203, {{105, ""}}, versionError, 105},
        {203, {{105, "999"}}, nullptr, 0},
        {204, {{106, "100"}, {107, "100"}}, eastingError, 106},
        {204, {{107, "100"}}, northingError, 107},
        {204, {{106, ""}, {107, "99"}}, nullptr, 0},
        {205, {{105, "99"}}, idError, 105},
        {205, {{105, "99999999999"}}, idError, 105},
        {205, {{105, "100"}}, nullptr, 0},
    };
    WriteMap(MapFile(101, 600, 400));
    OpenMap();
    for (const Row& row : rows) {
        ScriptMenu(row.command);
        for (const Entry& entry : row.entries) {
            TypeInto(entry.field, entry.text);
        }
        if (row.refusal != nullptr) {
            ExpectRefusal(row.refusal, row.activeField);
            ClickButton("Cancel");
        } else {
            ThenCheck([] { currentMap.mapModified = 0; });
            ClickButton("OK");
        }
        ThenCheck([&row] {
            EXPECT_EQ(TopDialog(), nullptr);
            EXPECT_EQ(currentMap.mapModified, row.refusal == nullptr ? 1 : 0) << row.command;
            EXPECT_TRUE(IsCommandEnabled(205));
            currentMap.mapModified = 0;
            ExpectArt("after a dialog");
        });
    }
    ThenCheck([] {
        EXPECT_EQ(currentMap.record.versionNumber, 999);
        EXPECT_EQ(currentMap.record.utmEasting, 0);
        EXPECT_EQ(currentMap.record.utmNorthing, 99);
        EXPECT_EQ(currentMap.record.mapID, 100);
        EXPECT_EQ(currentMap.loadedMapID, 101);
        EXPECT_EQ(Title(), "Map100c.dat");
    });
    Quit();
    Run();
}

// Only digits are taken, at most 63; an empty field counts as 0.
TEST_F(NewMapTest, EveryFieldStandsAnyTyping)
{
    struct Field {
        int command; // 101 for the dialog of a new map
        int itemID;
        const char* error;
        const int16_t* value; // where OK stores it
    };
    const MapRecord& record = currentMap.record;
    const Field fields[] = {
        {101, 105, versionError, &record.versionNumber},
        {101, 106, eastingError, &record.utmEasting},
        {101, 107, northingError, &record.utmNorthing},
        {203, 105, versionError, &record.versionNumber},
        {204, 106, eastingError, &record.utmEasting},
        {204, 107, northingError, &record.utmNorthing},
        {205, 105, idError, &record.mapID},
    };
    struct Typing {
        std::string text;
        int number; // -1 when no field takes it
    };
    const std::string tooLong(70, '9');
    const Typing large[] = {{"", -1}, {"-250", 250}, {"+3-0+0", 300}, {"0999", 999}, {tooLong, -1}, {"-1", -1}};
    const Typing small[] = {{"", 0}, {"-25", 25}, {"+3-0", 30}, {"099", 99}, {tooLong, -1}, {"-100", -1}};
    WriteMap(MapFile(101, 600, 400));
    Write("Map102c.bmp", ArtBytes(600, 400));
    for (const Field& field : fields) {
        for (const Typing& typing : field.itemID == 105 ? large : small) {
            SCOPED_TRACE(std::to_string(field.command) + " " + std::to_string(field.itemID) + " " + typing.text);
            if (field.command == 101) {
                ChooseArt("Map102c.bmp");
            } else {
                OpenMap();
                ScriptMenu(field.command);
            }
            TypeInto(field.itemID, typing.text);
            if (typing.number < 0) {
                ExpectRefusal(field.error, field.itemID);
                ClickButton("Cancel");
            } else {
                ClickButton("OK");
                ThenCheck([&] { EXPECT_EQ(*field.value, typing.number); });
            }
            ThenCheck([] { EXPECT_EQ(TopDialog(), nullptr); });
            Quit();
            Run();
        }
    }
}

TEST_F(NewMapTest, NumbersOutOfAFileAreShownAsTheyAreAndChecked)
{
    MapFile map(101, 600, 400);
    map.words[eastingWord] = -5;
    map.words[northingWord] = 32767;
    WriteMap(map);
    OpenMap();
    ScriptMenu(204);
    ThenCheck([] {
        EXPECT_STREQ(FindItemByID(TopDialog(), 106)->text, "-5");
        EXPECT_STREQ(FindItemByID(TopDialog(), 107)->text, "32767");
    });
    ExpectRefusal(eastingError, 106);
    ScriptText("12"); // over the old value
    ExpectRefusal(northingError, 107);
    ClickItem(106);
    TypeInto(107, "34");
    ScriptKey(VK_RETURN); // ends the editing
    ScriptKey(VK_RETURN); // is OK
    ThenCheck([] {
        EXPECT_EQ(currentMap.record.utmEasting, 12);
        EXPECT_EQ(currentMap.record.utmNorthing, 34);
    });
    Quit();
    Run();
}

} // namespace
