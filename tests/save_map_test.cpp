// Saving with its backup, and the questions before the program ends, in every state.
#include "platform/kernel/system_calls.h"
#include "tests/editor_session.h"
#include "tests/failing_calls.h"

#include <cerrno>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace {

using Names = std::vector<std::string>;

class SaveMapTest : public EditorSession {
  protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        MapFile map(101, 600, 400);
        for (int i = 0; i < 28; i++) {
            if (map.words[i] == 0 && i != leftWord && i != topWord) {
                map.words[i] = static_cast<int16_t>(-1000 - i); // of the carried fields
            }
        }
        map.text = "carried";
        map.Cell(0, 0) = 0xFFFF;
        map.Cell(59, 39) = 0x0015;
        WriteMap(map);
        saved = map.Bytes();
        map.words[markerFieldWord] = 0;
        original = map.Bytes();
        Write("Map101c.dat", original);
    }

    static void Save()
    {
        ScriptControl('s');
        ExpectMessage(MessageText(15137), "Yes");
    }

    static void SetID(const char* id)
    {
        ScriptMenu(205);
        ClickItem(105);
        ScriptText(id);
        ClickButton("OK");
    }

    static void PaintACell()
    {
        OpenPalette('t', 202);
        ClickOnMap(105, 105);
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
    OpenPalette('t');
    ClosePalette();
    ThenCheck([] { EXPECT_EQ(currentMap.mapModified, 1); });
    Save();
    ThenCheck([this] {
        EXPECT_TRUE(Read("Map101c.dat") == saved);
        EXPECT_TRUE(Read("Map101c.dat_old") == original);
        EXPECT_EQ(currentMap.mapModified, 0);
        EXPECT_EQ(currentMap.openDataFile, noFile);
    });
    PaintACell();
    Save(); // with the palette open
    ThenCheck([this] {
        EXPECT_TRUE(Read("Map101c.dat_old") == saved) << "the second save's backup is the first save's file";
        std::string painted = saved;
        painted[57 + 7 + 2 * (10 * 60 + 10)] = 0x40;
        EXPECT_TRUE(Read("Map101c.dat") == painted);
        EXPECT_EQ(Files(), (Names{"Map101c.bmp", "Map101c.dat", "Map101c.dat_old"}));
        EXPECT_EQ(currentMap.mapModified, 0) << "an open palette marks the map only when it opens";
    });
    QuitAndRun();
    EXPECT_TRUE(Read("Map101c.bmp") == ArtBytes(600, 400)) << "the art is never written";
}

TEST_F(SaveMapTest, AChangedIdentityIsWrittenUnderItsNameWithoutABackup)
{
    OpenMap();
    SetID("222");
    ThenCheck([] { EXPECT_EQ(Title(), "Map222c.dat"); });
    Save();
    ThenCheck([this] { EXPECT_EQ(Read("Map222c.dat").substr(0, 2), std::string("\xDE\0", 2)); });
    Save();
    ThenCheck([this] {
        EXPECT_TRUE(Read("Map101c.dat") == original);
        EXPECT_EQ(Files(), (Names{"Map101c.bmp", "Map101c.dat", "Map222c.dat"}));
    });
    SetID("101");
    Save();
    ThenCheck([this] {
        // With its old number back the map is saved as an opened one is: over the name that the last save used.
        EXPECT_TRUE(Read("Map101c.dat") == original);
        EXPECT_TRUE(Exists("Map222c.dat_old"));
    });
    QuitAndRun();
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
    QuitAndRun();
}

TEST_F(SaveMapTest, NoOtherFileIsWrittenWhateverTheStateSays)
{
    const std::pair<const char*, bool> rows[] = {
        {"Map102c.dat", false}, {"notes", true}, {"MAP101C.BMP", true}, {"Map101c.bmp", true}};
    for (const auto& row : rows) {
        OpenMap();
        ThenCheck([this, &row] {
            Write(row.first, "kept");
            CopyText(row.first, currentMap.dataFileSpec.name);
            if (row.second) {
                currentMap.ownFileSpec = currentMap.dataFileSpec;
            }
            EXPECT_EQ(SaveMap(false), 1);
            EXPECT_STREQ(view.statusText, "The map was not saved: the file is not this map's.");
        });
        QuitAndRun();
        EXPECT_EQ(Read(row.first), "kept") << row.first;
        WriteMap(MapFile(101, 600, 400));
    }
}

// The backup's name may be longer than a map's own.
TEST_F(SaveMapTest, TheLongestPathsHaveTheirBackup)
{
    for (const size_t length : {251u, 254u}) {
        const std::string deep = std::string(100, 'd') + "/" + std::string(length - folder.size() - 114, 'e');
        std::filesystem::create_directories(Path(deep));
        for (const char* name : {"/Map101c.dat", "/Map101c.bmp"}) {
            std::filesystem::copy(Path(name), Path(deep + name));
        }
        OpenMap(deep + "/Map101c.dat");
        Save();
        QuitAndRun();
        EXPECT_TRUE(Read(deep + "/Map101c.dat") == saved && Read(deep + "/Map101c.dat_old") == original) << length;
    }
}

TEST_F(SaveMapTest, ASavedFileKeepsWhoMayReadAndWriteIt)
{
    const mode_t usual = umask(022);
    const bool mayGiveAway = getuid() == 0; // to any group
    const gid_t group = mayGiveAway ? 12345 : getgid();
    const std::tuple<mode_t, bool, mode_t> rows[] = {
        {0600, false, 0600}, {0664, false, 0664}, {0664, mayGiveAway, mayGiveAway ? 0644u : 0664u}};
    for (const auto& [mode, refused, kept] : rows) {
        struct stat status;
        ASSERT_EQ(chmod(Path("Map101c.dat").c_str(), mode), 0);
        ASSERT_EQ(chown(Path("Map101c.dat").c_str(), static_cast<uid_t>(-1), group), 0);
        OpenMap();
        ThenCheck([refused = refused] {
            JudgeSystemCalls(Refuse(changeGroupCall, refused ? EPERM : letThrough));
            EXPECT_EQ(SaveMap(false), 0);
        });
        QuitAndRun();
        ASSERT_EQ(stat(Path("Map101c.dat").c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, kept);
        EXPECT_EQ(status.st_gid == group, !refused);
    }
    umask(usual);
}

// What a fault leaves on the disk is told in fault_injection_test.cpp; here the user sees it.
TEST_F(SaveMapTest, ASaveThatFailsKeepsTheWorkAndTheNextOneMakesIt)
{
    const struct {
        CallJudge judge;
        const char* told;    // in the status strip
        const char* message; // null when there is none
    } rows[] = {
        {Refuse(writeCall, ENOSPC), "The map was not saved: the disk is full.", nullptr},
        {Refuse(syncCall, EDQUOT), "The map was not saved: your share of the disk is used up.", nullptr},
        {Refuse(openCall, EROFS), "The map was not saved: the disk is write-protected.", nullptr},
        {Refuse(openCall, ETIMEDOUT), "The map was not saved: system error 31.", nullptr},
        {Refuse(openCall, EACCES, 1), "",
         "Could not open a new file. Quit program, find and rename the '.bak' file to end in "
         "'.dat' and try again."},
    };
    for (const auto& row : rows) {
        Write("Map101c.dat", original);
        std::filesystem::remove(Path("Map101c.dat_old"));
        OpenMap();
        ThenCheck([] { currentMap.mapModified = 1; });
        ScriptControl('s');
        ThenCheck([&] { JudgeSystemCalls(row.judge); });
        ClickButton("Yes");
        if (row.message != nullptr) {
            ExpectMessage(row.message);
        }
        ThenCheck([&] {
            systemCalls = RealSystemCalls();
            EXPECT_EQ(TopDialog(), nullptr);
            EXPECT_STREQ(view.statusText, row.told);
            EXPECT_EQ(headless.beeps, row.told[0] != 0 ? 1 : 0);
            headless.beeps = 0;
            EXPECT_EQ(currentMap.mapModified, 1);
            EXPECT_TRUE(Read("Map101c.dat_old") == original) << "what was there is safe";
        });
        Save(); // the disk is well again
        ThenCheck([this] {
            EXPECT_TRUE(Read("Map101c.dat") == saved);
            EXPECT_STREQ(view.statusText, "");
        });
        QuitAndRun();
    }

    OpenMap();
    ThenCheck([] {
        shell.language = 2;
        JudgeSystemCalls(Refuse(renameNoReplaceCall, EACCES));
        EXPECT_EQ(SaveMap(false), 0);
        systemCalls = RealSystemCalls();
        EXPECT_STREQ(view.statusText,
                     "La carte est enregistrée, mais sans copie de l'ancien fichier : l'accès est refusé.");
        shell.language = 1;
    });
    ThenCheck([this] {
        const std::string gone = folder + "-gone";
        std::filesystem::rename(folder, gone);
        EXPECT_EQ(SaveMap(false), 1);
        std::filesystem::rename(gone, folder);
        EXPECT_STREQ(view.statusText, "The map was not saved: its folder is not there.");
        EXPECT_EQ(SaveMap(false), 0);
    });
    QuitAndRun();

    OpenMap();
    OpenPalette('m');
    ScriptControl('q');
    ThenCheck([&] { JudgeSystemCalls(Refuse(writeCall, EACCES)); });
    ClickButton("Save");
    Run(); // ends the program also when it fails
    systemCalls = RealSystemCalls();
    EXPECT_TRUE(Read("Map101c.dat_old") == saved);
}

// ---- quitting ----

TEST_F(SaveMapTest, QuittingAsksByTheStateOfTheWork)
{
    ScriptControl('q');
    ExpectMessage("Do you really want to quit? ", "No");
    OpenMap();
    ScriptMenu(106);
    ExpectMessage("Do you really want to quit? ", "No");
    PaintACell();
    ScriptControl('q');
    ExpectMessage("Save map work before quitting?", "Cancel");
    ClosePalette();
    ScriptControl('q');
    ThenCheck([] { ScriptKey(VK_ESCAPE); }); // neither a close box nor an answer
    ExpectMessage("Save map work before quitting?", "Cancel");
    ScriptControl('q');
    ExpectMessage("Save map work before quitting?", "No Save");
    Run();
    EXPECT_TRUE(Read("Map101c.dat") == original);
    EXPECT_FALSE(Exists("Map101c.dat_old"));

    OpenMap();
    PaintACell();
    ScriptControl('q');
    ThenCheck([] { ScriptKeyDown(VK_RETURN); }); // Save, with the palette still open
    Run();
    EXPECT_TRUE(Read("Map101c.dat_old") == original);
    EXPECT_FALSE(Read("Map101c.dat") == saved);
    EXPECT_EQ(Read("Map101c.dat").size(), saved.size());
}

TEST_F(SaveMapTest, ACloseRequestEndsTheProgramWithoutAQuestion)
{
    ScriptClose();
    Run();
    OpenMap();
    ThenCheck([] { currentMap.mapModified = 1; });
    ScriptClose();
    Run();
    EXPECT_TRUE(Read("Map101c.dat") == original);
}

} // namespace
