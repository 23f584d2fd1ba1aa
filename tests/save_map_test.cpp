// Saving with its backup, and the questions before the program ends, in every state.
#include "platform/kernel/system_calls.h"
#include "tests/editor_session.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace {

using Names = std::vector<std::string>;

int callsBeforeFault;

class SaveMapTest : public EditorSession {
  protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        MapFile map(101, 600, 400);
        for (int i = 0; i < 28; i++) {
            if (map.words[i] == 0) {
                map.words[i] = static_cast<int16_t>(-1000 - i); // of the carried fields
            }
        }
        map.words[leftWord] = 0;
        map.words[topWord] = 0;
        map.words[markerFieldWord] = 0;
        map.text = "carried";
        map.Cell(0, 0) = 0xFFFF;
        map.Cell(59, 39) = 0x0015;
        WriteMap(map);
        original = map.Bytes();
        map.words[markerFieldWord] = 1;
        saved = map.Bytes();
    }

    void Save()
    {
        ScriptControl('s');
        ThenCheck([] { EXPECT_EQ(TextsOf(TopDialog()), MessageText(15137)); });
        ClickButton("Yes");
    }

    void SetID(const char* id)
    {
        ScriptMenu(205);
        ClickItem(105);
        for (int i = 0; i < 3; i++) {
            ScriptKey(VK_BACK);
        }
        ScriptText(id);
        ClickButton("OK");
    }

    std::string original;
    std::string saved; // as the program writes it back
};

TEST_F(SaveMapTest, ASaveKeepsEveryFieldAndOneBackup)
{
    OpenMap();
    ScriptControl('s');
    ClickButton("No");
    ThenCheck([this] { EXPECT_EQ(Files(), (Names{"Map101c.bmp", "Map101c.dat"})); });
    OpenFeatures();
    ClosePalette();
    ThenCheck([] { EXPECT_EQ(currentMap.mapModified, 1); });
    Save();
    ThenCheck([this] {
        EXPECT_TRUE(Read("Map101c.dat") == saved);
        EXPECT_TRUE(Read("Map101c.dat_old") == original);
        EXPECT_EQ(currentMap.mapModified, 0);
        EXPECT_EQ(currentMap.openDataFile, noFile);
    });
    OpenFeatures(202);
    ClickOnMap(105, 105);
    Save(); // with the palette open
    ThenCheck([this] {
        EXPECT_TRUE(Read("Map101c.dat_old") == saved) << "the second save's backup is the first save's file";
        std::string painted = saved;
        painted[57 + 7 + 2 * (10 * 60 + 10)] = 0x40;
        EXPECT_TRUE(Read("Map101c.dat") == painted);
        EXPECT_EQ(Files(), (Names{"Map101c.bmp", "Map101c.dat", "Map101c.dat_old"}));
        EXPECT_EQ(currentMap.mapModified, 0) << "an open palette marks the map only when it opens";
    });
    ClosePalette();
    Quit();
    Run();
    EXPECT_TRUE(Read("Map101c.bmp") == ArtBytes(600, 400)) << "the art is never written";
}

TEST_F(SaveMapTest, AChangedIdentityIsWrittenUnderItsNameWithoutABackup)
{
    OpenMap();
    SetID("222");
    ThenCheck([] { EXPECT_EQ(Title(), "Map222c.dat"); });
    Save();
    ThenCheck([this] {
        EXPECT_EQ(Files(), (Names{"Map101c.bmp", "Map101c.dat", "Map222c.dat"}));
        EXPECT_TRUE(Read("Map101c.dat") == original);
        EXPECT_EQ(Read("Map222c.dat").substr(0, 2), std::string("\xDE\0", 2));
    });
    Save();
    ThenCheck([this] { EXPECT_EQ(Files(), (Names{"Map101c.bmp", "Map101c.dat", "Map222c.dat"})); });
    SetID("101");
    Save();
    ThenCheck([this] {
        // With its old number back the map is saved as an opened one is: over the name that the last save used.
        EXPECT_TRUE(Read("Map101c.dat") == original);
        EXPECT_TRUE(Exists("Map222c.dat_old"));
    });
    Quit();
    Run();
}

TEST_F(SaveMapTest, TheFirstSaveOfANewMapMakesNoBackup)
{
    std::filesystem::remove(Path("Map101c.dat"));
    ScriptFile(Path("Map101c.bmp").c_str());
    ScriptControl('n');
    ClickButton("OK");
    ThenCheck([this] { EXPECT_EQ(Files(), (Names{"Map101c.bmp"})) << "nothing is written before a save"; });
    Save();
    ThenCheck([this] {
        EXPECT_EQ(Files(), (Names{"Map101c.bmp", "Map101c.dat"}));
        MapFile map(101, 600, 400);
        map.words[9] = 1; // the first area is the whole map
        map.words[12] = 600;
        map.words[13] = 400;
        EXPECT_TRUE(Read("Map101c.dat") == map.Bytes());
    });
    Quit();
    Run();
}

TEST_F(SaveMapTest, ABackupThatCannotBeReplacedDoesNotStopTheSave)
{
    std::filesystem::create_directories(Path("Map101c.dat_old/full"));
    OpenMap();
    Save();
    ThenCheck([this] {
        EXPECT_EQ(TopDialog(), nullptr);
        EXPECT_TRUE(Read("Map101c.dat") == saved);
        EXPECT_TRUE(Exists("Map101c.dat_old/full"));
    });
    Quit();
    Run();
}

TEST_F(SaveMapTest, ASaveThatFailsKeepsTheWorkAndIsTold)
{
    // Every write and every sync of a save fails once, and the opening of the target at each of its times.
    const auto failWrite = [](int descriptor, const void* bytes, size_t count) -> ssize_t {
        if (callsBeforeFault-- == 0) {
            errno = ENOSPC;
            return -1;
        }
        return RealSystemCalls().write(descriptor, bytes, count);
    };
    const auto shortWrite = [](int descriptor, const void* bytes, size_t count) -> ssize_t {
        if (callsBeforeFault-- == 0) {
            return static_cast<ssize_t>(count / 2) == 0 ? 0 : RealSystemCalls().write(descriptor, bytes, count / 2);
        }
        errno = ENOSPC;
        return callsBeforeFault == -2 ? -1 : RealSystemCalls().write(descriptor, bytes, count);
    };
    const auto failSync = [](int descriptor) {
        if (callsBeforeFault-- == 0) {
            errno = EIO;
            return -1;
        }
        return RealSystemCalls().fsync(descriptor);
    };
    const auto failOpen = [](const char* path, int flags, mode_t mode) {
        if (strstr(path, "Map101c.dat") != nullptr && callsBeforeFault-- <= 0) {
            errno = EACCES;
            return -1;
        }
        return RealSystemCalls().open(path, flags, mode);
    };
    struct Row {
        const char* what;
        std::function<void()> inject;
        int calls;
        const char* message; // of the last of them
    };
    const std::string noNewFile =
        "Could not open a new file. Quit program, find and rename the '.bak' file to end in "
        "'.dat' and try again.";
    const Row rows[] = {
        {"a full disk", [&] { systemCalls.write = failWrite; }, 1, ""},
        {"a disk that fills up", [&] { systemCalls.write = shortWrite; }, 1, ""},
        {"a sync that fails", [&] { systemCalls.fsync = failSync; }, 2, ""},
        {"a target that cannot be created", [&] { systemCalls.open = failOpen; }, 1, ""},
        {"a target that cannot be opened", [&] { systemCalls.open = failOpen; }, 2, noNewFile.c_str()},
    };
    for (const Row& row : rows) {
        for (int i = row.calls == 2 && row.message[0] != 0 ? 1 : 0; i < row.calls; i++) {
            SCOPED_TRACE(row.what);
            Write("Map101c.dat", original);
            std::filesystem::remove_all(Path("Map101c.dat_old"));
            OpenMap();
            ThenCheck([] { currentMap.mapModified = 1; });
            ScriptControl('s');
            ThenCheck([&, i] {
                callsBeforeFault = i;
                row.inject();
            });
            ClickButton("Yes");
            if (row.message[0] != 0) {
                ExpectMessage(row.message);
            }
            ThenCheck([&, this] {
                systemCalls = RealSystemCalls();
                EXPECT_EQ(TopDialog(), nullptr);
                EXPECT_EQ(currentMap.mapModified, 1);
                EXPECT_EQ(currentMap.openDataFile, noFile);
                EXPECT_TRUE(Read("Map101c.dat_old") == original) << "what was there is safe";
            });
            Save(); // the disk is well again
            ThenCheck([this] {
                EXPECT_TRUE(Read("Map101c.dat") == saved);
                EXPECT_EQ(currentMap.mapModified, 0);
            });
            Quit();
            Run();
        }
    }
}

// ---- quitting ----

TEST_F(SaveMapTest, QuittingAsksByTheStateOfTheWork)
{
    ScriptControl('q');
    ExpectMessage("Do you really want to quit? ", "No");
    OpenMap();
    ScriptMenu(106);
    ExpectMessage("Do you really want to quit? ", "No");
    OpenFeatures(202);
    ClickOnMap(105, 105);
    ScriptControl('q');
    ExpectMessage("Save map work before quitting?", "Cancel");
    ClosePalette();
    ScriptControl('q');
    ThenCheck([] { ScriptKey(VK_ESCAPE); }); // neither a close box nor an answer
    ExpectMessage("Save map work before quitting?", "Cancel");
    ThenCheck([this] { EXPECT_TRUE(Read("Map101c.dat") == original); });
    ScriptControl('q');
    ExpectMessage("Save map work before quitting?", "No Save");
    Run();
    EXPECT_TRUE(Read("Map101c.dat") == original);
    EXPECT_FALSE(Exists("Map101c.dat_old"));

    OpenMap();
    OpenFeatures(202);
    ClickOnMap(105, 105);
    ScriptControl('q');
    ThenCheck([] { ScriptKeyDown(VK_RETURN); }); // Save, with the palette still open
    Run();
    EXPECT_TRUE(Read("Map101c.dat_old") == original);
    EXPECT_FALSE(Read("Map101c.dat") == saved);
    EXPECT_EQ(Read("Map101c.dat").size(), saved.size());
}

TEST_F(SaveMapTest, SaveEndsTheProgramAlsoWhenItFails)
{
    OpenMap();
    OpenMoveCosts();
    ClosePalette();
    ScriptControl('q');
    ThenCheck([] {
        systemCalls.write = [](int, const void*, size_t) -> ssize_t {
            errno = ENOSPC;
            return -1;
        };
    });
    ClickButton("Save");
    Run();
    systemCalls = RealSystemCalls();
    EXPECT_TRUE(Read("Map101c.dat_old") == original);
}

TEST_F(SaveMapTest, ACloseRequestEndsTheProgramWhereQuitIsEnabled)
{
    ScriptClose();
    Run(); // without a map

    OpenMap();
    OpenFeatures(202);
    ClickOnMap(105, 105);
    ScriptClose();
    Run(); // with a palette, and without a question
    EXPECT_TRUE(Read("Map101c.dat") == original);

    OpenMap();
    for (const int command : {104, 106, 205}) { // under a question and a dialog
        ScriptMenu(command);
        ThenCheck([] { ScriptClose(); });
        ThenCheck([=] { EXPECT_NE(TopDialog(), nullptr) << command; });
        ClickButton(command == 205 ? "Cancel" : "No");
    }
    ThenCheck([] { EXPECT_EQ(TopDialog(), nullptr); });
    ScriptClose();
    Run();
}

} // namespace
