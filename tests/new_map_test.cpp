// New Map from art, and the dialogs of a map's properties.
#include "tests/editor_session.h"

#include <tuple>

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

    static void ThenExpectNoMap()
    {
        ThenCheck([] {
            EXPECT_EQ(TextsOf(TopDialog()), "");
            EXPECT_FALSE(shell.mapShown);
            EXPECT_EQ(Title(), "Kestrel Map Tool v105AA");
            EXPECT_TRUE(IsCommandEnabled(101) && IsCommandEnabled(102));
            EXPECT_EQ(currentMap.mapModified, 0);
            EXPECT_EQ(currentMap.allocatedColumns, 0);
        });
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

TEST_F(NewMapTest, ANewMapHasTheSizeOfItsArtAndTheNumbersOfItsDialog)
{
    Write("map345C.BMP", ArtBytes(455, 225));
    ThenCheck([] { currentMap.record.auxWord1 = currentMap.record.auxWord2 = 7; });
    ChooseArt("map345C.BMP");
    ThenCheck([] {
        EXPECT_EQ(
            TextsOf(TopDialog()),
            "map345C.dat and map345C.BMP\n345\n: Map ID number (100 to 999)\n455\n: Width of map in pixels (450 "
            "to 3100)\n225\n: Height of map in pixels (220 to 3100)\n: Map version number (100 to 999)\n: UTM "
            "Grid Easting number for bottom left corner of map (0 to 99)\n: UTM Grid Northing number for bottom "
            "left corner of map (0 to 99)");
        const HeadlessFileDialog& dialog = headless.fileDialogs.at(0);
        EXPECT_EQ(dialog.title + "|" + dialog.filterText + "|" + dialog.filterPattern,
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
        EXPECT_TRUE(record.columnCount == 46 && record.rowCount == 23);
        EXPECT_TRUE(record.versionNumber == 250 && record.utmEasting == 98 && record.utmNorthing == 7);
        EXPECT_TRUE(record.auxWord1 == 7 && record.auxWord2 == 0) << "the first is carried";
        EXPECT_EQ(currentMap.editableRect.right, 445);
        EXPECT_EQ(currentMap.mapModified, 1);
        EXPECT_EQ(MarkedCells(), "");
        ExpectArt("of a new map");
        EXPECT_FALSE(IsCommandEnabled(101) || IsCommandEnabled(102));
    });
    QuitAndRun();
}

TEST_F(NewMapTest, ChecksComeInTheirOrder)
{
    Write("Map101c.bmp", ArtBytes(600, 400));
    ChooseArt("Map101c.bmp");
    TypeInto(105, "99");
    TypeInto(106, "100");
    TypeInto(107, "100");
    ExpectRefusal(versionError, 105);
    ClickItem(106); // the field that was made active is replaced as a whole once another one was
    TypeInto(105, "x1y0z0");
    ExpectRefusal(eastingError, 106);
    ClickItem(105);
    TypeInto(106, "99");
    ExpectRefusal(northingError, 107);
    ClickItem(105);
    TypeInto(107, "-5"); // the sign is no digit
    ClickButton("OK");
    ThenCheck([] {
        const MapRecord& record = currentMap.record;
        EXPECT_TRUE(record.versionNumber == 100 && record.utmEasting == 99 && record.utmNorthing == 5);
    });
    QuitAndRun();
}

TEST_F(NewMapTest, ArtOfAWrongSizeCanOnlyBeCancelled)
{
    const struct {
        int width;
        int height;
        const char* message; // null when it is right
    } rows[] = {
        {449, 300, widthError},   {3101, 219, widthError}, {500, 219, heightError},
        {500, 3101, heightError}, {1, 1, widthError},      {450, 220, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.width) + "x" + std::to_string(row.height));
        Write("Map999c.bmp", ArtBytes(row.width, row.height));
        ChooseArt("Map999c.bmp");
        if (row.message != nullptr) {
            ExpectRefusal(row.message, 0);
            ExpectRefusal(row.message, 0);
            ClickButton("Cancel");
            ThenExpectNoMap();
        } else {
            ClickButton("OK");
            ThenCheck([] { EXPECT_EQ(shell.mapShown, 1); });
        }
        QuitAndRun();
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
    ScriptFileCancel();
    ScriptControl('n');
    ThenExpectNoMap();
    for (const char* name : {"Map10c.bmp", "Map101c.bmpx", "Map099c.bmp", "Mop101c.bmp", "Map1x1c.bmp", "Map101d.bmp",
                             "M.bmp", "Map+99c.bmp"}) {
        Write(name, ArtBytes(600, 400));
        ChooseArt(name);
        ExpectMessage(std::string(name) + " ?\n" + rule);
        ThenExpectNoMap();
    }
    Write("Map102c.bmp", "BM no bitmap");
    // Where no message says it, the status strip does, and keeps it until the next attempt.
    const std::string longFolder = std::string(120, 'd') + "/" + std::string(123 - folder.size(), 'e');
    const std::pair<std::string, const char*> told[] = {
        {"Map102c.bmp", "The map art could not be loaded: it is damaged or of another kind."},
        {"Map103c.bmp", "The map art could not be loaded: the file is not there."},
        {longFolder + "/Map104c.bmp", "The map art could not be loaded: its path is too long."},
        {longFolder + longFolder, "The file cannot be used: its path is too long."},
    };
    std::filesystem::create_directories(Path(longFolder));
    for (const auto& [name, text] : told) {
        ChooseArt(name);
        ThenExpectNoMap();
        ThenCheck([text = text] {
            EXPECT_STREQ(view.statusText, text);
            InvalidateMapRect(nullptr);
            PaintMapWindow();
            EXPECT_GT(CountPixels(shell.mapWindow, shell.mapWindow->portRect, RGB(0, 0, 0)), 100);
        });
    }
    Write("Map101c.bmp", ArtBytes(600, 400));
    ChooseArt("Map101c.bmp");
    ClickButton("Cancel");
    ThenExpectNoMap();
    ChooseArt("Map101c.bmp");
    ClickButton("OK");
    ThenCheck([] {
        ExpectArt("after all of these");
        EXPECT_STREQ(view.statusText, "");
    });
    QuitAndRun();
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
        EXPECT_EQ(currentMap.record.mapRect.right, 600);
        ExpectArt("of the opened map");
    });
    QuitAndRun();
}

// Commands come through under the dialog. What another attempt chose there, and gave up, is none of this map's files.
TEST_F(NewMapTest, AnAttemptUnderTheDialogLendsItNoFile)
{
    const std::tuple<char, std::string, const char*> rows[] = {
        {'n', "Photo.bmp", "OK"}, {'n', "Map102c.bmp", "Cancel"}, {'o', "Map102c.dat", "OK"}};
    Write("Map101c.bmp", ArtBytes(600, 400));
    for (const auto& [key, name, button] : rows) {
        SCOPED_TRACE(name);
        for (const char* other : {"Photo.bmp", "Map102c.bmp", "Map102c.dat"}) {
            Write(other, ArtBytes(500, 300));
        }
        ChooseArt("Map101c.bmp");
        ThenCheck([&, key = key, name = name] {
            ScriptFile(Path(name).c_str());
            ScriptControl(key);
        });
        ClickButton(button);
        ClickButton("OK");
        ThenCheck([] {
            EXPECT_EQ(Title(), "Kestrel Map Tool v105AA - Map101c.dat");
            ExpectArt("of the map's own file");
            EXPECT_TRUE(SaveMap(false) == 0 && SaveMap(false) == 0);
        });
        QuitAndRun();
        for (const char* other : {"Photo.bmp", "Map102c.bmp", "Map102c.dat"}) {
            EXPECT_TRUE(Read(other) == ArtBytes(500, 300)) << other;
        }
        EXPECT_EQ(Files().size(), 6U) << "with the data file and its backup";
    }
}

// ---- properties ----

// Only digits are taken, at most 63; an empty field counts as 0. OK stores a number within the limits; Cancel
// nothing.
TEST_F(NewMapTest, EveryFieldStandsAnyTyping)
{
    const MapRecord& record = currentMap.record;
    const struct {
        int command; // 101 for the dialog of a new map
        int itemID;
        const char* error;
        const int16_t* value; // where OK stores it
    } fields[] = {
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
    const std::vector<Typing> large = {{"", -1},     {"99", -1},   {"1000", -1},  {tooLong, -1},
                                       {"100", 100}, {"999", 999}, {"-250", 250}, {"0999", 999}};
    const std::vector<Typing> small = {{"", 0},     {"99", 99},    {"-25", 25}, {"+3-0", 30},
                                       {"099", 99}, {tooLong, -1}, {"-100", -1}};
    WriteMap(MapFile(101, 600, 400));
    Write("Map102c.bmp", ArtBytes(600, 400));
    for (const auto& field : fields) {
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
                if (typing.text == tooLong) { // it is full and takes nothing more
                    ScriptKey(VK_BACK);
                    ExpectRefusal(field.error, field.itemID);
                }
                ClickButton("Cancel");
                ThenCheck([] { EXPECT_EQ(currentMap.mapModified, 0); });
            } else {
                ClickButton("OK");
                ThenCheck([&] {
                    EXPECT_EQ(*field.value, typing.number);
                    EXPECT_EQ(currentMap.mapModified, 1);
                    EXPECT_TRUE(IsCommandEnabled(205));
                    ExpectArt("after the dialog");
                });
            }
            ThenCheck([] { EXPECT_EQ(TopDialog(), nullptr); });
            QuitAndRun();
        }
    }
}

TEST_F(NewMapTest, NumbersOutOfAFileAreShownAsTheyAreAndChecked)
{
    OpenWith([](MapFile* map) {
        map->words[eastingWord] = -5;
        map->words[northingWord] = 32767;
    });
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
    ThenCheck([] { EXPECT_TRUE(currentMap.record.utmEasting == 12 && currentMap.record.utmNorthing == 34); });
    QuitAndRun();
}

} // namespace
